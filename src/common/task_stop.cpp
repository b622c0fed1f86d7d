#include "common/task_stop.h"

namespace scourel {

namespace {
thread_local const std::atomic<bool>* t_stopFlag = nullptr;
}

bool TaskStopRequested() {
  return t_stopFlag != nullptr && t_stopFlag->load(std::memory_order_relaxed);
}

ScopedTaskStop::ScopedTaskStop(StopFlag flag) : flag_(std::move(flag)), previous_(t_stopFlag) {
  t_stopFlag = flag_.get();
}

ScopedTaskStop::~ScopedTaskStop() { t_stopFlag = previous_; }

}  // namespace scourel
