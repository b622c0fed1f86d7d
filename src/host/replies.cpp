#include "host/replies.h"

#include "common/task_stop.h"
#include "host/protocol.h"
#include "host/reply_text.h"
#include "host/task_totals.h"
#include "host/worker_state.h"

namespace scourel {

HWND FindController() { return ::FindWindowW(protocol::kControllerClass, nullptr); }

void SendReply(unsigned id, WPARAM wParam, LPARAM lParam) {
  if (TaskStopRequested()) return;
  if (HWND controller = FindController()) ::SendMessageW(controller, id, wParam, lParam);
}

void PostReply(unsigned id, WPARAM wParam, LPARAM lParam) {
  if (TaskStopRequested()) return;
  if (HWND controller = FindController()) ::PostMessageW(controller, id, wParam, lParam);
}

void SendCopyData(unsigned kind, const std::wstring& text) {
  if (TaskStopRequested()) return;
  HWND controller = FindController();
  if (!controller) return;
  const std::uint32_t cbData = protocol::RecordBytes(kind);
  std::vector<std::uint8_t> buffer = CopyDataBuffer(text, cbData);
  COPYDATASTRUCT record{};
  record.dwData = kind;
  record.cbData = cbData;
  record.lpData = buffer.data();
  const bool fromTask = kind >= protocol::kPcTracesDone;
  HWND sender = fromTask ? g_commandWindow : controller;
  // SendMessageW returns only once the controller has read the record, so the
  // buffer can go with this frame.
  ::SendMessageW(controller, WM_COPYDATA, reinterpret_cast<WPARAM>(sender), reinterpret_cast<LPARAM>(&record));
}

namespace {

void SendCountAndBytes(unsigned id, std::int32_t count) {
  const float bytes = g_totals.byteTotal.get();
  SendReply(id, static_cast<WPARAM>(static_cast<INT_PTR>(count)), static_cast<LPARAM>(ReplyBytes(bytes)));
}

}  // namespace

void SendJunkFilesReply(unsigned id) {
  // The 32-bit sum wraps as the counters themselves do.
  const auto count = static_cast<std::int32_t>(static_cast<std::uint32_t>(g_totals.junkFirst.take()) +
                                               static_cast<std::uint32_t>(g_totals.junkSecond.take()));
  SendCountAndBytes(id, count);
}

void SendShortcutsReply(unsigned id) {
  const std::int32_t count = g_totals.junkSecond.take();
  g_totals.junkFirst.set(0);
  SendCountAndBytes(id, count);
}

void SendRecycleBinReply(unsigned id) { SendCountAndBytes(id, g_totals.recycleBinItems.take()); }

}  // namespace scourel
