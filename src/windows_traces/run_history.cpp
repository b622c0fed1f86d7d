// The Run box, stream and typed-path history lists.
#include "common/task_stop.h"
#include "host/task_totals.h"
#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

namespace {

constexpr const wchar_t* kRunHistoryKeys[] = {
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RunMRU",
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StreamMRU",
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\TypedPaths",
};

}  // namespace

int ScanRunHistory() {
  static HistoryListBuffers buffers;
  for (const wchar_t* path : kRunHistoryKeys) {
    if (TaskStopRequested()) break;
    CountHistoryValues(HKEY_CURRENT_USER, path, buffers, false, g_totals.pcTraces[kPcRunHistory]);
  }
  return 0;
}

int CleanRunHistory() {
  static HistoryListBuffers buffers;
  for (const wchar_t* path : kRunHistoryKeys) {
    if (TaskStopRequested()) break;
    EraseHistoryKey(HKEY_CURRENT_USER, path, buffers, g_totals.pcTraces[kPcRunHistory], CountMode::kAdd);
  }
  return 0;
}

}  // namespace scourel
