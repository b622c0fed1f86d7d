// Secure deletion of one file: overwrite cluster by cluster with the passes
// of a wipe method, rename to a name that keeps nothing of the old one,
// delete.
#pragma once

#include <cstdint>
#include <string>

#include "wipe/shred_io.h"
#include "wipe/wipe_passes.h"

namespace scourel {

class CFileShred : public CEraserJunkData {
 public:
  CFileShred() : io_(SystemShredIo()) {}
  // For tests: every file-system call goes through `io`.
  explicit CFileShred(ShredIo& io) : io_(io) {}

  // 1 when the file was handed to deletion, 0 when it was left in place.
  int Shred(const std::wstring& path, std::uint32_t method);
  // Renames the file to a name of "x"s of the same shape and returns the new
  // path, whether or not the rename worked.
  std::wstring ObscureName(const std::wstring& path);

 private:
  // Writes every pass of every cluster; false when a write failed.
  bool Overwrite(HANDLE file, std::uint64_t size, std::uint32_t clusterSize, std::uint32_t method);
  // Renames, then deletes under the new name.
  void RenameAndDelete(const std::wstring& path);

  ShredIo& io_;
  std::uint64_t clusterCount_ = 0;
  std::uint16_t bytesPerSector_ = 0;
};

}  // namespace scourel
