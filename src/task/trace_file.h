// The one step every file-finding cleaner takes for a file it has found:
// probe it, count it, size it, and when erasing, shred it. A file that fails
// its probe is neither counted nor touched.
#pragma once

#include <cstdint>
#include <string>

#include "common/win.h"
#include "task/task_context.h"
#include "wipe/file_shred.h"

namespace scourel {

enum class Probe {
  kNone,       // every file is taken
  kRead,       // GENERIC_READ, share read: a file a program holds for writing fails
  kReadWrite,  // GENERIC_READ | GENERIC_WRITE, share read and write
};

enum class SizeFrom {
  kListing,   // the size the directory listing gave
  kReadOpen,  // GetFileSizeEx through a read open with share read (0 on failure)
  kNothing,   // counted without a size
};

struct TraceRule {
  Probe probe = Probe::kReadWrite;
  SizeFrom size = SizeFrom::kListing;
  // The erasing walk clears read-only before its probe; the measuring walk
  // changes nothing, so it probes a read-only file as if writable.
  bool readOnlyCleared = false;
};

struct TraceFile {
  std::wstring path;
  std::uint64_t listedSize = 0;
  DWORD attributes = FILE_ATTRIBUTE_NORMAL;  // as listed
};

inline TraceFile FromListing(std::wstring path, const WIN32_FIND_DATAW& entry) {
  return {std::move(path), (static_cast<std::uint64_t>(entry.nFileSizeHigh) << 32) | entry.nFileSizeLow,
          entry.dwFileAttributes};
}

// Probe, then count one and add the size to `tally`, then, when erasing,
// shred it with the task's wipe method. A folder or a link is counted but
// never shredded. True when the file was counted.
bool TakeTraceFile(const TaskContext& context, const TraceFile& file, const TraceRule& rule, Tally tally);

// Shreds one file with the task's wipe method, I/O layer and stop flag.
ShredOutcome ShredFile(const TaskContext& context, const std::wstring& path);

}  // namespace scourel
