// What every folder walk shares, the cleaners' and the wiper's: the depth
// bound, and how a listed entry is read.
#pragma once

#include <string_view>

#include "common/win.h"

namespace scourel {

// How deep a walk goes below the folder it starts in. A level of any walk
// takes about 1.3 KB of stack (the listing's entry in ForEachEntry, the
// visitor's frame, the walker's own), so 256 levels use about a sixth of a
// thread's 2 MB, leaving the rest to the shredder and the shell below the
// deepest level.
// What lies deeper is left and not counted: no program that keeps within
// MAX_PATH, as Windows' own do, builds a tree that deep.
inline constexpr int kMaxFolderDepth = 256;

// Junctions and symbolic links: never entered, never shredded through.
inline bool IsReparsePoint(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}
inline bool IsDotEntry(const WIN32_FIND_DATAW& entry) {
  const std::wstring_view name = entry.cFileName;
  return name == L"." || name == L"..";
}
inline bool IsFolder(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace scourel
