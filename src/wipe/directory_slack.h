// Deleted names in folder indexes. Removing a name leaves its bytes past the
// entries in use: in an NTFS index block (and its blocks freed but kept), a
// FAT folder's deleted slots, a journal's copies of the folder's blocks. They
// go only when the file system writes entries over them. So, on the full
// volume (where no index may grow, and none keeps what it grew), empty fill
// files are moved into each folder under long fill names, longest first,
// until the folder refuses one of each length, and moved back. Moves, not
// new files: on a full volume a rename needs no new record (ntfs-3g refuses
// every new file there). Then a run of flushed changes turns the journal over.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/stop_flag.h"

namespace scourel {

// Name lengths of the entries moved into a folder: the longest first, for
// the most bytes per entry, then shorter ones for what is left at the end
// of a block.
inline constexpr std::array<std::uint32_t, 6> kSlackNameLengths = {255, 128, 64, 32, 16, 11};

// "XE8AQU", the entry's number in five digits, 'X' up to `length`: names of
// one folder sort in the order they are made, so each lands behind the last.
std::wstring SlackEntryName(std::uint32_t number, std::uint32_t length);

// True for a name SlackEntryName makes, whatever the case: what a worker
// stopped in the middle of a folder left there.
bool IsSlackEntryName(const std::wstring& name);
// Removes the entries a worker stopped in the middle left in `folder`.
void RemoveSlackEntries(const std::wstring& folder);

class DirectorySlack {
 public:
  // Empty files carried from folder to folder. A folder takes entries only
  // until it refuses one of each length, so more carriers cost nothing where
  // a folder has little room, and reach further into the blocks a large
  // folder freed (a 4 KiB block takes about seven of the longest).
  static constexpr std::size_t kCarriers = 256;
  // Flushed changes after the walk: each a journal transaction of a few
  // blocks (five on ext4), together about 10,000 blocks of journal: a
  // journal of 4,096 blocks twice over.
  static constexpr std::uint32_t kJournalTurns = 2048;
  static constexpr std::size_t kJournalCarriers = 8;

  // `fillFolder` is the fill folder ("X:\$$XE8AQU"), which the walk skips.
  // `tick` runs every kTickFolders folders, so that a long walk still shows life.
  DirectorySlack(const std::wstring& fillFolder, const StopFlag* stop, std::function<void()> tick = nullptr);
  static constexpr std::uint32_t kTickFolders = 64;

  // Takes the files below the fill folder as carriers, emptied, and makes
  // more there up to kCarriers while the volume allows.
  void GatherCarriers();
  // Every folder of the volume below `letter`'s root, never through a link,
  // kMaxFolderDepth deep; each keeps its times. Only while the volume has
  // less than `cluster` bytes free: an index that can grow keeps what it grew.
  void Run(wchar_t letter, std::uint32_t cluster);
  void TurnJournal();

  std::uint32_t folders() const { return folders_; }  // folders that took at least one entry
  std::uint64_t entries() const { return entries_; }
  std::size_t carriers() const { return carriers_.size(); }

 private:
  void FillFolder(const std::wstring& folder);

  std::wstring fillFolder_;  // \\?\X:\$$XE8AQU
  const StopFlag* stop_;
  std::function<void()> tick_;
  std::vector<std::wstring> carriers_;
  std::uint32_t folders_ = 0;
  std::uint64_t entries_ = 0;
};

}  // namespace scourel
