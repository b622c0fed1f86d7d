#include "host/task_slots.h"

#include <memory>

namespace scourel {

namespace {

std::atomic<TaskThread*> g_slots[protocol::kSlotCount];

std::atomic<TaskThread*>& SlotRef(Slot slot) { return g_slots[static_cast<int>(slot)]; }

}  // namespace

void TaskThread::Release() {
  if (claims_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void TaskThread::LeaveSlot() {
  TaskThread* expected = this;
  if (SlotRef(slot_).compare_exchange_strong(expected, nullptr)) Release();
}

TaskThread* TaskThread::TakeLaterRecord() {
  std::atomic<TaskThread*>& slot = SlotRef(slot_);
  TaskThread* held = slot.load();
  while (held != nullptr && held != this) {
    if (slot.compare_exchange_weak(held, nullptr)) {
      held->stop_.Raise();
      return held;
    }
  }
  return nullptr;
}

unsigned long __stdcall TaskThread::Run(void* parameter) {
  auto* self = static_cast<TaskThread*>(parameter);
  self->body_(*self);
  self->Release();  // the thread's own claim
  return 0;
}

bool TaskThread::WaitForEnd(DWORD ms) const {
  const ULONGLONG end = ::GetTickCount64() + ms;
  for (;;) {
    const ULONGLONG now = ::GetTickCount64();
    if (now >= end) return false;
    const HANDLE handle = handle_.get();
    const DWORD result =
        ::MsgWaitForMultipleObjects(1, &handle, FALSE, static_cast<DWORD>(end - now), QS_SENDMESSAGE);
    if (result == WAIT_OBJECT_0) return true;
    if (result != WAIT_OBJECT_0 + 1) return false;
    MSG message;
    // Handles the sent messages only; posted ones wait for the message loop.
    ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
  }
}

void StartTask(Slot slot, TaskBody body, std::uintptr_t argument) {
  auto thread = std::make_unique<TaskThread>(slot);
  thread->body_ = body;
  thread->argument_ = argument;
  thread->handle_.reset(::CreateThread(nullptr, 0, TaskThread::Run, thread.get(), CREATE_SUSPENDED, nullptr));
  if (!thread->handle_) return;
  TaskThread* started = thread.release();
  const HANDLE handle = started->handle_.get();
  // A second start while busy replaces the slot's record; the earlier thread
  // runs on to its end, unreachable by a stop command.
  if (TaskThread* replaced = SlotRef(slot).exchange(started)) replaced->Release();
  ::ResumeThread(handle);
}

TaskThread* TakeSlot(Slot slot) {
  TaskThread* taken = SlotRef(slot).exchange(nullptr);
  if (taken) taken->stop_.Raise();
  return taken;
}

void ReleaseTakenSlot(TaskThread* taken) {
  if (taken) taken->Release();
}

bool StopSlot(Slot slot) {
  TaskThread* taken = TakeSlot(slot);
  ReleaseTakenSlot(taken);
  return taken != nullptr;
}

bool SlotBusy(Slot slot) { return SlotRef(slot).load() != nullptr; }

}  // namespace scourel
