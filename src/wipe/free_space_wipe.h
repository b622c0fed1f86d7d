// Wiping a volume's free space: fill files written with the passes of a wipe
// method until the volume is full, then (on NTFS) the freed file records
// reused by small files, then a TRIM of the fill on a solid-state drive, and
// everything removed again. The drive is recorded before the first byte and
// cleared after the last fill file is gone.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/stop_flag.h"
#include "common/unique_handle.h"
#include "protocol/reply_text.h"
#include "wipe/random_fill.h"
#include "wipe/wipe_passes.h"

namespace scourel {

// Percent of the free space filled, bytes filled so far.
using FillProgress = std::function<void(std::uint8_t percent, std::uint64_t bytes)>;

class CFreeSpaceWipe : public CEraserJunkData {
 public:
  // Bytes a fill file is written with at once, and the most a fill file may
  // hold on FAT (a 32-bit size).
  static constexpr std::uint32_t kChunkBytes = 1 << 20;
  static constexpr std::uint32_t kSmallestWrite = 512;
  // Files tried after the volume first reports full.
  static constexpr int kTailFiles = 8;
  static constexpr std::uint64_t kFatFileLimit = (std::uint64_t{1} << 32) - kChunkBytes;

  // `stop` is checked between chunks; wipe progress (message 1036) goes to
  // `window`, and each percentage to `progress`.
  CFreeSpaceWipe(const StopFlag* stop, HWND window, FillProgress progress)
      : stop_(stop), window_(window), progress_(std::move(progress)) {}

  // status: done, full (nothing to fill), no drive, read-only, cannot write, stopped.
  FreeSpaceReport Wipe(wchar_t letter, std::uint32_t method);

 private:
  enum class Filled { kLimit, kVolumeFull, kStopped };
  // Fill files, each up to `fileLimit` bytes, until the volume is full;
  // false when not even the first could be made.
  bool FillFiles(wchar_t letter, std::uint64_t fileLimit, std::uint32_t cluster, std::uint32_t method);
  Filled FillFile(HANDLE file, std::uint64_t limit, std::uint32_t cluster, std::uint32_t method,
                  std::uint64_t* size);
  void Report(bool force);
  void RemoveFill(wchar_t letter, FreeSpaceReport& report, bool trim);

  const StopFlag* stop_;
  HWND window_;
  FillProgress progress_;
  std::uint64_t freeAtStart_ = 0;
  std::uint64_t filled_ = 0;
  int lastPercent_ = -1;
  struct FillEntry {
    std::wstring path;
    UniqueHandleKernel handle;
    std::uint64_t size = 0;
  };
  std::vector<FillEntry> files_;
  RandomPassSource recordBytes_;
};

}  // namespace scourel
