// For each overseer command: the message that goes to the worker and the
// replies that end the wait for it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "overseer/command_line.h"

namespace overseer {

struct ReplyKey {
  unsigned id = 0;    // message id, WM_COPYDATA (74) for copy-data
  unsigned kind = 0;  // copy-data kind, else 0
  bool operator==(const ReplyKey&) const = default;
};

enum class EndOn {
  kAwaitedReplies,  // every awaited reply has arrived
  kSendReturns,     // the worker's window procedure has returned (stops)
  kProcessExit,     // the worker process has ended (close)
};

struct CommandPlan {
  unsigned message = 0;
  std::uintptr_t wParam = 0;  // wipe free: the drive letter
  EndOn end = EndOn::kAwaitedReplies;
  // kAwaitedReplies: all of these. kSendReturns: the stop reply, when the
  // stopped slot was running (an empty slot answers nothing).
  std::vector<ReplyKey> awaited;
  // The reply to a stop of the same task, sent from elsewhere: ends the wait.
  std::vector<ReplyKey> stoppedBy;
  bool needsRunningWorker = false;  // stop and close never start a worker
};

// nullopt for the commands that send nothing: settings, plugins, shred.
std::optional<CommandPlan> PlanFor(const Options& options);

}  // namespace overseer
