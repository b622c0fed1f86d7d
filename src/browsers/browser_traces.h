// Browser traces of the five browsers, by category in the order of the
// browser switches (cache, cookies, history, ...).
#pragma once

#include "protocol/categories.h"
#include "task/task_context.h"

namespace scourel {

// Zeroes the browser totals.
void ResetBrowserTotals(TaskTotals& totals);
// One category's operation over the five browsers, in the context's mode.
void BrowserCategoryStep(const TaskContext& context, protocol::BrowserCategory category);
// The full scan's measurement of every category that has a scan.
void ScanBrowserTraces(const TaskContext& context);

}  // namespace scourel
