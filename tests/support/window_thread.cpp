#include "support/window_thread.h"

#include "common/unique_handle.h"

namespace scourel::test {

WindowThread::WindowThread(const wchar_t* className, const wchar_t* title, HiddenWindow::Handler handler) {
  const UniqueHandleKernel ready(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  thread_ = std::thread([this, className, title, handler = std::move(handler), event = ready.get()]() mutable {
    HiddenWindow window;
    WindowSpec spec;
    spec.className = className;
    spec.title = title;
    spec.style = 0;
    if (!window.Register(spec)) (void)window.Create(std::move(handler));
    window_ = window.get();
    threadId_ = ::GetCurrentThreadId();
    ::SetEvent(event);
    for (MSG message; ::GetMessageW(&message, nullptr, 0, 0) > 0;) ::DispatchMessageW(&message);
  });
  ::WaitForSingleObject(ready.get(), INFINITE);
}

WindowThread::~WindowThread() {
  ::PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
  thread_.join();
}

}  // namespace scourel::test
