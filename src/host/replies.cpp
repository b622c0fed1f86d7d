#include "host/replies.h"

#include <array>
#include <utility>
#include <vector>

#include "host/worker_state.h"
#include "protocol/messages.h"
#include "protocol/reply_text.h"
#include "protocol/size_text.h"
#include "task/task_totals.h"

namespace scourel {

namespace {

using protocol::Payload;
using protocol::Task;

// A task decides on a reply, reads and resets the values it carries, and
// finds the controller under its stop flag: a reply is decided before the
// stop, with what was counted until then, or not at all. A post never waits,
// so it goes out under the flag too, before the stop can answer. A send waits
// for the controller (which may be sending this very stop), so it goes out
// just after: a reply decided just before a stop can trail the stop's own.
template <typename Decide>
bool Committed(const TaskThread* from, Decide&& decide) {
  if (from == nullptr) {
    decide();
    return true;
  }
  return from->stop().RunUnlessRaised(decide);
}

void SendRecord(HWND controller, unsigned kind, const std::wstring& text) {
  if (!controller) return;
  const std::uint32_t cbData = protocol::RecordBytes(kind);
  std::vector<std::uint8_t> buffer = CopyDataBuffer(text, cbData);
  COPYDATASTRUCT record{};
  record.dwData = kind;
  record.cbData = cbData;
  record.lpData = buffer.data();
  const bool fromTask = kind >= protocol::kPcTracesDone;
  const HWND sender = fromTask ? g_commandWindow : controller;
  // SendMessageW returns only once the controller has read the record, so the
  // buffer can go with this frame.
  ::SendMessageW(controller, WM_COPYDATA, reinterpret_cast<WPARAM>(sender), reinterpret_cast<LPARAM>(&record));
}

// A numeric message whose values `take` reads (and resets) when the task
// commits to it.
bool DeliverValues(unsigned id, protocol::Delivery delivery, const std::function<std::pair<WPARAM, LPARAM>()>& take,
                   const TaskThread* from) {
  std::pair<WPARAM, LPARAM> values;
  HWND controller = nullptr;
  if (!Committed(from, [&] {
        values = take();
        controller = FindController();
        if (controller && delivery == protocol::Delivery::kPost) {
          ::PostMessageW(controller, id, values.first, values.second);
        }
      })) {
    return false;
  }
  if (controller && delivery == protocol::Delivery::kSend) ::SendMessageW(controller, id, values.first, values.second);
  return true;
}

WPARAM WorkerWindowParam() { return reinterpret_cast<WPARAM>(g_commandWindow); }

// The counter a count-and-bytes reply carries, read and reset as that reply
// resets it.
std::int32_t TakeReplyCount(Task task) {
  switch (task) {
    case Task::kJunkFiles:
      // The 32-bit sum wraps as the counters themselves do.
      return static_cast<std::int32_t>(static_cast<std::uint32_t>(g_totals.junkFirst.take()) +
                                       static_cast<std::uint32_t>(g_totals.junkSecond.take()));
    case Task::kShortcuts: {
      const std::int32_t count = g_totals.junkSecond.take();
      g_totals.junkFirst.set(0);
      return count;
    }
    case Task::kRecycleBin:
      return g_totals.recycleBinItems.take();
    default:
      return 0;
  }
}

PcCounters PcCounterValues() {
  PcCounters values{};
  for (int i = 0; i < protocol::kPcStepCount; ++i) values[i] = g_totals.pcTraces[i].get();
  return values;
}

std::wstring BrowserTotalsText() {
  std::array<std::int32_t, protocol::kBrowserCategoryCount> counts{};
  std::array<float, protocol::kBrowserCategoryCount> bytes{};
  for (int i = 0; i < protocol::kBrowserCategoryCount; ++i) {
    const auto category = static_cast<protocol::BrowserCategory>(i);
    counts[i] = g_totals.browser.CategoryCount(category);
    bytes[i] = g_totals.browser.CategoryBytes(category);
  }
  return BrowserText(counts, bytes);
}

}  // namespace

HWND FindController() { return ::FindWindowW(protocol::kControllerClass, nullptr); }

bool DeliverMessage(unsigned id, protocol::Delivery delivery, WPARAM wParam, LPARAM lParam, const TaskThread* from) {
  return DeliverValues(id, delivery, [&] { return std::pair{wParam, lParam}; }, from);
}

bool SendTotalsRecord(unsigned kind, const std::function<std::wstring()>& make, const TaskThread* from) {
  std::wstring text;
  HWND controller = nullptr;
  if (!Committed(from, [&] {
        text = make();
        controller = FindController();
      })) {
    return false;
  }
  SendRecord(controller, kind, text);
  return true;
}

std::wstring TaskRecordText(unsigned kind) {
  switch (kind) {
    case protocol::kPcTracesDone: return PcTracesDoneText(PcCounterValues());
    case protocol::kPcTracesStopped: return PcTracesStoppedText(PcCounterValues());
    default: return BrowserTotalsText();  // 305, 306
  }
}

bool DeliverTaskReply(const protocol::TaskSpec& task, const protocol::Reply& reply, const TaskThread* from) {
  switch (reply.payload) {
    case Payload::kNothing:
      return Committed(from, [] {});
    case Payload::kCountAndBytes:
      // The counters are reset whether or not a controller hears of them.
      return DeliverValues(
          reply.id, reply.delivery,
          [&] {
            const std::int32_t count = TakeReplyCount(task.task);
            return std::pair{static_cast<WPARAM>(static_cast<INT_PTR>(count)),
                             static_cast<LPARAM>(ReplyBytes(g_totals.byteTotal.get()))};
          },
          from);
    case Payload::kWorkerWindow:
      return DeliverMessage(reply.id, reply.delivery, WorkerWindowParam(), 0, from);
    case Payload::kZeros:
      return DeliverMessage(reply.id, reply.delivery, 0, 0, from);
    case Payload::kCopyData:
      return SendTotalsRecord(reply.kind, [&] { return TaskRecordText(reply.kind); }, from);
  }
  return false;
}

}  // namespace scourel
