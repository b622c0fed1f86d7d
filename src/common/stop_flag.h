// Cooperative stop of a task. A stop command must not suspend a thread that
// may hold the heap or loader lock, so instead it raises the task's flag; the
// task checks it between items (and the shredder between clusters) and makes
// no further change once it is raised.
#pragma once

#include <atomic>
#include <mutex>

namespace scourel {

class StopFlag {
 public:
  StopFlag() = default;
  StopFlag(const StopFlag&) = delete;
  StopFlag& operator=(const StopFlag&) = delete;

  bool raised() const noexcept { return raised_.load(std::memory_order_acquire); }

  // Waits for a change under way in RunUnlessRaised, so none lands after this
  // returns: what a stop reports is all the task will ever add.
  void Raise() {
    const std::lock_guard lock(mutex_);
    raised_.store(true, std::memory_order_release);
  }

  // Runs `change` unless the flag is raised; true when it ran. The change
  // must be short and must not wait for another thread (a SendMessage to
  // the controller, say): the stop command's handler waits for it.
  template <typename Change>
  bool RunUnlessRaised(Change&& change) const {
    const std::lock_guard lock(mutex_);
    if (raised_.load(std::memory_order_relaxed)) return false;
    change();
    return true;
  }

 private:
  std::atomic<bool> raised_{false};
  mutable std::mutex mutex_;
};

// True when `flag` is set and raised; a task without a flag is never stopped.
inline bool Raised(const StopFlag* flag) noexcept { return flag != nullptr && flag->raised(); }

}  // namespace scourel
