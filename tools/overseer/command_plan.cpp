#include "overseer/command_plan.h"

#include "protocol/tasks.h"
#include "overseer/reply_decoding.h"
#include "wipe/volume_facts.h"

namespace overseer {

namespace {

namespace p = scourel::protocol;

ReplyKey KeyOf(const p::Reply& reply) { return {reply.id, reply.kind}; }

}  // namespace

std::optional<CommandPlan> PlanFor(const Options& options) {
  CommandPlan plan;
  switch (options.verb) {
    case Verb::kSettings:
    case Verb::kPlugins:
    case Verb::kShred:
    case Verb::kPreview:
      return std::nullopt;
    case Verb::kScan:
      plan.message = p::SpecOf(p::Task::kFullScan).sets[p::kFirstSet].start;
      for (unsigned kind : p::kFullScanReplies) plan.awaited.push_back({p::kCopyDataMessage, kind});
      return plan;
    case Verb::kClose:
      plan.message = 16;  // WM_CLOSE
      plan.end = EndOn::kProcessExit;
      plan.needsRunningWorker = true;
      return plan;
    case Verb::kWipe:
    case Verb::kClean:
    case Verb::kFix: {
      if (!options.task) return std::nullopt;
      const p::CommandSet& set = options.task->sets[options.secondSet ? p::kSecondSet : p::kFirstSet];
      if (!set.start) return std::nullopt;
      plan.message = set.start;
      if (options.verb == Verb::kWipe) plan.wParam = scourel::DriveLetterOf(options.drive).value_or(0);
      plan.awaited.push_back(KeyOf(set.done));
      if (set.stopped.exists()) plan.stoppedBy.push_back(KeyOf(set.stopped));
      return plan;
    }
    case Verb::kStop: {
      if (!options.task) return std::nullopt;
      const p::CommandSet& set = options.task->sets[options.secondSet ? p::kSecondSet : p::kFirstSet];
      if (!set.stop) return std::nullopt;
      plan.message = set.stop;
      plan.end = EndOn::kSendReturns;
      if (set.stopped.exists()) plan.awaited.push_back(KeyOf(set.stopped));
      plan.needsRunningWorker = true;
      return plan;
    }
  }
  return std::nullopt;
}

}  // namespace overseer
