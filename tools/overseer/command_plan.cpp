#include "overseer/command_plan.h"

#include "host/protocol.h"
#include "overseer/reply_decoding.h"

namespace overseer {

namespace {

namespace p = scourel::protocol;

ReplyKey Message(unsigned id) { return {id, 0}; }
ReplyKey CopyData(unsigned kind) { return {kCopyDataMessage, kind}; }

struct TaskMessages {
  unsigned start = 0;
  ReplyKey done;
  unsigned stop = 0;  // 0: no stop command
  ReplyKey stopReply;
};

// One task's messages in the first or second command set.
std::optional<TaskMessages> MessagesFor(Target target, bool second) {
  switch (target) {
    case Target::kJunk:
      return second ? TaskMessages{p::kJunkFilesStart2, Message(p::kJunkFilesDone2), p::kJunkFilesStop2,
                                   Message(p::kJunkFilesStop2)}
                    : TaskMessages{p::kJunkFilesStart, Message(p::kJunkFilesDone), p::kJunkFilesStop,
                                   Message(p::kJunkFilesStop)};
    case Target::kShortcuts:
      return second ? TaskMessages{p::kShortcutsStart2, Message(p::kShortcutsDone2), p::kShortcutsStop2,
                                   Message(p::kShortcutsStop2)}
                    : TaskMessages{p::kShortcutsStart, Message(p::kShortcutsDone), p::kShortcutsStop,
                                   Message(p::kShortcutsStop)};
    case Target::kRecycle:
      return second ? TaskMessages{p::kRecycleBinStart2, Message(p::kRecycleBinDone2), p::kRecycleBinStop2,
                                   Message(p::kRecycleBinStop2)}
                    : TaskMessages{p::kRecycleBinStart, Message(p::kRecycleBinDone), p::kRecycleBinStop,
                                   Message(p::kRecycleBinStop)};
    case Target::kBrowser:
      return second ? TaskMessages{p::kBrowserStart2, Message(p::kBrowserDone2), p::kBrowserStop2,
                                   Message(p::kBrowserStop2)}
                    : TaskMessages{p::kBrowserStart, CopyData(p::kBrowserDone), p::kBrowserStop,
                                   CopyData(p::kBrowserStopped)};
    case Target::kPc:
      return second ? TaskMessages{p::kPcTracesStart2, Message(p::kPcTracesDone2), p::kPcTracesStop2,
                                   Message(p::kPcTracesStop2)}
                    : TaskMessages{p::kPcTracesStart, CopyData(p::kPcTracesDone), p::kPcTracesStop,
                                   CopyData(p::kPcTracesStopped)};
    case Target::kPlugins:
      return second ? TaskMessages{p::kPluginCleanStart2, Message(p::kPluginCleanDone2), p::kPluginCleanStop2,
                                   Message(p::kPluginCleanStop2)}
                    : TaskMessages{p::kPluginCleanStart, Message(p::kPluginCleanDone), p::kPluginCleanStop,
                                   Message(p::kPluginCleanStop)};
    case Target::kRegistry:
      // The registry fix has one stop command, shared by both sets.
      return TaskMessages{second ? unsigned{p::kRegistryFixStart2} : unsigned{p::kRegistryFixStart},
                          Message(second ? p::kRegistryFixDone2 : p::kRegistryFixDone), p::kRegistryFixStop,
                          Message(p::kRegistryFixStop)};
    case Target::kExtensions:
      return second ? TaskMessages{p::kExtensionFix2, Message(p::kExtensionFixDone2), 0, {}}
                    : TaskMessages{p::kExtensionFix, Message(p::kExtensionFixDone), 0, {}};
    case Target::kScan:
      // Its stop answers nothing.
      return TaskMessages{p::kFullScanStart, {}, p::kFullScanStop, {}};
    case Target::kNone:
      break;
  }
  return std::nullopt;
}

}  // namespace

std::optional<CommandPlan> PlanFor(const Options& options) {
  CommandPlan plan;
  switch (options.verb) {
    case Verb::kSettings:
      return std::nullopt;
    case Verb::kScan:
      plan.message = p::kFullScanStart;
      for (unsigned kind :
           {p::kScanJunkFiles, p::kScanRegistry, p::kScanRegistryDone, p::kScanShortcuts, p::kScanExtensions,
            p::kScanBrowser, p::kScanPcTraces, p::kScanRecycleBin, p::kScanPlugins}) {
        plan.awaited.push_back(CopyData(kind));
      }
      return plan;
    case Verb::kClose:
      plan.message = 16;  // WM_CLOSE
      plan.end = EndOn::kProcessExit;
      plan.needsRunningWorker = true;
      return plan;
    case Verb::kClean:
    case Verb::kFix: {
      const auto task = MessagesFor(options.target, options.secondSet);
      if (!task) return std::nullopt;
      plan.message = task->start;
      plan.awaited.push_back(task->done);
      if (task->stop && task->stopReply.id) plan.stoppedBy.push_back(task->stopReply);
      return plan;
    }
    case Verb::kStop: {
      const auto task = MessagesFor(options.target, options.secondSet);
      if (!task || !task->stop) return std::nullopt;
      plan.message = task->stop;
      plan.end = EndOn::kSendReturns;
      if (task->stopReply.id) plan.awaited.push_back(task->stopReply);
      plan.needsRunningWorker = true;
      return plan;
    }
  }
  return std::nullopt;
}

}  // namespace overseer
