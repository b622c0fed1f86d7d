// The walks of the junk-file task, in an erasing form (the task) and a
// measuring form (the full scan) that counts the same files without
// changing anything.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

namespace scourel {

class JunkWalker {
 public:
  enum class Mode { kErase, kMeasure };
  // The wipe method is read by the caller first (ReadWipeAlgorithm).
  explicit JunkWalker(Mode mode);

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
  void LogWalk(const std::wstring& folder);
  // An error-report folder (no trailing backslash): walked by TreeWalk.
  void ReportFolderStep(const std::wstring& folder);

 private:
  enum class Probe { kRead, kReadWrite };
  void FileWalk(const std::wstring& folder, bool removeFolder, bool recurse, Probe probe);
  // Counts one file and, when erasing, shreds it. The measuring form
  // remembers it instead, so that a later step of the same pass skips it as
  // it would find it gone after a clean.
  void Take(const std::wstring& path);
  bool Taken(const std::wstring& path) const;

  Mode mode_;
  std::uint32_t method_;
  std::unordered_set<std::wstring> taken_;
};

}  // namespace scourel
