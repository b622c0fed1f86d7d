// scourel.exe: the hidden cleaning worker. It does nothing until its
// controller sends commands to its command window.
#include <cstdio>

#include "common/win.h"
#include "host/protocol.h"
#include "host/task_totals.h"
#include "host/tasks.h"
#include "host/worker_state.h"

using namespace scourel;

int wmain(int argc, wchar_t** argv) {
  int result = 0;

  g_totals.junkFirst.set(0);
  g_totals.junkSecond.set(0);
  g_totals.recycleBinItems.set(0);

  wchar_t exePath[260] = {};
  ::GetModuleFileNameW(nullptr, exePath, 260);
  LocateSettings(exePath);

  WNDCLASSW windowClass{};
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = CommandWindowProc;
  windowClass.hInstance = ::GetModuleHandleW(nullptr);
  windowClass.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hIcon = ::LoadIconW(nullptr, IDI_APPLICATION);
  windowClass.hbrBackground = static_cast<HBRUSH>(::GetStockObject(WHITE_BRUSH));
  windowClass.lpszClassName = protocol::kWorkerClass;
  if (!::RegisterClassW(&windowClass)) {
    std::fputs("Problem with your WNDCLASS, foo.", stdout);
    return 1;
  }

  g_modeArgument = argc > 1 ? argv[1] : L"";

  // There is no application framework to initialise; the module handle is
  // the one thing start-up needs, and its loss is reported as before.
  if (!::GetModuleHandleW(nullptr)) {
    std::fputs("Fatal Error: GetModuleHandle failed\n", stdout);
    result = 1;
  }

  g_commandWindow = ::CreateWindowW(protocol::kWorkerClass, protocol::kWorkerWindowTitle, WS_OVERLAPPEDWINDOW,
                                    520, 20, 300, 300, nullptr, nullptr, windowClass.hInstance, nullptr);
  ::ShowWindow(g_commandWindow, SW_SHOWNORMAL);
  ::UpdateWindow(g_commandWindow);

  MSG message;
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  return result;
}
