#include "wipe/directory_slack.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <utility>

#include "common/folder_entry.h"
#include "common/unique_handle.h"
#include "common/win.h"
#include "wipe/volume_facts.h"
#include "wipe/wipe_marker.h"

namespace scourel {

namespace {

constexpr std::uint32_t kLastNumber = 99'999;

bool Move(const std::wstring& from, const std::wstring& to) { return ::MoveFileExW(from.c_str(), to.c_str(), 0) != 0; }

}  // namespace

std::wstring SlackEntryName(std::uint32_t number, std::uint32_t length) {
  wchar_t digits[8] = {};
  std::swprintf(digits, 8, L"%05u", number % (kLastNumber + 1));
  std::wstring name = L"XE8AQU";
  name += digits;
  if (name.size() < length) name.append(length - name.size(), L'X');
  return name;
}

bool IsSlackEntryName(const std::wstring& name) {
  if (std::find(kSlackNameLengths.begin(), kSlackNameLengths.end(), name.size()) == kSlackNameLengths.end()) {
    return false;
  }
  if (::CompareStringOrdinal(name.c_str(), 6, L"XE8AQU", 6, TRUE) != CSTR_EQUAL) return false;
  for (std::size_t i = 6; i < name.size(); ++i) {
    const bool ok = i < 11 ? std::iswdigit(name[i]) != 0 : (name[i] == L'X' || name[i] == L'x');
    if (!ok) return false;
  }
  return true;
}

void RemoveSlackEntries(const std::wstring& folder) {
  WIN32_FIND_DATAW found{};
  UniqueFindHandle find(::FindFirstFileW((folder + L"XE8AQU*").c_str(), &found));
  if (!find) return;
  do {
    // Files only: a folder or a link of that name is not one of ours.
    if (!IsFolder(found) && !IsReparsePoint(found) && IsSlackEntryName(found.cFileName)) {
      ::DeleteFileW((folder + found.cFileName).c_str());
    }
  } while (::FindNextFileW(find.get(), &found));
}

DirectorySlack::DirectorySlack(const std::wstring& fillFolder, const StopFlag* stop, std::function<void()> tick)
    : fillFolder_(L"\\\\?\\" + fillFolder), stop_(stop), tick_(std::move(tick)) {}

void DirectorySlack::GatherCarriers() {
  // The record step's files: their records are written already, so they
  // lose nothing by being emptied, and an empty file's record has room for
  // the longest name.
  std::vector<std::wstring> pending{fillFolder_};
  while (!pending.empty() && carriers_.size() < kCarriers) {
    const std::wstring folder = std::move(pending.back());
    pending.pop_back();
    WIN32_FIND_DATAW found{};
    UniqueFindHandle find(::FindFirstFileW((folder + L"\\*").c_str(), &found));
    if (!find) continue;
    do {
      if (IsDotEntry(found) || IsReparsePoint(found)) continue;
      const std::wstring path = folder + L"\\" + found.cFileName;
      if (IsFolder(found)) {
        pending.push_back(path);
        continue;
      }
      UniqueHandleKernel file(
          ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
      if (file) carriers_.push_back(path);
    } while (carriers_.size() < kCarriers && ::FindNextFileW(find.get(), &found));
  }
  while (carriers_.size() < kCarriers) {
    const std::wstring path = fillFolder_ + L"\\XE8AQUC" + std::to_wstring(carriers_.size());
    UniqueHandleKernel file(
        ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) break;
    carriers_.push_back(path);
  }
}

void DirectorySlack::Run(wchar_t letter, std::uint32_t cluster) {
  const std::wstring root = std::wstring(L"\\\\?\\") + letter + L":\\";
  std::vector<std::pair<std::wstring, int>> pending{{root, 0}};
  std::uint32_t visited = 0;
  while (!pending.empty() && !carriers_.empty() && !Raised(stop_)) {
    auto [folder, depth] = std::move(pending.back());
    pending.pop_back();
    // Another program may have freed space meanwhile.
    if (FreeBytesOf(letter) >= cluster) return;
    FillFolder(folder);
    if (++visited % kTickFolders == 0 && tick_) tick_();
    if (depth >= kMaxFolderDepth) continue;
    WIN32_FIND_DATAW found{};
    UniqueFindHandle find(::FindFirstFileW((folder + L"*").c_str(), &found));
    if (!find) continue;
    do {
      if (!IsFolder(found) || IsReparsePoint(found) || IsDotEntry(found)) continue;
      const std::wstring child = folder + found.cFileName;
      if (child == fillFolder_) continue;  // the carriers' own
      pending.emplace_back(child + L"\\", depth + 1);
    } while (::FindNextFileW(find.get(), &found));
  }
}

void DirectorySlack::FillFolder(const std::wstring& folder) {
  // Entries coming and going change the folder's times: they are put back.
  const std::wstring opened = folder.size() > 7 ? folder.substr(0, folder.size() - 1) : folder;  // "\\?\X:\" stays
  UniqueHandleKernel handle(::CreateFileW(opened.c_str(), FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                                          nullptr));
  // A folder whose times cannot be put back is left as it is.
  FILE_BASIC_INFO times{};
  if (!handle || !::GetFileInformationByHandleEx(handle.get(), FileBasicInfo, &times, sizeof times)) return;
  // Named before the first entry goes in, so that a worker killed meanwhile
  // leaves nothing here that the next start does not remove.
  if (!RecordSlackFolder(folder)) return;

  std::vector<std::wstring> moved;  // moved[i] is where carriers_[i] went
  std::uint32_t number = 0;
  for (const std::uint32_t length : kSlackNameLengths) {
    while (moved.size() < carriers_.size() && number <= kLastNumber && !Raised(stop_)) {
      std::wstring target = folder + SlackEntryName(number++, length);
      if (Move(carriers_[moved.size()], target)) {
        moved.push_back(std::move(target));
        continue;
      }
      const DWORD error = ::GetLastError();
      if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) break;  // no room for this length
    }
  }
  entries_ += moved.size();
  if (!moved.empty()) ++folders_;
  // Back to where they came from; one that cannot go back is ours and empty.
  std::vector<std::wstring> kept;
  for (std::size_t i = 0; i < carriers_.size(); ++i) {
    if (i >= moved.size() || Move(moved[i], carriers_[i])) {
      kept.push_back(std::move(carriers_[i]));
    } else {
      ::DeleteFileW(moved[i].c_str());
    }
  }
  carriers_ = std::move(kept);
  ClearSlackFolder();
  if (!moved.empty()) {
    times.FileAttributes = 0;  // unchanged
    ::SetFileInformationByHandle(handle.get(), FileBasicInfo, &times, sizeof times);
  }
}

void DirectorySlack::TurnJournal() {
  // Each turn changes the times of a few carriers (records, or inodes in
  // several inode blocks) and flushes one: a transaction of its own with
  // every changed block in it. Times, not renames: on the full volume a
  // folder's index may have no room for a new name.
  std::vector<UniqueHandleKernel> files;
  for (std::size_t i = 0; i < carriers_.size() && files.size() < kJournalCarriers; ++i) {
    UniqueHandleKernel file(::CreateFileW(carriers_[i].c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file) files.push_back(std::move(file));
  }
  if (files.empty()) return;
  for (std::uint32_t turn = 0; turn < kJournalTurns && !Raised(stop_); ++turn) {
    ULARGE_INTEGER seconds{};
    seconds.QuadPart = (std::uint64_t{13'000'000'000} + turn) * 10'000'000;  // in 2012, a second a turn
    const FILETIME time{seconds.LowPart, seconds.HighPart};
    for (const UniqueHandleKernel& file : files) ::SetFileTime(file.get(), nullptr, nullptr, &time);
    ::FlushFileBuffers(files.front().get());
  }
}

}  // namespace scourel
