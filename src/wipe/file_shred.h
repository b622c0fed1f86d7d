// Secure deletion of one file: overwrite cluster by cluster with the passes
// of a wipe method, rename to a name that keeps nothing of the old one,
// delete.
#pragma once

#include <cstdint>
#include <string>

#include "common/stop_flag.h"
#include "wipe/shred_io.h"
#include "wipe/wipe_passes.h"

namespace scourel {

enum class ShredOutcome {
  kLeftInPlace,              // not opened, no geometry, or its identity unknown
  kStopped,                  // the task was stopped mid-overwrite: left under its own name
  kOverwrittenAndDeleted,    // every pass written, then renamed and deleted
  kDeletedWithoutOverwrite,  // renamed and deleted, its data not (or not fully) overwritten
  kReachesAnotherFile,       // the name leads to another file: nothing written, renamed or deleted
};

// 1 when the file was handed to deletion, 0 when it was left in place.
constexpr int ShredResult(ShredOutcome outcome) {
  return outcome == ShredOutcome::kOverwrittenAndDeleted || outcome == ShredOutcome::kDeletedWithoutOverwrite;
}

class CFileShred : public CEraserJunkData {
 public:
  // Every file-system call goes through `io`; `stop` is checked between
  // clusters; wipe progress, when on, goes to `progressWindow`.
  explicit CFileShred(ShredIo& io = SystemShredIo(), const StopFlag* stop = nullptr, HWND progressWindow = nullptr)
      : io_(io), stop_(stop), progressWindow_(progressWindow) {}

  ShredOutcome Shred(const std::wstring& path, std::uint32_t method);
  // Renames the file to a name of "x"s of the same shape and returns the new
  // path, whether or not the rename worked.
  std::wstring ObscureName(const std::wstring& path);

 private:
  enum class Overwrite { kDone, kWriteFailed, kStopped };
  Overwrite OverwriteClusters(HANDLE file, std::uint64_t size, std::uint32_t clusterSize, std::uint32_t method);
  // Renames, then deletes under the new name.
  void RenameAndDelete(const std::wstring& path);
  enum class Name { kFile, kLink };
  // A file is renamed and deleted, a link only deleted. False, touching
  // nothing, when the task was stopped.
  bool RemoveUnlessStopped(const std::wstring& path, Name name);

  ShredIo& io_;
  const StopFlag* stop_;
  HWND progressWindow_;
  std::uint64_t clusterCount_ = 0;
  std::uint16_t bytesPerSector_ = 0;
};

}  // namespace scourel
