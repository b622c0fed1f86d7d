// The words searched for in Explorer.
#include "host/task_totals.h"
#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

namespace {

constexpr wchar_t kSearchWordsKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\WordWheelQuery";

}  // namespace

int ScanSearchWords() {
  static HistoryListBuffers buffers;
  // The list's own order value is named MRUListEx but its data is binary, so
  // the data test lets it through and it counts with the words.
  CountHistoryValues(HKEY_CURRENT_USER, kSearchWordsKey, buffers, true, g_totals.pcTraces[kPcFindFiles]);
  return 0;
}

int CleanSearchWords() {
  static HistoryListBuffers buffers;
  // The counter is set, not added to: a second clean reports 0.
  EraseHistoryKey(HKEY_CURRENT_USER, kSearchWordsKey, buffers, g_totals.pcTraces[kPcFindFiles], CountMode::kSet);
  return 0;
}

}  // namespace scourel
