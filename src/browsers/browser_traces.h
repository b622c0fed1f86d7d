// Browser traces of the five browsers, by category in the order of the
// browser switches (cache, cookies, history, ...).
#pragma once

namespace scourel {

// Zeroes the ten browser category totals.
void ResetBrowserTotals();
// The clean operation of one category, 0..9.
void CleanBrowserCategory(int category);
// The full scan's measurement of every category that has a scan.
void ScanBrowserTraces();

}  // namespace scourel
