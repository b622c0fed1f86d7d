// What overseer prints: a readable block per reply as it arrives, or one JSON
// document at the end for scripts. Text only; the caller writes it out.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "overseer/browser_rows.h"
#include "overseer/plugin_rows.h"
#include "overseer/reply_decoding.h"
#include "overseer/settings_writer.h"

namespace overseer {

struct RunReport {
  std::string command;
  std::wstring workerPath;
  unsigned long workerPid = 0;
  bool attached = false;  // the worker was already running
  std::wstring settingsPath;
  std::vector<SettingEntry> settingsWritten;
  std::vector<DecodedReply> replies;
  std::string status;  // completed, stopped, not running, failed
  std::string error;   // why it failed
  std::optional<BrowserRows> browserRows;  // overseer's own measurement, per browser
  std::optional<std::vector<PluginRow>> pluginRows;  // the same, per plug-in
};

std::string Utf8(std::wstring_view text);
std::string JsonString(std::wstring_view text);

// One reply as a block of lines, ending in a newline.
std::string ReplyTable(const DecodedReply& reply);
std::string JsonReport(const RunReport& report);

}  // namespace overseer
