// Cooperative stop of a task. A stop command must not suspend a thread that
// may hold the heap or loader lock, so instead it raises the task's flag; the
// task checks it between items (and the shredder between clusters) and makes
// no further change once it is raised.
#pragma once

#include <atomic>

namespace scourel {

class StopFlag {
 public:
  StopFlag() = default;
  StopFlag(const StopFlag&) = delete;
  StopFlag& operator=(const StopFlag&) = delete;

  bool raised() const noexcept { return raised_.load(std::memory_order_acquire); }
  void Raise() noexcept { raised_.store(true, std::memory_order_release); }

 private:
  std::atomic<bool> raised_{false};
};

// True when `flag` is set and raised; a task without a flag is never stopped.
inline bool Raised(const StopFlag* flag) noexcept { return flag != nullptr && flag->raised(); }

}  // namespace scourel
