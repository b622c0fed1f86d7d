// How the browser cleaners visit one location: a folder, walked with one of
// a few treatments that differ only in what they list, take and remove, or a
// single file. One walk for both modes: a scan counts what a clean erases.
#pragma once

#include <string>
#include <string_view>

#include "task/task_context.h"

namespace scourel {

enum class Treatment {
  kWholeTree,    // every file at any depth; every visited folder removed once empty
  kTempFiles,    // "*.tmp*" files and folders, these folders removed once empty
  kTextFiles,    // "*.txt" files of this folder only
  kJournalFiles,  // names holding "-journal" after their first character, any depth
  kStorageFiles,  // names holding ".localstorage" after their first character, any depth
  kStoragePaths,  // full paths holding ".localstorage" after their first character, any depth
  kIndexFiles,    // full paths holding "Index" after their first character, this folder only
  // The same on the location exactly as it stands, with no closing
  // backslash: the listing is the path followed directly by "*.*".
  kIndexFilesBare,
  kSingleFile,
  // Not walked: the value count of a key under HKEY_CURRENT_USER, and the
  // URL cache's entries for a search pattern.
  kKeyValues,
  kUrlCacheCookies,
};

// What a folder treatment lists, takes and removes.
struct FolderShape {
  std::wstring_view mask;
  enum class Take { kEvery, kNameHolds, kPathHolds } take = Take::kEvery;
  std::wstring_view word;
  bool recurse = true;
  bool removeFolders = false;
};
FolderShape ShapeOf(Treatment treatment);

// True when `word` first occurs in `text` after its first character.
bool HoldsAfterStart(std::wstring_view text, std::wstring_view word);

class LocationWalker {
 public:
  explicit LocationWalker(const TaskContext& context) : context_(context) {}

  // Walks `folder` as given (a folder path normally ends in a backslash; the
  // listing is the folder followed directly by the mask) and adds what it
  // takes to the current-location pair. Read-only is cleared on every listed
  // entry and folders are removed even when measuring: a scan leaves files
  // but not empty folders. Links are never entered, taken or removed, and a
  // location reached through a link below `base` is not visited.
  void VisitFolder(const std::wstring& base, const std::wstring& folder, Treatment treatment);
  // The single-file treatment: when the file opens for reading with share
  // read, it is counted on `tally`, sized through that open and, when
  // erasing, shredded. A file reached through a link below `base` is left
  // alone. True when it was counted.
  bool VisitFile(const std::wstring& base, const std::wstring& path, Tally tally);

 private:
  void Walk(const std::wstring& folder, const FolderShape& shape, int depth);

  const TaskContext& context_;
};

}  // namespace scourel
