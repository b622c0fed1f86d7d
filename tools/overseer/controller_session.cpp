#include "overseer/controller_session.h"

#include <algorithm>
#include <cstdio>

#include "common/status.h"
#include "overseer/report_output.h"
#include "protocol/messages.h"

namespace overseer {

namespace {

namespace p = scourel::protocol;

ULONGLONG Now() { return ::GetTickCount64(); }

// The system's own words for an error, not its number.
std::string ErrorText(DWORD code) { return Utf8(scourel::SystemMessage(code)); }
std::string ErrorText(const std::error_code& error) { return ErrorText(static_cast<DWORD>(error.value())); }

std::string SecondsText(unsigned ms) { return std::to_string((ms + 999) / 1000) + " s"; }

std::string KeyText(const ReplyKey& key) {
  return key.kind ? "copy-data kind " + std::to_string(key.kind) : "message " + std::to_string(key.id);
}

// The worker's window of this process id, among all SCOUREL_CLASS windows.
HWND FindWorkerWindow(DWORD pid) {
  HWND window = nullptr;
  while ((window = ::FindWindowExW(nullptr, window, p::kWorkerClass, nullptr)) != nullptr) {
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    if (owner == pid) return window;
  }
  return nullptr;
}

}  // namespace

ControllerSession::ControllerSession(ReplyHandler onReply) : onReply_(std::move(onReply)) {}

ControllerSession::~ControllerSession() = default;

bool ControllerSession::Open(std::string* error) {
  scourel::WindowSpec spec;
  spec.className = p::kControllerClass;
  spec.title = L"overseer";
  if (const std::error_code failed = window_.Register(spec)) {
    *error = "cannot register the controller window class: " + ErrorText(failed);
    return false;
  }
  if (const std::error_code failed = window_.Create([this](HWND, UINT message, WPARAM wParam, LPARAM lParam) {
        return Handle(message, wParam, lParam);
      })) {
    *error = "cannot create the controller window: " + ErrorText(failed);
    return false;
  }
  return true;
}

bool ControllerSession::Attach() {
  HWND worker = ::FindWindowW(p::kWorkerClass, nullptr);
  if (!worker) return false;
  worker_ = worker;
  DWORD pid = 0;
  ::GetWindowThreadProcessId(worker, &pid);
  pid_ = pid;
  process_.reset(::OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid));
  if (process_) {
    wchar_t path[MAX_PATH * 2] = {};
    DWORD length = MAX_PATH * 2;
    if (::QueryFullProcessImageNameW(process_.get(), 0, path, &length)) workerPath_.assign(path, length);
  }
  return true;
}

bool ControllerSession::Start(const std::wstring& exePath, const std::wstring& mode, unsigned timeoutMs,
                              std::string* error) {
  workerPath_ = exePath;
  if (::GetFileAttributesW(exePath.c_str()) == INVALID_FILE_ATTRIBUTES) {
    *error = "cannot start the worker: no such file";
    return false;
  }
  std::wstring line = L"\"" + exePath + L"\"";
  if (!mode.empty()) line += L" " + mode;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info{};
  // The worker starts in its own folder rather than inheriting ours.
  const std::wstring folder = exePath.substr(0, exePath.rfind(L'\\') + 1);
  if (!::CreateProcessW(exePath.c_str(), line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        folder.empty() ? nullptr : folder.c_str(), &startup, &info)) {
    *error = "cannot start the worker: " + ErrorText(::GetLastError());
    return false;
  }
  process_.reset(info.hProcess);
  scourel::UniqueHandleKernel thread(info.hThread);
  pid_ = info.dwProcessId;
  started_ = true;

  const ULONGLONG deadline = Now() + timeoutMs;
  for (;;) {
    worker_ = FindWorkerWindow(info.dwProcessId);
    if (worker_) return true;
    DWORD code = 0;
    if (WorkerEnded(&code)) {
      *error = "the worker ended (exit code " + std::to_string(code) + ") before its command window appeared";
      return false;
    }
    if (Now() >= deadline) {
      *error = "the worker's command window did not appear within " + SecondsText(timeoutMs);
      return false;
    }
    Pump();
    ::Sleep(10);
  }
}

void ControllerSession::CloseStartedWorker() {
  if (!started_ || !process_) return;
  if (::WaitForSingleObject(process_.get(), 0) != WAIT_OBJECT_0) {
    if (worker_) ::PostMessageW(worker_, WM_CLOSE, 0, 0);
    if (::WaitForSingleObject(process_.get(), 5000) != WAIT_OBJECT_0) ::TerminateProcess(process_.get(), 1);
  }
  started_ = false;
}

bool ControllerSession::WorkerEnded(DWORD* exitCode) const {
  if (!process_) return worker_ && !::IsWindow(worker_);
  if (::WaitForSingleObject(process_.get(), 0) != WAIT_OBJECT_0) return false;
  ::GetExitCodeProcess(process_.get(), exitCode);
  return true;
}

bool ControllerSession::Arrived(const ReplyKey& key) const {
  return std::find(received_.begin(), received_.end(), key) != received_.end();
}

std::optional<LRESULT> ControllerSession::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
  if (IsWorkerReply(message)) {
    if (message == WM_COPYDATA) {
      // The record is valid only while this message is handled: copy the
      // text now, up to its first zero within cbData.
      const auto* record = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
      const auto* text = static_cast<const wchar_t*>(record->lpData);
      size_t length = 0;
      const size_t limit = text ? record->cbData / sizeof(wchar_t) : 0;
      while (length < limit && text[length]) ++length;
      Receive(DecodeCopyData(static_cast<unsigned>(record->dwData), std::wstring_view(text, length)));
      return TRUE;
    }
    Receive(DecodeMessage(message, static_cast<std::uintptr_t>(wParam), static_cast<std::intptr_t>(lParam)));
    return 0;
  }
  return std::nullopt;
}

void ControllerSession::Receive(DecodedReply reply) {
  received_.push_back({reply.id, reply.kind});
  // Progress steps are posted, results sent, and a sent message overtakes
  // the queue: results wait until the queue is drained so that they are
  // shown after the steps that were posted before them.
  if (reply.progress) {
    if (onReply_) onReply_(reply);
  } else {
    held_.push_back(std::move(reply));
  }
}

bool ControllerSession::Pump() {
  const size_t before = received_.size();
  MSG message;
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  std::vector<DecodedReply> held;
  held.swap(held_);
  for (const DecodedReply& reply : held) {
    if (onReply_) onReply_(reply);
  }
  return received_.size() != before;
}

RunOutcome ControllerSession::WaitForExit(unsigned timeoutMs) {
  const ULONGLONG deadline = Now() + timeoutMs;
  for (;;) {
    Pump();
    DWORD code = 0;
    if (WorkerEnded(&code)) return {"completed", "", 0};
    if (Now() >= deadline) {
      return {"failed", "the worker did not end within " + SecondsText(timeoutMs) + " of WM_CLOSE", 1};
    }
    if (process_) {
      HANDLE handle = process_.get();
      ::MsgWaitForMultipleObjects(1, &handle, FALSE, 50, QS_ALLINPUT);
    } else {
      ::Sleep(20);
    }
  }
}

RunOutcome ControllerSession::Run(const CommandPlan& plan, unsigned timeoutMs) {
  received_.clear();
  if (plan.end == EndOn::kProcessExit) {
    // The worker ends inside its window procedure, so the command is posted.
    if (!::PostMessageW(worker_, plan.message, 0, 0)) {
      return {"failed", "cannot reach the worker's window: " + ErrorText(::GetLastError()), 1};
    }
    return WaitForExit(timeoutMs);
  }

  // SMTO_NORMAL: while this thread waits, replies the worker sends back from
  // inside its window procedure are still handled.
  DWORD_PTR result = 0;
  if (!::SendMessageTimeoutW(worker_, plan.message, plan.wParam, 0, SMTO_NORMAL, timeoutMs, &result)) {
    const DWORD code = ::GetLastError();
    if (code == ERROR_TIMEOUT || code == 0) {
      return {"failed",
              "the worker did not accept message " + std::to_string(plan.message) + " within " + SecondsText(timeoutMs),
              1};
    }
    return {"failed", "cannot send to the worker's window: " + ErrorText(code), 1};
  }

  if (plan.end == EndOn::kSendReturns) {
    // A stop replies from inside the window procedure: sent replies have
    // already arrived, posted ones are in the queue.
    Pump();
    if (plan.awaited.empty()) return {"completed", "", 0};
    return Arrived(plan.awaited.front()) ? RunOutcome{"completed", "", 0} : RunOutcome{"not running", "", 0};
  }

  ULONGLONG deadline = Now() + timeoutMs;
  for (;;) {
    if (Pump()) deadline = Now() + timeoutMs;
    if (std::all_of(plan.awaited.begin(), plan.awaited.end(), [this](const ReplyKey& k) { return Arrived(k); })) {
      return {"completed", "", 0};
    }
    for (const ReplyKey& key : plan.stoppedBy) {
      if (Arrived(key)) return {"stopped", "", 3};
    }
    DWORD code = 0;
    if (WorkerEnded(&code)) {
      Pump();  // a reply posted just before the end is still queued
      if (std::all_of(plan.awaited.begin(), plan.awaited.end(), [this](const ReplyKey& k) { return Arrived(k); })) {
        return {"completed", "", 0};
      }
      return {"failed", "the worker ended (exit code " + std::to_string(code) + ") before replying", 1};
    }
    const ULONGLONG now = Now();
    if (now >= deadline) {
      std::string missing;
      for (const ReplyKey& key : plan.awaited) {
        if (!Arrived(key)) missing += (missing.empty() ? "" : ", ") + KeyText(key);
      }
      return {"failed",
              "no reply from the worker within " + SecondsText(timeoutMs) + " (still waiting for " + missing + ")", 1};
    }
    const DWORD wait = static_cast<DWORD>(std::min<ULONGLONG>(deadline - now, 100));
    if (process_) {
      HANDLE handle = process_.get();
      ::MsgWaitForMultipleObjects(1, &handle, FALSE, wait, QS_ALLINPUT);
    } else {
      ::MsgWaitForMultipleObjects(0, nullptr, FALSE, wait, QS_ALLINPUT);
    }
  }
}

}  // namespace overseer
