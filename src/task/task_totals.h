// The process-wide totals every scan and clean adds to. Counters are 32-bit
// signed and byte totals single-precision floats: both limits show in what
// the controller receives.
#pragma once

#include <cstdint>

#include "common/relaxed.h"
#include "protocol/categories.h"

namespace scourel {

// A count and a byte total that one step of a cleaner adds to together.
struct Tally {
  Relaxed<std::int32_t>& count;
  Relaxed<float>& bytes;
};

struct CountAndBytes {
  Relaxed<std::int32_t> count;
  Relaxed<float> bytes;
  Tally tally() { return {count, bytes}; }
};

// The browser cleaners' totals: a count and a byte total for every browser
// and category, the pair one location fills before it is added to its
// browser's cell, and the counters a few categories keep beside the grid.
struct BrowserTotals {
  CountAndBytes cells[protocol::kBrowserCount][protocol::kBrowserCategoryCount];
  CountAndBytes current;  // the location being visited
  Relaxed<std::int32_t> ieCookieEntries;
  Relaxed<std::int32_t> firefoxOfflineCache;
  Relaxed<std::int32_t> icons;

  CountAndBytes& cell(protocol::Browser browser, protocol::BrowserCategory category) {
    return cells[static_cast<int>(browser)][static_cast<int>(category)];
  }
  const CountAndBytes& cell(protocol::Browser browser, protocol::BrowserCategory category) const {
    return cells[static_cast<int>(browser)][static_cast<int>(category)];
  }
  // What the replies carry for a category: the browsers' counts summed (a
  // 32-bit counter that wraps) and their bytes summed in float.
  std::int32_t CategoryCount(protocol::BrowserCategory category) const;
  float CategoryBytes(protocol::BrowserCategory category) const;
  void ZeroCurrent();
  // Adds the current-location pair to a cell; the pair keeps its value.
  void AddCurrentTo(protocol::Browser browser, protocol::BrowserCategory category);
  void Reset();
};

struct TaskTotals {
  Relaxed<float> byteTotal;
  // Documents, run history, find files, clipboard, network, scan-disk files,
  // registry traces: the order of protocol::kPcSteps.
  Relaxed<std::int32_t> pcTraces[protocol::kPcStepCount];
  Relaxed<std::int32_t> junkFirst;   // temporary files
  Relaxed<std::int32_t> junkSecond;  // dumps, logs, error reports, dead shortcuts
  Relaxed<std::int32_t> recycleBinItems;
  Relaxed<float> recycleBinBytes;  // the full scan's measurement only
  Relaxed<std::int32_t> pluginItems;
  Relaxed<float> pluginBytes;
  // The registry cleaner's per-category counts stand beside its found-entry
  // tables (registry_cleaner/registry_issues.h), which they number.
  BrowserTotals browser;

  Tally byteTotalWith(Relaxed<std::int32_t>& counter) { return {counter, byteTotal}; }
  Relaxed<std::int32_t>& pc(protocol::PcStep step) { return pcTraces[protocol::CounterOf(step)]; }
};

// The one set of totals of the process.
extern TaskTotals g_totals;

// The junk-file scan's reset: byte total, the seven PC-traces counters, both
// junk-file counters and the Recycle Bin item counter, all at once.
void ResetForJunkFileScan(TaskTotals& totals);

// File sizes reach the float totals as unsigned 64-bit values converted to float.
inline void AddBytes(Relaxed<float>& total, std::uint64_t size) { total.add(static_cast<float>(size)); }

}  // namespace scourel
