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

}  // namespace scourel
