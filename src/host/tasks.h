// The task drivers run on the slot threads, and the window procedure that
// dispatches the controller's commands to them.
#pragma once

#include "common/win.h"

namespace scourel {

LRESULT CALLBACK CommandWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace scourel
