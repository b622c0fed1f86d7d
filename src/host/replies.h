// Sending completions, progress and copy-data texts to the controller, which
// is looked up afresh each time. With no controller window nothing is sent.
// A task that has been stopped sends nothing more.
#pragma once

#include <functional>
#include <string>

#include "common/win.h"
#include "host/task_slots.h"
#include "protocol/tasks.h"

namespace scourel {

HWND FindController();

// A numeric message, sent or posted. `from` is the task thread that sends
// it, or null for the main thread's stop handlers. These return false, and
// send nothing, when `from` has been stopped.
bool DeliverMessage(unsigned id, protocol::Delivery delivery, WPARAM wParam, LPARAM lParam, const TaskThread* from);

// WM_COPYDATA of the given kind, its text made by `make` from the totals
// (resetting what the record resets) only if the task has not been stopped.
// wParam is the worker's window for the task replies (303-306) and the
// controller's own window for the full scan's.
bool SendTotalsRecord(unsigned kind, const std::function<std::wstring()>& make, const TaskThread* from);

// A task's completion or stop reply as the protocol table describes it, its
// values read (and the counters it resets, reset) from the task totals.
bool DeliverTaskReply(const protocol::TaskSpec& task, const protocol::Reply& reply, const TaskThread* from);

// The texts of the task replies 303 to 306, from the totals as they stand.
std::wstring TaskRecordText(unsigned kind);

}  // namespace scourel
