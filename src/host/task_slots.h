// The eight task slots. A start command runs its task on a new thread and
// stores it in the slot, overwriting what was there; a stop command empties
// the slot and abandons the thread.
#pragma once

#include "common/task_stop.h"
#include "common/unique_handle.h"

namespace scourel {

enum class Slot : int {
  JunkFilesSlot,
  RegistrySlot,
  ShortcutsSlot,
  BrowserSlot,
  PcTracesSlot,
  RecycleBinSlot,
  PluginCleanSlot,
  FullScanSlot,
};
inline constexpr int kSlotCount = 8;

struct TaskThread {
  UniqueHandleKernel handle;
  StopFlag stop;
};

using TaskBody = void (*)(Slot slot);

// Starts body on a new thread in the slot. The thread is created suspended
// and resumed once the slot holds it, so a quick task always finds itself there.
void StartTask(Slot slot, TaskBody body);

// The end of a task thread: empties the slot (which by then may hold a later
// thread of the same slot) and releases the thread object.
void ReleaseSlot(Slot slot);

// A stop command: when the slot holds a thread, raises its stop flag, empties
// the slot and returns true; the caller then reports. An empty slot gives false.
bool StopSlot(Slot slot);

bool SlotBusy(Slot slot);

}  // namespace scourel
