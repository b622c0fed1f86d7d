// A task context for driving cleaners directly, outside a worker: the
// process's totals, the system's file layer, never stopped.
#pragma once

#include <cstdint>
#include <string>

#include "task/task_context.h"

namespace scourel::test {

inline TaskContext TestContext(Mode mode, std::uint32_t wipeMethod = 0, std::wstring settingsPath = L"",
                               std::wstring installRoot = L"") {
  return TaskContext{g_totals, SystemCleanerIo(), nullptr, wipeMethod, mode, nullptr, std::move(installRoot),
                     std::move(settingsPath)};
}

inline const TaskContext kMeasure = TestContext(Mode::kMeasure);
inline const TaskContext kErase = TestContext(Mode::kErase);

}  // namespace scourel::test
