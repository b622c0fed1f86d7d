// The task drivers run on the slot threads, and the dispatch of the
// controller's commands to them, read from the protocol's task table.
#pragma once

#include <optional>

#include "common/win.h"

namespace scourel {

// The command window's handling of a message: WM_CLOSE ends the process, a
// command of the table starts or stops its task (0), anything else is left
// to DefWindowProcW (nullopt).
std::optional<LRESULT> HandleCommand(UINT message, WPARAM wParam = 0);

}  // namespace scourel
