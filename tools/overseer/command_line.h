// overseer's command line: which command to send, to which worker, and the
// settings to write first. Pure text handling, so it tests without Windows.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/categories.h"
#include "protocol/tasks.h"

namespace overseer {

enum class Verb { kScan, kClean, kFix, kStop, kClose, kSettings, kPlugins, kWipe, kShred, kPreview };

// Option names of the switches, in the order of the worker's settings keys.
// The browser and registry names double as the reply field names.
inline constexpr const auto& kBrowserNames = scourel::protocol::kBrowserCategoryNames;
inline constexpr const auto& kPcNames = scourel::protocol::kPcSwitchNames;
inline constexpr const auto& kRegistryNames = scourel::protocol::kRegistrySwitchNames;
// Wipe methods by index 0..8.
inline constexpr std::array<std::string_view, 9> kWipeNames = {"zero",  "random",   "dod3",    "pairs3",     "dod7",
                                                               "vsitr", "pattern7", "gutmann", "gutmann-dod"};

inline constexpr unsigned kDefaultTimeoutSeconds = 300;

struct Options {
  Verb verb = Verb::kScan;
  const scourel::protocol::TaskSpec* task = nullptr;  // what a clean, fix, stop or preview acts on (preview all: null)
  bool secondSet = false;
  bool json = false;
  bool keepWorker = false;  // leave a worker we started running
  bool yes = false;         // a fix may delete
  std::wstring backupPath;  // fix: the .reg file to write first; empty: none
  std::wstring workerPath;  // empty: scourel.exe beside overseer.exe
  std::wstring mode;        // mode argument for a worker we start
  unsigned timeoutSeconds = kDefaultTimeoutSeconds;
  std::optional<unsigned> wipeMethod;
  std::optional<std::vector<bool>> browser;   // kBrowserNames order
  std::optional<std::vector<bool>> pc;        // kPcNames order
  std::optional<std::vector<bool>> registry;  // kRegistryNames order
  bool pluginImport = false;  // plugins: import (else list)
  std::wstring rulesFile;     // plugins import: the rules file
  bool pluginBrowsers = false;  // plugins browsers: generate the browsers' plug-ins
  std::wstring drive;         // wipe free: the drive as given
  std::vector<std::wstring> paths;  // shred: the files and folders
  std::wstring receiptPath;   // clean, fix: the receipt to write; empty: none
};

struct ParseResult {
  std::optional<Options> options;  // set when the line is valid
  bool help = false;               // --help: print UsageText, exit 0
  std::string error;               // why the line was refused
};

// args excludes the program name.
ParseResult ParseCommandLine(const std::vector<std::wstring>& args);
std::string UsageText();

// "3", "dod7", "DOD7" -> 4 ... ; nullopt for anything else.
std::optional<unsigned> ParseWipeMethod(std::string_view value);
// "cache,cookies", "all", "none" over the given names; nullopt if any is unknown.
std::optional<std::vector<bool>> ParseSwitchList(std::string_view value, std::span<const std::string_view> names);

std::string CommandName(Verb verb, const scourel::protocol::TaskSpec* task);

}  // namespace overseer
