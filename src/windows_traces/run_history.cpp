// The Run box, stream and typed-path history lists.
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

void RunHistory(const TaskContext& context) {
  // The measuring and the erasing walk each keep their own buffers.
  static HistoryListBuffers countBuffers;
  static HistoryListBuffers eraseBuffers;
  Relaxed<std::int32_t>& counter = context.totals.pc(protocol::PcStep::kRunHistory);
  for (const wchar_t* path : kRunHistoryKeys) {
    if (context.stopped()) break;
    if (context.erasing()) {
      EraseHistoryKey(context, HKEY_CURRENT_USER, path, eraseBuffers, counter, CountMode::kAdd);
    } else {
      CountHistoryValues(context, HKEY_CURRENT_USER, path, countBuffers, false, counter);
    }
  }
}

}  // namespace scourel
