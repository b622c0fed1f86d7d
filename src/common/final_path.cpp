#include "common/final_path.h"

#include <string_view>
#include <vector>

#include "common/unique_handle.h"

namespace scourel {

namespace {

std::wstring Normalised(std::wstring_view path) {
  constexpr std::wstring_view kUnc = L"\\\\?\\UNC\\", kLocal = L"\\\\?\\";
  std::wstring plain;
  if (path.starts_with(kUnc)) {
    plain = L"\\\\" + std::wstring(path.substr(kUnc.size()));
  } else if (path.starts_with(kLocal)) {
    plain = path.substr(kLocal.size());
  } else {
    plain = path;
  }
  while (plain.size() > 3 && plain.back() == L'\\') plain.pop_back();
  return plain;
}

bool SameName(const std::wstring& a, const std::wstring& b) {
  return ::CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(), static_cast<int>(b.size()),
                                TRUE) == CSTR_EQUAL;
}

}  // namespace

std::wstring FinalPathOf(HANDLE handle) {
  std::vector<wchar_t> buffer(MAX_PATH + 1);
  for (;;) {
    const DWORD length = ::GetFinalPathNameByHandleW(handle, buffer.data(), static_cast<DWORD>(buffer.size()),
                                                     FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    if (length == 0) return {};
    if (length < buffer.size()) return std::wstring(buffer.data(), length);
    buffer.resize(length + 1);
  }
}

std::wstring FinalPathOf(const std::wstring& path) {
  const UniqueHandleKernel opened(::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  return opened ? FinalPathOf(opened.get()) : std::wstring();
}

bool SamePathName(const std::wstring& name, const std::wstring& finalPath) {
  const std::wstring given = Normalised(name), reached = Normalised(finalPath);
  if (reached.empty()) return false;
  if (SameName(given, reached)) return true;
  // A name built from a short component (such as a Temp path) is the same
  // place as its long spelling.
  std::vector<wchar_t> longName(given.size() + MAX_PATH);
  const DWORD length = ::GetLongPathNameW(given.c_str(), longName.data(), static_cast<DWORD>(longName.size()));
  return length > 0 && length < longName.size() && SameName(Normalised({longName.data(), length}), reached);
}

}  // namespace scourel
