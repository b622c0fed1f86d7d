#include "wipe/freed_records.h"

#include <algorithm>
#include <deque>

#include "common/unique_handle.h"
#include "common/win.h"

namespace scourel {

namespace {

// Consecutive refusals after which the file system counts as refusing: a
// refusal can be one folder's index, so a few more folders get their turn.
constexpr int kRefusalsToEnd = 8;
// A file system that never refuses still ends.
constexpr std::uint32_t kMostRecords = 8'000'000;

// The three names a folder holds, all of one length; the last letter tells them apart.
std::wstring EntryName(wchar_t last) { return L"XE8AQU" + std::wstring(kRecordNameLength - 7, L'X') + last; }

}  // namespace

FreedRecordFiller::FreedRecordFiller(const std::wstring& folder, RandomPassSource& random, const StopFlag* stop,
                                     std::function<void()> tick)
    : random_(random), tick_(std::move(tick)), stop_(stop), folders_{L"\\\\?\\" + folder} {}  // the tree can be deeper than MAX_PATH

void FreedRecordFiller::Made() {
  if (++made_ % kTickRecords == 0 && tick_) tick_();
}

bool FreedRecordFiller::MakeSmallFile(const std::wstring& path) {
  UniqueHandleKernel file(
      ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  Made();  // its record is taken even when its data will not fit
  std::uint8_t bytes[kRecordFileBytes];
  random_.Fill(bytes, sizeof bytes);
  DWORD written = 0;
  return ::WriteFile(file.get(), bytes, sizeof bytes, &written, nullptr) && written == sizeof bytes;
}

void FreedRecordFiller::Prepare(std::uint64_t freeBytes) {
  const std::wstring drive = folders_.front().substr(4, 3);  // "X:\" after "\\?\"
  std::deque<std::wstring> parents{folders_.front()};
  while (skeleton_.size() < kSkeletonFolders && !parents.empty() && !Raised(stop_)) {
    const std::wstring child = parents.front() + L"\\" + EntryName(skeleton_.size() % 2 == 0 ? L'A' : L'B');
    if (skeleton_.size() % 2 == 1) parents.pop_front();
    if (!::CreateDirectoryW(child.c_str(), nullptr)) break;
    Made();
    skeleton_.push_back(child);
    parents.push_back(child);
    // Its file now: on a full volume ntfs-3g gives a new file no record, and
    // these files are what the folder-index step moves around there.
    (void)MakeSmallFile(child + L"\\" + EntryName(L'F'));
    // Free clusters going means the record table grew: no freed record was
    // left, and more folders would only grow it further.
    ULARGE_INTEGER available{}, total{}, free{};
    if (::GetDiskFreeSpaceExW(drive.c_str(), &available, &total, &free) && free.QuadPart < freeBytes) break;
  }
  // The tree grows on below the skeleton's last folders.
  if (!skeleton_.empty()) folders_.assign(skeleton_.end() - std::min<std::size_t>(skeleton_.size(), 8), skeleton_.end());
}

void FreedRecordFiller::Run() {
  int refusals = 0;
  constexpr wchar_t kSlots[] = {L'A', L'B'};
  while (!folders_.empty() && refusals < kRefusalsToEnd && made_ < kMostRecords && !Raised(stop_)) {
    const std::wstring child = folders_.front() + L"\\" + EntryName(kSlots[nextSlot_]);
    if (::CreateDirectoryW(child.c_str(), nullptr)) {
      Made();
      if (MakeSmallFile(child + L"\\" + EntryName(L'F'))) {
        folders_.push_back(child);
        refusals = 0;
      } else {
        // No record left for its file: the folder's record goes back and a
        // file takes its place.
        if (::RemoveDirectoryW(child.c_str())) --made_;
        refusals = MakeSmallFile(child) ? 0 : refusals + 1;
      }
    } else {
      refusals = MakeSmallFile(child) ? 0 : refusals + 1;
    }
    if (++nextSlot_ == 2) {
      nextSlot_ = 0;
      folders_.pop_front();
    }
  }
}

}  // namespace scourel
