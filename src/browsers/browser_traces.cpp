#include "browsers/browser_traces.h"

namespace scourel {

void ResetBrowserTotals(TaskTotals& totals) {
  for (auto& count : totals.browserCounts) count.set(0);
  for (auto& bytes : totals.browserBytes) bytes.set(0.0f);
}

// The browser cleaners are not built yet: every category finds nothing.
void BrowserCategoryStep(const TaskContext&, protocol::BrowserCategory) {}
void ScanBrowserTraces(const TaskContext&) {}

}  // namespace scourel
