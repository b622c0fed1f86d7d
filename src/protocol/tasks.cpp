#include "protocol/tasks.h"

namespace scourel::protocol {

std::optional<CommandMatch> FindCommand(unsigned id) {
  if (id == 0) return std::nullopt;
  for (const TaskSpec& spec : kTasks) {
    for (int set = kFirstSet; set <= kSecondSet; ++set) {
      if (spec.sets[set].start == id) return CommandMatch{&spec, set, false};
      if (spec.sets[set].stop == id) return CommandMatch{&spec, set, true};
    }
  }
  return std::nullopt;
}

std::optional<ReplyMatch> FindReply(unsigned id, unsigned kind) {
  for (const TaskSpec& spec : kTasks) {
    for (int set = kFirstSet; set <= kSecondSet; ++set) {
      for (const bool stop : {false, true}) {
        const Reply& reply = stop ? spec.sets[set].stopped : spec.sets[set].done;
        if (reply.exists() && reply.id == id && reply.kind == kind) return ReplyMatch{&spec, set, stop, &reply};
      }
    }
  }
  return std::nullopt;
}

}  // namespace scourel::protocol
