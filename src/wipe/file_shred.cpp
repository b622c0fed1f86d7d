// Placeholder until the wipe methods land: renames and deletes without overwriting.
#include "wipe/file_shred.h"

#include <cstdio>

#include "common/win.h"

namespace scourel {

int CFileShred::Shred(const std::wstring& path, std::uint32_t) {
  ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_ARCHIVE);
  ::DeleteFileW(ObscureName(path).c_str());
  return 1;
}

std::wstring CFileShred::ObscureName(const std::wstring& path) {
  std::wstring renamed = path;
  const auto slash = renamed.rfind(L'\\');
  const auto start = slash == std::wstring::npos ? 0 : slash + 1;
  const auto dot = renamed.rfind(L'.');
  for (auto i = start; i < renamed.size(); ++i) {
    if (!(dot != std::wstring::npos && dot >= start && i == dot)) renamed[i] = L'x';
  }
  _wrename(path.c_str(), renamed.c_str());
  return renamed;
}

}  // namespace scourel
