// Listing one folder for the cleaners' walks.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "common/folder_entry.h"
#include "common/win.h"
#include "task/task_context.h"

namespace scourel {

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

inline std::uint64_t EntrySize(const WIN32_FIND_DATAW& entry) {
  return (static_cast<std::uint64_t>(entry.nFileSizeHigh) << 32) | entry.nFileSizeLow;
}

}  // namespace scourel
