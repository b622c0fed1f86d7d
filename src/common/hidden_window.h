// A window of our own class that exists only to receive messages: the
// worker's command window, overseer's controller window, the test
// controllers. It registers its class, creates the window with `this` passed
// through CREATESTRUCT, routes every message to one handler, and destroys the
// window and unregisters the class when it goes.
#pragma once

#include <functional>
#include <optional>
#include <system_error>

#include "common/win.h"

namespace scourel {

struct WindowSpec {
  const wchar_t* className = nullptr;
  const wchar_t* title = L"";
  UINT classStyle = 0;
  HCURSOR cursor = nullptr;
  HICON icon = nullptr;
  HBRUSH background = nullptr;
  DWORD style = WS_OVERLAPPEDWINDOW;
  int x = 0;
  int y = 0;
  int width = 10;
  int height = 10;
};

class HiddenWindow {
 public:
  // A message's result, or nullopt to leave it to DefWindowProcW.
  using Handler = std::function<std::optional<LRESULT>(HWND, UINT, WPARAM, LPARAM)>;

  HiddenWindow() = default;
  ~HiddenWindow();
  HiddenWindow(const HiddenWindow&) = delete;
  HiddenWindow& operator=(const HiddenWindow&) = delete;

  // Registers the class; the system's reason when that fails.
  [[nodiscard]] std::error_code Register(const WindowSpec& spec);
  // Creates the window of the registered class; messages go to `handler`
  // from WM_NCCREATE on.
  [[nodiscard]] std::error_code Create(Handler handler);

  HWND get() const noexcept { return window_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  WindowSpec spec_;
  bool registered_ = false;
  Handler handler_;
  HWND window_ = nullptr;
};

}  // namespace scourel
