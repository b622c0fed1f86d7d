#include "browsers/browser_traces.h"

#include "browsers/browser_steps.h"

namespace scourel {

void ResetBrowserTotals(TaskTotals& totals) { totals.browser.Reset(); }

void BrowserCategoryStep(const TaskContext& context, protocol::BrowserCategory category) {
  BrowserCategoryStep(context, category, SystemVersion());
}

void BrowserCategoryStep(const TaskContext& context, protocol::BrowserCategory category, OsVersion version) {
  RunCategorySteps(context, StepsOf(category), version);
}

bool HasScan(protocol::BrowserCategory category) { return category != protocol::BrowserCategory::kProgramFiles; }

void ScanBrowserTraces(const TaskContext& context) { ScanBrowserTraces(context, SystemVersion()); }

void ScanBrowserTraces(const TaskContext& context, OsVersion version) {
  const TaskContext measuring = context.With(Mode::kMeasure);
  for (const protocol::BrowserCategorySpec& spec : protocol::kBrowserCategories) {
    if (context.stopped()) return;
    if (HasScan(spec.category)) RunCategorySteps(measuring, StepsOf(spec.category), version);
  }
}

}  // namespace scourel
