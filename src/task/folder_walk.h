// Listing one folder for the cleaners' walks.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "common/win.h"
#include "task/task_context.h"

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

// Calls `visit` for every entry FindFirstFileW/FindNextFileW give for the
// pattern, "." and ".." included. Ends early once the task is stopped, so a
// stopped task makes no further change. A pattern that cannot be listed
// yields nothing.
void ForEachEntry(const TaskContext& context, const std::wstring& pattern,
                  const std::function<void(const WIN32_FIND_DATAW&)>& visit);

// Clears read-only on a listed entry of `folder` (which ends in a backslash),
// "." and ".." too: they are the folder itself and its parent, so an emptied
// folder that carried read-only goes like any other. A link is left as it is:
// its attributes may be another file's.
void ClearReadOnly(const TaskContext& context, const std::wstring& folder, const WIN32_FIND_DATAW& entry);

inline bool IsDotEntry(const WIN32_FIND_DATAW& entry) {
  const std::wstring_view name = entry.cFileName;
  return name == L"." || name == L"..";
}
inline bool IsFolder(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}
inline std::uint64_t EntrySize(const WIN32_FIND_DATAW& entry) {
  return (static_cast<std::uint64_t>(entry.nFileSizeHigh) << 32) | entry.nFileSizeLow;
}

}  // namespace scourel
