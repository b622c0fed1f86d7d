#include "windows_traces/junk_files.h"

#include "host/settings.h"
#include "host/task_totals.h"

namespace scourel {

void CleanJunkFiles() {
  ResetForJunkFileScan();
  ReadWipeAlgorithm();
}

void MeasureJunkFiles() {}

}  // namespace scourel
