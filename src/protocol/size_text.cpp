#include "protocol/size_text.h"

#include <cstdint>
#include <cwchar>

namespace scourel {

namespace {

std::wstring FormatSize(float bytes, const wchar_t* kb, const wchar_t* mb, const wchar_t* gb) {
  // The scaling is done in single precision, as the totals are, and the
  // product printed as a double.
  const wchar_t* format;
  float scaled;
  if (bytes < 1048576.0f) {
    format = kb;
    scaled = bytes * (1.0f / 1024.0f);
  } else if (bytes < 1073741824.0f) {
    format = mb;
    scaled = bytes * (1.0f / 1048576.0f);
  } else {
    format = gb;
    scaled = bytes * (1.0f / 1073741824.0f);
  }
  wchar_t text[64];
  std::swprintf(text, 64, format, static_cast<double>(scaled));
  return text;
}

}  // namespace

std::wstring SizeText(float bytes) { return FormatSize(bytes, L"%.2f KB", L"%.2f MB", L"%.2f GB"); }

std::wstring PaddedSizeText(float bytes) { return FormatSize(bytes, L"%7.2f KB", L"%7.2f MB", L"%7.2f GB"); }

std::int64_t ReplyBytes(float bytes) {
  // Out-of-range values (never reached by real totals) saturate rather than
  // invoke undefined behaviour.
  if (!(bytes == bytes)) return 0;
  if (bytes >= 9.2233720368547758e18f) return INT64_MAX;
  if (bytes <= -9.2233720368547758e18f) return INT64_MIN;
  return static_cast<std::int64_t>(bytes);
}

}  // namespace scourel
