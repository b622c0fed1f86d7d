// Per-browser rows for scan and clean browser. The worker reports only one
// total per category, so overseer measures the same places itself, with the
// worker's measuring code and from the worker's folder, just before it sends
// the command, and shows the result as its own measurement.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "overseer/command_line.h"
#include "protocol/categories.h"

namespace overseer {

struct BrowserRows {
  std::wstring currentDirectory;  // where the measurement ran: the worker's folder
  std::vector<scourel::protocol::BrowserCategory> categories;  // those measured
  std::array<std::array<std::int32_t, scourel::protocol::kBrowserCategoryCount>, scourel::protocol::kBrowserCount>
      counts{};
  std::array<std::array<float, scourel::protocol::kBrowserCategoryCount>, scourel::protocol::kBrowserCount> bytes{};
  // The counters the worker keeps beside its totals and never reports.
  std::int32_t ieCookieEntries = 0;
  std::int32_t firefoxOfflineCache = 0;
  std::int32_t icons = 0;
};

// Scan: every category the full scan measures. Clean browser: the categories
// switched on in the worker's settings for the command's key family. Other
// commands: nothing.
std::optional<BrowserRows> MeasureBrowserRows(const Options& options, const std::wstring& workerPath);

std::string BrowserRowsTable(const BrowserRows& rows);
std::string BrowserRowsJson(const BrowserRows& rows);

}  // namespace overseer
