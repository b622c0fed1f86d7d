#include "common/status.h"

namespace scourel {

std::wstring SystemMessage(DWORD code) {
  wchar_t* buffer = nullptr;
  const DWORD length =
      ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::wstring text(buffer ? buffer : L"", length);
  if (buffer) ::LocalFree(buffer);
  while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L' ' || text.back() == L'.')) {
    text.pop_back();
  }
  if (text.empty()) text = L"error " + std::to_wstring(code);
  return text;
}

}  // namespace scourel
