// A hidden window of a class of our choosing on a thread of its own, running
// its message loop: the test controller that records what a worker sends, or
// a stand-in worker. The window exists once constructed; it is destroyed and
// the thread joined on destruction.
#pragma once

#include <thread>

#include "common/hidden_window.h"

namespace scourel::test {

class WindowThread {
 public:
  WindowThread(const wchar_t* className, const wchar_t* title, HiddenWindow::Handler handler);
  ~WindowThread();
  WindowThread(const WindowThread&) = delete;
  WindowThread& operator=(const WindowThread&) = delete;

  HWND get() const { return window_; }

 private:
  std::thread thread_;
  DWORD threadId_ = 0;
  HWND window_ = nullptr;
};

}  // namespace scourel::test
