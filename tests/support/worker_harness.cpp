#include "support/worker_harness.h"

#include <algorithm>
#include <chrono>
#include <cwchar>

#include <gtest/gtest.h>

#include "protocol/messages.h"
#include "support/fixtures.h"

namespace scourel::test {

namespace {
// Posted by the test to its own controller window, behind the worker's replies.
constexpr UINT kQueueMark = WM_APP + 0x2A;
}  // namespace

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

WorkerHarness::WorkerHarness(const std::wstring& name, const std::wstring& modeArgument, bool controller)
    : root_(L"C:\\scourel-tests\\" + name) {
  CloseRunningWorkers();  // a worker left by an earlier test would answer our commands
  RemoveTree(root_);
  const std::wstring exe = InstallCopy(root_);
  if (controller) {
    controller_.emplace(protocol::kControllerClass, L"test controller",
                        [this](HWND, UINT id, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
                          if (id == kQueueMark) {
                            { std::lock_guard lock(mutex_); ++marksSeen_; }
                            arrived_.notify_all();
                            return 0;
                          }
                          if (id != WM_COPYDATA && (id < 2034 || id > 2088)) return std::nullopt;
                          Record(id, wParam, lParam);
                          return id == WM_COPYDATA ? TRUE : 0;
                        });
  }
  process_ = StartProgram(L"\"" + exe + L"\"" + (modeArgument.empty() ? L"" : L" " + modeArgument));
  // The worker is ready once its window exists; it announces nothing else.
  for (int i = 0; i < 1000 && process_ && !worker_; ++i) {
    worker_ = ::FindWindowW(protocol::kWorkerClass, nullptr);
    if (!worker_) ::Sleep(10);
  }
}

WorkerHarness::~WorkerHarness() {
  if (process_) {
    if (worker_) ::PostMessageW(worker_, WM_CLOSE, 0, 0);
    WaitAndEnd(process_.get(), 5000);
  }
  controller_.reset();
  RemoveTree(root_);
}

void WorkerHarness::Record(UINT id, WPARAM wParam, LPARAM lParam) {
  ReceivedMessage message{.id = id, .wParam = wParam, .lParam = lParam, .sent = ::InSendMessage() != FALSE};
  if (id == WM_COPYDATA) {
    const auto* record = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
    message.kind = static_cast<unsigned>(record->dwData);
    const auto* data = static_cast<const std::uint8_t*>(record->lpData);
    message.bytes.assign(data, data + record->cbData);
    const auto* text = static_cast<const wchar_t*>(record->lpData);
    message.text.assign(text, ::wcsnlen(text, record->cbData / sizeof(wchar_t)));
  }
  {
    std::lock_guard lock(mutex_);
    received_.push_back(std::move(message));
  }
  arrived_.notify_all();
}

void WorkerHarness::WriteSetting(const std::wstring& key, const std::wstring& value) {
  ::WritePrivateProfileStringW(L"Corvane Suite", key.c_str(), value.c_str(), settingsPath().c_str());
}

std::optional<LRESULT> WorkerHarness::Send(UINT id, WPARAM wParam, LPARAM lParam, DWORD timeoutMs) {
  DWORD_PTR result = 0;
  ::SetLastError(0);
  if (!::SendMessageTimeoutW(worker_, id, wParam, lParam, SMTO_NORMAL, timeoutMs, &result)) {
    ADD_FAILURE() << "message " << id << " not accepted by the worker (error " << ::GetLastError() << ")";
    return std::nullopt;
  }
  return static_cast<LRESULT>(result);
}

std::optional<ReceivedMessage> WorkerHarness::WaitMatching(UINT id, unsigned kind, DWORD timeoutMs) {
  std::optional<ReceivedMessage> found;
  WaitUntil([&](const std::vector<ReceivedMessage>& received) {
    for (size_t i = cursor_; i < received.size() && !found; ++i) {
      if (received[i].id == id && (id != WM_COPYDATA || received[i].kind == kind)) {
        cursor_ = i + 1;
        found = received[i];
      }
    }
    return found.has_value();
  }, timeoutMs);
  return found;
}

bool WorkerHarness::WaitUntil(const std::function<bool(const std::vector<ReceivedMessage>&)>& done,
                              DWORD timeoutMs) {
  std::unique_lock lock(mutex_);
  return arrived_.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return done(received_); });
}

bool WorkerHarness::CaughtUp(DWORD timeoutMs) {
  std::unique_lock lock(mutex_);
  const size_t mark = ++marksPosted_;
  if (!controller_ || !::PostMessageW(controller_->get(), kQueueMark, 0, 0)) return false;
  return arrived_.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return marksSeen_ >= mark; });
}

bool WorkerHarness::WaitForCount(UINT id, size_t count, DWORD timeoutMs) {
  return WaitUntil([&](const std::vector<ReceivedMessage>& received) {
    return std::count_if(received.begin(), received.end(), [&](const auto& m) { return m.id == id; }) >=
           static_cast<std::ptrdiff_t>(count);
  }, timeoutMs);
}

std::vector<ReceivedMessage> WorkerHarness::Received() {
  std::lock_guard lock(mutex_);
  return received_;
}

void WorkerHarness::ClearReceived() {
  std::lock_guard lock(mutex_);
  received_.clear();
  cursor_ = 0;
}

}  // namespace scourel::test
