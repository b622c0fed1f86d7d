// overseer's live link to a worker: its OVERSEER_CLASS window that receives
// the replies, the worker it started or attached to, and the bounded waits.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "common/hidden_window.h"
#include "common/unique_handle.h"
#include "overseer/command_plan.h"
#include "overseer/reply_decoding.h"

namespace overseer {

struct RunOutcome {
  std::string status;  // completed, stopped, not running, failed
  std::string error;   // set when failed
  int exitCode = 0;
};

class ControllerSession {
 public:
  using ReplyHandler = std::function<void(const DecodedReply&)>;

  explicit ControllerSession(ReplyHandler onReply);
  ~ControllerSession();
  ControllerSession(const ControllerSession&) = delete;
  ControllerSession& operator=(const ControllerSession&) = delete;

  // Registers OVERSEER_CLASS and creates the hidden top-level window the
  // worker finds with FindWindow (a message-only window would not be found).
  bool Open(std::string* error);

  // Uses a worker whose SCOUREL_CLASS window already exists. False if none.
  bool Attach();
  // Starts the worker and waits, up to timeoutMs, for its command window.
  bool Start(const std::wstring& exePath, const std::wstring& mode, unsigned timeoutMs, std::string* error);
  // Ends a worker this session started (WM_CLOSE, then termination).
  void CloseStartedWorker();

  bool started() const { return started_; }
  const std::wstring& workerPath() const { return workerPath_; }
  unsigned long workerPid() const { return pid_; }

  // Sends the command and waits as the plan says; no wait lasts longer than
  // timeoutMs without a reply arriving.
  RunOutcome Run(const CommandPlan& plan, unsigned timeoutMs);

 private:
  std::optional<LRESULT> Handle(UINT message, WPARAM wParam, LPARAM lParam);
  void Receive(DecodedReply reply);
  // Dispatches what is queued; true if a reply arrived.
  bool Pump();
  bool Arrived(const ReplyKey& key) const;
  bool WorkerEnded(DWORD* exitCode) const;
  RunOutcome WaitForExit(unsigned timeoutMs);

  ReplyHandler onReply_;
  scourel::HiddenWindow window_;
  HWND worker_ = nullptr;
  scourel::UniqueHandleKernel process_;
  bool started_ = false;
  std::wstring workerPath_;
  unsigned long pid_ = 0;
  std::vector<ReplyKey> received_;
  std::vector<DecodedReply> held_;  // results received, not yet handed on
};

}  // namespace overseer
