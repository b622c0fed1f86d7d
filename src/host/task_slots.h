// The eight task slots. A start command runs its task on a new thread and
// stores the thread's record in the slot, replacing what was there; a stop
// command takes the record out, raises its stop flag, and the thread leaves
// at its next check.
//
// A record has two claims on it: the slot's (held by whoever has it in or
// takes it out of the slot) and the thread's own. It goes when both are
// given up, so it outlives its thread and no later task's record can ever
// take its address while a compare-and-swap of its thread might still name it.
#pragma once

#include <atomic>
#include <cstdint>

#include "common/stop_flag.h"
#include "common/unique_handle.h"
#include "protocol/tasks.h"

namespace scourel {

using protocol::Slot;

class TaskThread {
 public:
  explicit TaskThread(Slot slot) : slot_(slot) {}

  Slot slot() const { return slot_; }
  // What the start command carried in wParam.
  std::uintptr_t argument() const { return argument_; }
  // Waits up to `ms` for the thread to end, handling messages sent to this
  // thread's windows meanwhile (the task may be sending to them).
  bool WaitForEnd(DWORD ms) const;
  const StopFlag& stop() const { return stop_; }
  bool stopped() const { return stop_.raised(); }

  // The end of the task: empties the slot only if it still holds this record
  // (a later start may have replaced it).
  void LeaveSlot();
  // The stop sequence run by a task on its own slot: when a later start has
  // replaced this record, takes that later record out and raises its flag
  // (the caller reports and releases it). When the slot still holds this
  // record it stays taken, and null is returned, as for an empty slot.
  TaskThread* TakeLaterRecord();

 private:
  friend void StartTask(Slot, void (*)(TaskThread&), std::uintptr_t);
  friend bool StopSlot(Slot);
  friend TaskThread* TakeSlot(Slot);
  friend void ReleaseTakenSlot(TaskThread*);
  static unsigned long __stdcall Run(void* parameter);
  void Release();

  const Slot slot_;
  StopFlag stop_;
  UniqueHandleKernel handle_;
  void (*body_)(TaskThread&) = nullptr;
  std::uintptr_t argument_ = 0;
  std::atomic<int> claims_{2};
};

using TaskBody = void (*)(TaskThread& thread);

// Starts body on a new thread in the slot. The thread is created suspended
// and resumed once the slot holds it, so a quick task always finds itself there.
void StartTask(Slot slot, TaskBody body, std::uintptr_t argument = 0);

// A stop command: when the slot holds a record, takes it out, raises its stop
// flag and returns true; the caller then reports. An empty slot gives false.
bool StopSlot(Slot slot);

// Takes the slot's record out (null when empty) and raises its stop flag;
// the caller reports, then gives the claim up with ReleaseTakenSlot.
TaskThread* TakeSlot(Slot slot);
void ReleaseTakenSlot(TaskThread* taken);

bool SlotBusy(Slot slot);

}  // namespace scourel
