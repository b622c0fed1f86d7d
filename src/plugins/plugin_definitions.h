// Cleaning what the "*.cv" plug-in files of the install root name.
#pragma once

#include "task/task_context.h"

namespace scourel {

void CleanPlugins(const TaskContext& context);
void ScanPlugins(const TaskContext& context);

}  // namespace scourel
