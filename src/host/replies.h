// Sending completions, progress and copy-data texts to the controller, which
// is looked up afresh each time. With no controller window nothing is sent.
#pragma once

#include <string>

#include "common/win.h"

namespace scourel {

HWND FindController();

// Numeric replies. A stopped task sends nothing more.
void SendReply(unsigned id, WPARAM wParam, LPARAM lParam);
void PostReply(unsigned id, WPARAM wParam, LPARAM lParam);

// WM_COPYDATA of the given kind; wParam is the worker's window for the task
// replies (303-306) and the controller's own window for the full scan's.
void SendCopyData(unsigned kind, const std::wstring& text);

// The junk-file and shortcut replies: counter sum (then reset) and byte total.
void SendJunkFilesReply(unsigned id);
void SendShortcutsReply(unsigned id);
void SendRecycleBinReply(unsigned id);

}  // namespace scourel
