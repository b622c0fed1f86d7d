// The recent-documents list: the shortcuts in the user's Recent folder.
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

// Counts each entry matching "<folder>\*.lnk*" with its size; when erasing,
// shreds each and then clears the shell's list once the listing ends, whether
// or not anything was found.
void VisitRecentDocuments(const TaskContext& context, const std::wstring& folder);

}  // namespace scourel
