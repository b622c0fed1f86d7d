// Cooperative stop for task threads. A stop command must not suspend a thread
// that may hold the heap or loader lock, so instead it raises the task's flag;
// every cleaner checks TaskStopRequested() between items and makes no further
// change once it is set.
#pragma once

#include <atomic>
#include <memory>

namespace scourel {

using StopFlag = std::shared_ptr<std::atomic<bool>>;

// True once the task running on this thread has been stopped. Threads that
// are not task threads (tests, the main thread) are never stopped.
bool TaskStopRequested();

// Binds a stop flag to the calling thread for the life of the object.
class ScopedTaskStop {
 public:
  explicit ScopedTaskStop(StopFlag flag);
  ~ScopedTaskStop();
  ScopedTaskStop(const ScopedTaskStop&) = delete;
  ScopedTaskStop& operator=(const ScopedTaskStop&) = delete;

 private:
  StopFlag flag_;
  const std::atomic<bool>* previous_;
};

}  // namespace scourel
