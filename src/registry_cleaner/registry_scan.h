// The full scan's two registry passes. The main pass runs every scan in a
// fixed order whatever the settings say (they only choose what a fix
// deletes); the file-extension pass fills its one category.
#pragma once

#include <array>
#include <cstdint>

#include "protocol/categories.h"
#include "task/task_context.h"

namespace scourel {

// Resets the fifteen found-counts, then runs the scans in order.
void RunRegistryScan(const TaskContext& context);
// Adds to the file-extension category without resetting it; returns its count.
int RunFileExtensionScan(const TaskContext& context);

// The twelve counts the main pass reports, in the order they are sent.
std::array<std::int32_t, protocol::kRegistryReportCount> RegistryReportCounts();

}  // namespace scourel
