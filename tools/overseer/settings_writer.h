// The controller's side of Settings.INI: which keys a command line sets, in
// which key family, and writing them where the worker will read them.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "overseer/command_line.h"

namespace overseer {

inline constexpr wchar_t kSettingsFileName[] = L"Settings.INI";

using SettingEntry = std::pair<std::wstring, std::wstring>;  // key, value

// Everything the options ask to be written, in the worker's reading order:
// wipe method first, then PC traces, browser, registry switches.
std::vector<SettingEntry> SettingsEntries(const Options& options, bool modeO);

// The folder two levels above the worker executable, as the worker works it
// out; nullopt for a path with fewer than two separators.
std::optional<std::wstring> InstallRootOf(const std::wstring& workerExePath);

// Writes the entries to <root>\Settings.INI. False (with the failing key in
// *failedKey) if one could not be written.
bool WriteSettings(const std::wstring& iniPath, const std::vector<SettingEntry>& entries, std::wstring* failedKey);

}  // namespace overseer
