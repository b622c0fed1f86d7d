#include "windows_traces/dead_shortcuts.h"

#include "host/settings.h"
#include "host/task_totals.h"

namespace scourel {

void CleanDeadShortcuts() {
  g_totals.byteTotal.set(0.0f);
  ReadWipeAlgorithm();
}

void MeasureDeadShortcuts() { g_totals.byteTotal.set(0.0f); }

}  // namespace scourel
