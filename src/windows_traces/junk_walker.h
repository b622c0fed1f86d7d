// The walks of the junk-file task, in an erasing form (the task) and a
// measuring form (the full scan) that counts the same files without
// changing anything.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

#include "task/task_context.h"
#include "task/trace_file.h"

namespace scourel {

class JunkWalker {
 public:
  explicit JunkWalker(const TaskContext& context) : context_(context) {}

  // Temporary folders: `folder` ends with a backslash. Files that open under
  // the read probe count on the first junk-file counter and are shredded;
  // read-only is cleared first; subfolders are walked with removeFolder on,
  // so emptied subfolders go and the folder given stays.
  void TempFolderWalk(const std::wstring& folder, bool removeFolder, bool recurse);
  // As TempFolderWalk, but files must pass the read-write probe, are sized by
  // GetFileSizeEx and count on the second counter.
  void TreeWalk(const std::wstring& folder, bool removeFolder, bool recurse);
  // Crash dumps in `folder`: counted on the second counter, never erased.
  void CountCrashDumps(const std::wstring& folder);
  // "*.log" files below `folder` (no trailing backslash), entering only
  // entries whose attributes are exactly FILE_ATTRIBUTE_DIRECTORY.
  void LogWalk(const std::wstring& folder, int depth = 0);
  // An error-report folder (no trailing backslash): walked by TreeWalk.
  void ReportFolderStep(const std::wstring& folder);

 private:
  void FileWalk(const std::wstring& folder, bool removeFolder, bool recurse, bool treeWalk, int depth);
  // Probes, counts and, when erasing, shreds one file. The measuring form
  // remembers what it counted, so that a later step of the same pass skips
  // it as it would find it gone after a clean.
  void Take(const std::wstring& path, const WIN32_FIND_DATAW& entry, const TraceRule& rule,
            Relaxed<std::int32_t>& counter);

  const TaskContext& context_;
  std::unordered_set<std::wstring> taken_;
};

}  // namespace scourel
