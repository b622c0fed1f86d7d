// What a task driver hands each cleaner: where to add what it finds, how to
// erase, whether to erase at all, and whether the task has been stopped.
// Cleaners take everything from here and reach for no process state.
#pragma once

#include <cstdint>
#include <string>

#include "common/stop_flag.h"
#include "common/win.h"
#include "task/task_totals.h"
#include "task/cleaner_io.h"

namespace scourel {

// Every cleaner has a measuring form (the full scan) and an erasing form (the
// tasks); they visit the same things and count the same way.
enum class Mode { kMeasure, kErase };

struct TaskContext {
  TaskTotals& totals;
  CleanerIo& io;                // every change the cleaners make, the shredder's included
  const StopFlag* stop = nullptr;
  std::uint32_t wipeMethod = 0;  // read from the settings when the task began
  Mode mode = Mode::kMeasure;
  HWND window = nullptr;        // the worker's command window: clipboard owner, wipe progress
  std::wstring installRoot;     // the folder two levels above the worker's exe
  std::wstring settingsPath;    // installRoot + "\Settings.INI"

  bool stopped() const noexcept { return Raised(stop); }
  // Adds to (or resets) the totals unless the task is stopped: a stop's
  // reply is then the last word on what this task found. True when done.
  template <typename Change>
  bool Record(Change&& change) const {
    if (stop == nullptr) {
      change();
      return true;
    }
    return stop->RunUnlessRaised(change);
  }
  bool erasing() const noexcept { return mode == Mode::kErase; }

  TaskContext With(Mode other) const {
    TaskContext copy = *this;
    copy.mode = other;
    return copy;
  }
};

}  // namespace scourel
