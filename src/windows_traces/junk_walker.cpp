#include "windows_traces/junk_walker.h"

#include "common/unique_handle.h"
#include "host/settings.h"
#include "host/task_totals.h"
#include "wipe/file_shred.h"
#include "windows_traces/file_probe.h"
#include "windows_traces/folder_walk.h"
#include "windows_traces/junk_paths.h"

namespace scourel {

namespace {

// The erasing walk clears read-only before its read-write probe; the
// measuring walk changes nothing, so for a read-only file it asks only
// whether the file would open for reading under the same sharing.
bool WouldPassReadWriteProbe(const std::wstring& path, DWORD attributes) {
  if (!(attributes & FILE_ATTRIBUTE_READONLY)) return ReadWriteProbe(path);
  return UniqueHandleKernel(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr))
      .valid();
}

}  // namespace

JunkWalker::JunkWalker(Mode mode) : mode_(mode), method_(g_wipeMethod.get()) {}

void JunkWalker::TempFolderWalk(const std::wstring& folder, bool removeFolder, bool recurse) {
  FileWalk(folder, removeFolder, recurse, Probe::kRead);
}

void JunkWalker::TreeWalk(const std::wstring& folder, bool removeFolder, bool recurse) {
  FileWalk(folder, removeFolder, recurse, Probe::kReadWrite);
}

void JunkWalker::FileWalk(const std::wstring& folder, bool removeFolder, bool recurse, Probe probe) {
  ForEachEntry(folder + L"*.*", [&](const WIN32_FIND_DATAW& entry) {
    // "." and ".." name this folder and its parent: nothing to clear or walk.
    // A link is neither entered nor shredded: what it points at is not junk.
    if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
    const std::wstring path = folder + entry.cFileName;
    if (mode_ == Mode::kErase && (entry.dwFileAttributes & FILE_ATTRIBUTE_READONLY)) {
      ::SetFileAttributesW(path.c_str(), entry.dwFileAttributes & ~FILE_ATTRIBUTE_READONLY);
    }
    if (IsFolder(entry)) {
      if (recurse) FileWalk(path + L"\\", true, recurse, probe);
      return;
    }
    if (Taken(path)) return;
    if (probe == Probe::kRead) {
      if (!ReadProbe(path)) return;
      AddBytes(g_totals.byteTotal, EntrySize(entry));
      g_totals.junkFirst.add(1);
    } else {
      const bool opens = mode_ == Mode::kErase ? ReadWriteProbe(path)
                                               : WouldPassReadWriteProbe(path, entry.dwFileAttributes);
      if (!opens) return;
      AddBytes(g_totals.byteTotal, SizeByReadProbe(path));
      g_totals.junkSecond.add(1);
    }
    Take(path);
  });
  // Succeeds only when the folder is now empty; a failure is of no interest.
  if (removeFolder && mode_ == Mode::kErase) ::RemoveDirectoryW(folder.c_str());
}

void JunkWalker::CountCrashDumps(const std::wstring& folder) {
  ForEachEntry(folder + L"\\*.*", [&](const WIN32_FIND_DATAW& entry) {
    if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
    const std::wstring path = folder + L"\\" + entry.cFileName;
    if (Taken(path) || !ReadWriteProbe(path)) return;
    AddBytes(g_totals.byteTotal, EntrySize(entry));
    g_totals.junkSecond.add(1);
  });
}

void JunkWalker::LogWalk(const std::wstring& folder) {
  ForEachEntry(folder + L"\\*.*", [&](const WIN32_FIND_DATAW& entry) {
    const std::wstring path = folder + L"\\" + entry.cFileName;
    // Only a plain folder is entered: one with any further bit (hidden,
    // system, a link) is taken for a file, and so never walked.
    if (entry.dwFileAttributes == FILE_ATTRIBUTE_DIRECTORY) {
      if (!IsLogWalkSkippedFolder(entry.cFileName)) LogWalk(path);
      return;
    }
    if (IsReparsePoint(entry) || !IsLogFileName(entry.cFileName)) return;
    if (Taken(path) || !ReadWriteProbe(path)) return;
    AddBytes(g_totals.byteTotal, EntrySize(entry));
    g_totals.junkSecond.add(1);
    Take(path);
  });
}

void JunkWalker::ReportFolderStep(const std::wstring& folder) {
  // This first loop probes the search pattern, not the entry: a pattern
  // never opens, so it finds nothing. The tree walk below does the work.
  const std::wstring pattern = folder + L"\\*.*";
  ForEachEntry(pattern, [&](const WIN32_FIND_DATAW&) { ReadWriteProbe(pattern); });
  TreeWalk(folder + L"\\", false, true);
}

void JunkWalker::Take(const std::wstring& path) {
  if (mode_ == Mode::kErase) {
    // Counted whatever the shredder makes of it.
    CFileShred{}.Shred(path, method_);
  } else {
    taken_.insert(PathKey(path));
  }
}

bool JunkWalker::Taken(const std::wstring& path) const {
  return !taken_.empty() && taken_.count(PathKey(path)) != 0;
}

}  // namespace scourel
