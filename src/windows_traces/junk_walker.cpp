#include "windows_traces/junk_walker.h"

#include "task/file_probe.h"
#include "task/folder_walk.h"
#include "windows_traces/junk_paths.h"

namespace scourel {

void JunkWalker::TempFolderWalk(const std::wstring& folder, bool removeFolder, bool recurse) {
  FileWalk(folder, removeFolder, recurse, false, 0);
}

void JunkWalker::TreeWalk(const std::wstring& folder, bool removeFolder, bool recurse) {
  FileWalk(folder, removeFolder, recurse, true, 0);
}

void JunkWalker::FileWalk(const std::wstring& folder, bool removeFolder, bool recurse, bool treeWalk, int depth) {
  // The temporary-folder walk takes what opens for reading and sizes it from
  // the listing; the tree walk takes what opens for reading and writing and
  // sizes it through an open.
  const TraceRule rule = treeWalk ? TraceRule{Probe::kReadWrite, SizeFrom::kReadOpen, true}
                                  : TraceRule{Probe::kRead, SizeFrom::kListing};
  Relaxed<std::int32_t>& counter = treeWalk ? context_.totals.junkSecond : context_.totals.junkFirst;
  ForEachEntry(context_, folder + L"*.*", [&](const WIN32_FIND_DATAW& entry) {
    if (context_.erasing()) ClearReadOnly(context_, folder, entry);
    // "." and ".." are this folder and its parent: nothing to walk. A link is
    // neither entered nor shredded: what it points at is not junk.
    if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
    const std::wstring path = folder + entry.cFileName;
    if (IsFolder(entry)) {
      if (recurse && depth < kMaxFolderDepth) FileWalk(path + L"\\", true, recurse, treeWalk, depth + 1);
      return;
    }
    Take(path, entry, rule, counter);
  });
  // Succeeds only when the folder is now empty; a failure is of no interest.
  if (removeFolder && context_.erasing()) (void)context_.io.RemoveFolder(folder);
}

void JunkWalker::CountCrashDumps(const std::wstring& folder) {
  // Counted only, never erased, whatever the task.
  const TaskContext measuring = context_.With(Mode::kMeasure);
  const Tally tally = context_.totals.byteTotalWith(context_.totals.junkSecond);
  ForEachEntry(context_, folder + L"\\*.*", [&](const WIN32_FIND_DATAW& entry) {
    if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
    const std::wstring path = folder + L"\\" + entry.cFileName;
    if (taken_.count(PathKey(path))) return;
    TakeTraceFile(measuring, FromListing(path, entry), {}, tally);
  });
}

void JunkWalker::LogWalk(const std::wstring& folder, int depth) {
  ForEachEntry(context_, folder + L"\\*.*", [&](const WIN32_FIND_DATAW& entry) {
    const std::wstring path = folder + L"\\" + entry.cFileName;
    // Only a plain folder is entered: one with any further bit (hidden,
    // system, a link) is taken for a file, and so never walked.
    if (entry.dwFileAttributes == FILE_ATTRIBUTE_DIRECTORY) {
      if (!IsLogWalkSkippedFolder(entry.cFileName) && depth < kMaxFolderDepth) LogWalk(path, depth + 1);
      return;
    }
    if (IsReparsePoint(entry) || !IsLogFileName(entry.cFileName)) return;
    Take(path, entry, {}, context_.totals.junkSecond);
  });
}

void JunkWalker::ReportFolderStep(const std::wstring& folder) {
  // This first loop probes the search pattern, not the entry: a pattern
  // never opens, so it finds nothing. The tree walk below does the work.
  const std::wstring pattern = folder + L"\\*.*";
  ForEachEntry(context_, pattern, [&](const WIN32_FIND_DATAW&) { ReadWriteProbe(pattern); });
  TreeWalk(folder + L"\\", false, true);
}

void JunkWalker::Take(const std::wstring& path, const WIN32_FIND_DATAW& entry, const TraceRule& rule,
                      Relaxed<std::int32_t>& counter) {
  const std::wstring key = context_.erasing() ? std::wstring() : PathKey(path);
  if (!key.empty() && taken_.count(key)) return;
  if (TakeTraceFile(context_, FromListing(path, entry), rule, context_.totals.byteTotalWith(counter)) &&
      !key.empty()) {
    taken_.insert(key);
  }
}

}  // namespace scourel
