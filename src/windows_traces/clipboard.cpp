// The clipboard step, run whatever the switches say.
#include "common/win.h"
#include "host/worker_state.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

void EmptyClipboardStep() {
  if (::OpenClipboard(g_commandWindow)) {
    ::EmptyClipboard();
    ::CloseClipboard();
  }
}

}  // namespace scourel
