// The clipboard step, run whatever the switches say.
#include "common/win.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

void EmptyClipboardStep(const TaskContext& context) { context.io.EmptyClipboard(context.window); }

}  // namespace scourel
