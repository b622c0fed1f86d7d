// Per-plug-in rows for scan. The worker reports one plug-in total, so
// overseer measures each plug-in itself with the worker's walk, as it does
// the browsers, and shows the result as its own measurement.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "overseer/command_line.h"

namespace overseer {

struct PluginRow {
  std::wstring name;  // the file name without ".cv": "Edge - Work"
  std::int32_t count = 0;
  float bytes = 0.0f;
};

// Scan: a row per plug-in the worker will read, in its listing order. Other
// commands: nothing.
std::optional<std::vector<PluginRow>> MeasurePluginRows(const Options& options, const std::wstring& workerPath);

std::string PluginRowsTable(const std::vector<PluginRow>& rows);
std::string PluginRowsJson(const std::vector<PluginRow>& rows);

}  // namespace overseer
