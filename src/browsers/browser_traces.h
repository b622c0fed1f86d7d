// Browser traces of the five browsers, by category in the order of the
// browser switches (cache, cookies, history, ...).
#pragma once

#include "browsers/browser_profiles.h"
#include "protocol/categories.h"
#include "task/task_context.h"

namespace scourel {

// Zeroes the browser totals.
void ResetBrowserTotals(TaskTotals& totals);
// One category's operation over the five browsers, in the context's mode, as
// on the Windows version this program is told it runs on or on the one given.
void BrowserCategoryStep(const TaskContext& context, protocol::BrowserCategory category);
void BrowserCategoryStep(const TaskContext& context, protocol::BrowserCategory category, OsVersion version);
// The full scan's measurement: every category but downloaded program files,
// which has no measuring form, in the order of the switches.
void ScanBrowserTraces(const TaskContext& context);
void ScanBrowserTraces(const TaskContext& context, OsVersion version);
// Whether the full scan measures the category.
bool HasScan(protocol::BrowserCategory category);

}  // namespace scourel
