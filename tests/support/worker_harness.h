// Drives a real scourel.exe through real window messages, as the controller
// does: an OVERSEER_CLASS window on a thread of its own records every message
// the worker sends it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "common/hidden_window.h"
#include "common/unique_handle.h"

namespace scourel::test {

// A hidden window of a class of our choosing on a thread of its own, running
// its message loop: the test controller below, or a stand-in worker. The
// window exists once constructed; it goes, and the thread is joined, on
// destruction.
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

struct ReceivedMessage {
  UINT id = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  bool sent = false;  // SendMessage (true) or PostMessage (false)
  // WM_COPYDATA only:
  unsigned kind = 0;
  std::wstring text{};                // up to the first zero
  std::vector<std::uint8_t> bytes{};  // the cbData bytes as received
};

class WorkerHarness {
 public:
  // Installs a copy of scourel.exe as C:\scourel-tests\<name>\bin\scourel.exe
  // (so it reads C:\scourel-tests\<name>\Settings.INI) and starts it with the
  // mode argument, if any. With controller false no OVERSEER_CLASS window exists.
  explicit WorkerHarness(const std::wstring& name, const std::wstring& modeArgument = L"",
                         bool controller = true);
  ~WorkerHarness();
  WorkerHarness(const WorkerHarness&) = delete;
  WorkerHarness& operator=(const WorkerHarness&) = delete;

  bool Started() const { return worker_ != nullptr; }
  HWND worker() const { return worker_; }
  DWORD processId() const { return ::GetProcessId(process_.get()); }
  HWND controller() const { return controller_ ? controller_->get() : nullptr; }
  const std::wstring& root() const { return root_; }
  std::wstring settingsPath() const { return root_ + L"\\Settings.INI"; }

  void WriteSetting(const std::wstring& key, const std::wstring& value);

  // Sends a command and returns the window procedure's result; a send that
  // fails or times out (a dead or hung worker) fails the test and gives nullopt.
  std::optional<LRESULT> Send(UINT id, WPARAM wParam = 0, LPARAM lParam = 0, DWORD timeoutMs = 60000);

  // Waits for a message with this id (for WM_COPYDATA: of this kind) that
  // arrived after the previous wait's match; null on timeout.
  std::optional<ReceivedMessage> WaitFor(UINT id, DWORD timeoutMs = 60000) { return WaitMatching(id, 0, timeoutMs); }
  std::optional<ReceivedMessage> WaitForCopyData(unsigned kind, DWORD timeoutMs = 60000) {
    return WaitMatching(WM_COPYDATA, kind, timeoutMs);
  }
  // Waits until what has arrived satisfies `done`; false on timeout.
  bool WaitUntil(const std::function<bool(const std::vector<ReceivedMessage>&)>& done, DWORD timeoutMs = 60000);
  // Posts a mark to the controller's own queue and waits for it: every reply
  // the worker's window sent or posted before now has then been recorded.
  bool CaughtUp(DWORD timeoutMs = 10000);
  // Waits until `count` messages with this id have arrived in all.
  bool WaitForCount(UINT id, size_t count, DWORD timeoutMs = 10000);

  // Everything received so far, in order.
  std::vector<ReceivedMessage> Received();
  void ClearReceived();

 private:
  void Record(UINT id, WPARAM wParam, LPARAM lParam);
  std::optional<ReceivedMessage> WaitMatching(UINT id, unsigned kind, DWORD timeoutMs);

  std::wstring root_;
  UniqueHandleKernel process_;
  HWND worker_ = nullptr;
  std::optional<WindowThread> controller_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<ReceivedMessage> received_;
  size_t cursor_ = 0;
  size_t marksPosted_ = 0, marksSeen_ = 0;
};

}  // namespace scourel::test
