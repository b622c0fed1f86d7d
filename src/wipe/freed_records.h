// The remains of deleted files on NTFS: a freed file record keeps the file's
// names and, for a small file, its data, until the record is used again, and
// a reused record is overwritten only as far as its new content reaches. On
// a full volume new records can only come from freed ones (the record table
// cannot grow), so making small files and folders that fill their records
// until NTFS refuses one overwrites every freed record.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "common/stop_flag.h"
#include "wipe/random_fill.h"

namespace scourel {

// Bytes of data each small file holds: as much as stays inside its record
// beside its name, its short name and its times.
inline constexpr std::uint32_t kRecordFileBytes = 512;
// Characters of every name made: three such entries fit in a folder's own
// record, so no folder's index needs a cluster.
inline constexpr std::uint32_t kRecordNameLength = 32;
// Folders made before the fill, each with its small file.
inline constexpr std::size_t kSkeletonFolders = 15;

// Makes a tree below a folder (which the caller made while the volume had
// room for its entry) until the file system refuses. Each folder holds one
// small file and two folders; a folder that gets no file of its own is taken
// back and a file made in its place, so no record ends as a near-empty folder.
class FreedRecordFiller {
 public:
  // `tick` runs every kTickRecords records, so that a long step still shows life.
  FreedRecordFiller(const std::wstring& folder, RandomPassSource& random, const StopFlag* stop,
                    std::function<void()> tick = nullptr);
  static constexpr std::uint32_t kTickRecords = 256;
  // Folders that give the tree its first levels, and their files, made while
  // the volume still has room (`freeBytes` free), so that few have to be made
  // on the full volume, where a refused folder can leave its record unusable
  // and no file gets a record at all (ntfs-3g).
  void Prepare(std::uint64_t freeBytes);
  // Makes files and folders until the file system refuses.
  void Run();
  std::uint32_t made() const { return made_; }

 private:
  bool MakeSmallFile(const std::wstring& path);

  void Made();

  RandomPassSource& random_;
  std::function<void()> tick_;
  const StopFlag* stop_;
  std::deque<std::wstring> folders_;
  std::vector<std::wstring> skeleton_;
  int nextSlot_ = 0;
  std::uint32_t made_ = 0;
};

}  // namespace scourel
