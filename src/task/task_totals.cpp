#include "task/task_totals.h"

namespace scourel {

TaskTotals g_totals;

void ResetForJunkFileScan(TaskTotals& totals) {
  totals.byteTotal.set(0.0f);
  for (auto& counter : totals.pcTraces) counter.set(0);
  totals.junkFirst.set(0);
  totals.junkSecond.set(0);
  totals.recycleBinItems.set(0);
}

std::int32_t BrowserTotals::CategoryCount(protocol::BrowserCategory category) const {
  std::uint32_t sum = 0;
  for (int b = 0; b < protocol::kBrowserCount; ++b) {
    sum += static_cast<std::uint32_t>(cell(static_cast<protocol::Browser>(b), category).count.get());
  }
  return static_cast<std::int32_t>(sum);
}

float BrowserTotals::CategoryBytes(protocol::BrowserCategory category) const {
  float sum = 0.0f;
  for (int b = 0; b < protocol::kBrowserCount; ++b) sum += cell(static_cast<protocol::Browser>(b), category).bytes.get();
  return sum;
}

void BrowserTotals::AddCurrentTo(protocol::Browser browser, protocol::BrowserCategory category) {
  CountAndBytes& target = cell(browser, category);
  target.count.add(current.count.get());
  target.bytes.add(current.bytes.get());
}

void BrowserTotals::ZeroCurrent() {
  current.count.set(0);
  current.bytes.set(0.0f);
}

void BrowserTotals::Reset() {
  for (auto& row : cells) {
    for (CountAndBytes& pair : row) {
      pair.count.set(0);
      pair.bytes.set(0.0f);
    }
  }
  ZeroCurrent();
  ieCookieEntries.set(0);
  firefoxOfflineCache.set(0);
  icons.set(0);
}

}  // namespace scourel
