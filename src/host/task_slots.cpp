#include "host/task_slots.h"

#include <atomic>
#include <memory>

namespace scourel {

namespace {

std::atomic<TaskThread*> g_slots[kSlotCount];

std::atomic<TaskThread*>& SlotRef(Slot slot) { return g_slots[static_cast<int>(slot)]; }

struct ThreadStart {
  Slot slot;
  TaskBody body;
  StopFlag stop;
};

DWORD WINAPI TaskThreadProc(void* parameter) {
  std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(parameter));
  ScopedTaskStop bind(start->stop);
  start->body(start->slot);
  return 0;
}

}  // namespace

void StartTask(Slot slot, TaskBody body) {
  auto thread = std::make_unique<TaskThread>();
  thread->stop = std::make_shared<std::atomic<bool>>(false);
  auto start = std::make_unique<ThreadStart>(ThreadStart{slot, body, thread->stop});
  thread->handle.reset(::CreateThread(nullptr, 0, TaskThreadProc, start.get(), CREATE_SUSPENDED, nullptr));
  if (!thread->handle) return;
  start.release();
  HANDLE handle = thread->handle.get();
  // A second start while busy replaces the slot's object; the earlier thread
  // runs on, unreachable by a stop command.
  delete SlotRef(slot).exchange(thread.release());
  ::ResumeThread(handle);
}

void ReleaseSlot(Slot slot) { delete SlotRef(slot).exchange(nullptr); }

bool StopSlot(Slot slot) {
  TaskThread* thread = SlotRef(slot).exchange(nullptr);
  if (!thread) return false;
  thread->stop->store(true, std::memory_order_relaxed);
  delete thread;
  return true;
}

bool SlotBusy(Slot slot) { return SlotRef(slot).load() != nullptr; }

}  // namespace scourel
