// scourel.exe: the hidden cleaning worker. It does nothing until its
// controller sends commands to its command window.
#include <cstdio>

#include "common/hidden_window.h"
#include "common/win.h"
#include "host/tasks.h"
#include "host/worker_state.h"
#include "protocol/messages.h"
#include "task/task_totals.h"
#include "wipe/wipe_marker.h"

using namespace scourel;

int wmain(int argc, wchar_t** argv) {
  int result = 0;

  g_totals.junkFirst.set(0);
  g_totals.junkSecond.set(0);
  g_totals.recycleBinItems.set(0);

  wchar_t exePath[260] = {};
  ::GetModuleFileNameW(nullptr, exePath, 260);
  LocateSettings(exePath);

  HiddenWindow window;
  WindowSpec spec;
  spec.className = protocol::kWorkerClass;
  spec.title = protocol::kWorkerWindowTitle;
  spec.classStyle = CS_HREDRAW | CS_VREDRAW;
  spec.cursor = ::LoadCursorW(nullptr, IDC_ARROW);
  spec.icon = ::LoadIconW(nullptr, IDI_APPLICATION);
  spec.background = static_cast<HBRUSH>(::GetStockObject(WHITE_BRUSH));
  spec.x = 520;
  spec.y = 20;
  spec.width = 300;
  spec.height = 300;
  if (window.Register(spec)) {
    std::fputs("Problem with your WNDCLASS, foo.", stdout);
    return 1;
  }

  g_modeArgument = argc > 1 ? argv[1] : L"";

  // A free-space wipe cut short by a kill or a power cut left its fill behind.
  CleanUpInterruptedWipe();

  // There is no application framework to initialise; the module handle is
  // the one thing start-up needs, and its loss is reported as before.
  if (!::GetModuleHandleW(nullptr)) {
    std::fputs("Fatal Error: GetModuleHandle failed\n", stdout);
    result = 1;
  }

  (void)window.Create([](HWND, UINT message, WPARAM wParam, LPARAM) { return HandleCommand(message, wParam); });
  g_commandWindow = window.get();
  ::ShowWindow(g_commandWindow, SW_SHOWNORMAL);
  ::UpdateWindow(g_commandWindow);

  MSG message;
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  return result;
}
