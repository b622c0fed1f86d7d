// Shortcuts whose target is gone.
#pragma once

#include "task/task_context.h"

namespace scourel {

// Walks the Start Menu of all users, the public desktop and the profile.
// Erasing (the dead-shortcut task): zeroes the byte total first, then counts
// each dead shortcut on the second junk-file counter with its size and
// shreds it. Measuring (the full scan): zeroes the byte total, then only
// counts dead shortcuts, without sizes.
void DeadShortcuts(const TaskContext& context);

// Whether "Windows\system32" in a target must read "Windows\Sysnative": only
// a 32-bit process on 64-bit Windows is shown another folder under that name.
bool TargetsNeedSysnative();

}  // namespace scourel
