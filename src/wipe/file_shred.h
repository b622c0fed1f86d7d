// Secure deletion of one file: overwrite, rename, delete.
#pragma once

#include <cstdint>
#include <string>

namespace scourel {

class CFileShred {
 public:
  // 1 when the file was handed to deletion, 0 when it was left in place.
  int Shred(const std::wstring& path, std::uint32_t method);
  // Renames the file to a name of "x"s of the same shape; returns the new path.
  std::wstring ObscureName(const std::wstring& path);
};

}  // namespace scourel
