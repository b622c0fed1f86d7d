// The words searched for in Explorer.
#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

namespace {

constexpr wchar_t kSearchWordsKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\WordWheelQuery";

}  // namespace

void SearchWords(const TaskContext& context) {
  static HistoryListBuffers countBuffers;
  static HistoryListBuffers eraseBuffers;
  Relaxed<std::int32_t>& counter = context.totals.pc(protocol::PcStep::kFindFiles);
  if (context.erasing()) {
    // The counter is set, not added to: a second clean reports 0.
    EraseHistoryKey(context, HKEY_CURRENT_USER, kSearchWordsKey, eraseBuffers, counter, CountMode::kSet);
  } else {
    // The list's own order value is named MRUListEx but its data is binary,
    // so the data test lets it through and it counts with the words.
    CountHistoryValues(context, HKEY_CURRENT_USER, kSearchWordsKey, countBuffers, true, counter);
  }
}

}  // namespace scourel
