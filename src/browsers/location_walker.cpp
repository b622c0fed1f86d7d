#include "browsers/location_walker.h"

#include "task/folder_walk.h"
#include "task/link_rule.h"
#include "task/trace_file.h"

namespace scourel {

namespace {

// A browser file is taken when it opens for reading with share read: one the
// browser holds open for writing fails and is left, uncounted.
constexpr TraceRule kListedFile{Probe::kRead, SizeFrom::kListing};
constexpr TraceRule kSingleFile{Probe::kRead, SizeFrom::kReadOpen};

bool Takes(const FolderShape& shape, const wchar_t* name, const std::wstring& path) {
  switch (shape.take) {
    case FolderShape::Take::kEvery: return true;
    case FolderShape::Take::kNameHolds: return HoldsAfterStart(name, shape.word);
    case FolderShape::Take::kPathHolds: return HoldsAfterStart(path, shape.word);
  }
  return false;
}

}  // namespace

FolderShape ShapeOf(Treatment treatment) {
  using Take = FolderShape::Take;
  switch (treatment) {
    case Treatment::kWholeTree: return {L"*.*", Take::kEvery, {}, true, true};
    // Matching folders are listed with the same mask and entered.
    case Treatment::kTempFiles: return {L"*.tmp*", Take::kEvery, {}, true, true};
    // Folders are neither entered nor removed: "Low" is a location of its own.
    case Treatment::kTextFiles: return {L"*.txt", Take::kEvery, {}, false, false};
    case Treatment::kJournalFiles: return {L"*.*", Take::kNameHolds, L"-journal", true, false};
    case Treatment::kStorageFiles: return {L"*.*", Take::kNameHolds, L".localstorage", true, false};
    case Treatment::kStoragePaths: return {L"*.*", Take::kPathHolds, L".localstorage", true, false};
    case Treatment::kIndexFiles:
    case Treatment::kIndexFilesBare: return {L"*.*", Take::kPathHolds, L"Index", false, false};
    case Treatment::kSingleFile:
    case Treatment::kKeyValues:
    case Treatment::kUrlCacheCookies: break;
  }
  return {};
}

bool HoldsAfterStart(std::wstring_view text, std::wstring_view word) {
  const auto at = text.find(word);
  return at != std::wstring_view::npos && at > 0;
}

void LocationWalker::VisitFolder(const std::wstring& base, const std::wstring& folder, Treatment treatment) {
  // The bare form lists names that begin with its last component: the folder
  // it lists in is the location.
  const std::wstring listed =
      treatment == Treatment::kIndexFilesBare ? folder.substr(0, folder.rfind(L'\\') + 1) : folder;
  if (!ReachedWithoutLinks(context_.io, base, listed)) return;
  Walk(folder, ShapeOf(treatment), 0);
}

void LocationWalker::Walk(const std::wstring& folder, const FolderShape& shape, int depth) {
  const Tally current = context_.totals.browser.current.tally();
  ForEachEntry(context_, folder + std::wstring(shape.mask), [&](const WIN32_FIND_DATAW& entry) {
    ClearReadOnly(context_, folder, entry);
    // "." and ".." are this folder and its parent; a link is neither entered nor taken.
    if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
    const std::wstring path = folder + entry.cFileName;
    if (IsFolder(entry)) {
      if (shape.recurse && depth < kMaxFolderDepth) Walk(path + L"\\", shape, depth + 1);
      return;
    }
    if (Takes(shape, entry.cFileName, path)) TakeTraceFile(context_, FromListing(path, entry), kListedFile, current);
  });
  // Succeeds only once the folder is empty; a failure is of no interest.
  if (shape.removeFolders && !context_.stopped()) (void)context_.io.RemoveFolder(folder);
}

bool LocationWalker::VisitFile(const std::wstring& base, const std::wstring& path, Tally tally) {
  if (!ReachedWithoutLinks(context_.io, base, path)) return false;
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return TakeTraceFile(context_, TraceFile{path, 0, attributes}, kSingleFile, tally);
}

}  // namespace scourel
