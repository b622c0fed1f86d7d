#include "common/hidden_window.h"

#include "common/status.h"

namespace scourel {

HiddenWindow::~HiddenWindow() {
  if (window_) ::DestroyWindow(window_);
  if (registered_) ::UnregisterClassW(spec_.className, ::GetModuleHandleW(nullptr));
}

std::error_code HiddenWindow::Register(const WindowSpec& spec) {
  spec_ = spec;
  WNDCLASSW windowClass{};
  windowClass.style = spec.classStyle;
  windowClass.lpfnWndProc = Procedure;
  windowClass.hInstance = ::GetModuleHandleW(nullptr);
  windowClass.hCursor = spec.cursor;
  windowClass.hIcon = spec.icon;
  windowClass.hbrBackground = spec.background;
  windowClass.lpszClassName = spec.className;
  if (!::RegisterClassW(&windowClass)) return LastError();
  registered_ = true;
  return {};
}

std::error_code HiddenWindow::Create(Handler handler) {
  handler_ = std::move(handler);
  const HWND window = ::CreateWindowW(spec_.className, spec_.title, spec_.style, spec_.x, spec_.y, spec_.width,
                                      spec_.height, nullptr, nullptr, ::GetModuleHandleW(nullptr), this);
  if (!window) return LastError();
  window_ = window;
  return {};
}

LRESULT CALLBACK HiddenWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
  }
  auto* self = reinterpret_cast<HiddenWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self && self->handler_) {
    if (message == WM_NCDESTROY) {
      // Messages after this one would find an object that may be gone.
      ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      if (self->window_ == window) self->window_ = nullptr;
    } else if (std::optional<LRESULT> result = self->handler_(window, message, wParam, lParam)) {
      return *result;
    }
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace scourel
