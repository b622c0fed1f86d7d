// Temporary files, crash dumps, log files and error reports.
#pragma once

#include "task/task_context.h"

namespace scourel {

// Walks the same places in the same order in both modes. Erasing (the
// junk-file task) shreds temporary files, log files and error reports and
// counts crash dumps; measuring (the full scan) adds to the two junk-file
// counters and the byte total exactly what the task would on the same disk.
// Neither resets the totals: the caller does.
void JunkFiles(const TaskContext& context);

}  // namespace scourel
