#include "browsers/browser_traces.h"

#include "host/task_totals.h"

namespace scourel {

void ResetBrowserTotals() {
  for (auto& count : g_totals.browserCounts) count.set(0);
  for (auto& bytes : g_totals.browserBytes) bytes.set(0.0f);
}

// The browser cleaners are not built yet: every category finds nothing.
void CleanBrowserCategory(int) {}
void ScanBrowserTraces() {}

}  // namespace scourel
