// The Recycle Bins of every drive.
#pragma once

#include "task/task_context.h"

namespace scourel {

// Erasing (the Recycle Bin task): counts every drive's bin into the item
// counter and the byte total, then empties them all. Measuring (the full
// scan): counts into the item counter and the separate Recycle Bin byte
// total, empties nothing.
void RecycleBins(const TaskContext& context);

}  // namespace scourel
