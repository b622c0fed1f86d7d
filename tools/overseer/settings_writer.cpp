#include "overseer/settings_writer.h"

#include <span>

#include "common/win.h"
#include "protocol/categories.h"
#include "protocol/settings_keys.h"

namespace overseer {

namespace {

// The worker reads a switch as on only when it is exactly "TRUE".
const wchar_t* SwitchValue(bool on) { return on ? L"TRUE" : L"FALSE"; }

void AddSwitches(std::vector<SettingEntry>& entries, const std::wstring& prefix,
                 std::span<const std::wstring_view> suffixes, const std::optional<std::vector<bool>>& on) {
  if (!on) return;
  for (size_t i = 0; i < suffixes.size(); ++i) {
    entries.emplace_back(prefix + std::wstring(suffixes[i]), SwitchValue((*on)[i]));
  }
}

}  // namespace

std::vector<SettingEntry> SettingsEntries(const Options& options, bool modeO) {
  std::vector<SettingEntry> entries;
  if (options.wipeMethod) {
    entries.emplace_back(scourel::protocol::kWipeAlgorithmKey, std::to_wstring(*options.wipeMethod));
  }
  const std::wstring prefix = scourel::protocol::KeyPrefix(options.secondSet, modeO);
  AddSwitches(entries, prefix, scourel::protocol::kPcSwitchKeys, options.pc);
  AddSwitches(entries, prefix, scourel::protocol::kBrowserCategoryKeys, options.browser);
  AddSwitches(entries, prefix, scourel::protocol::kRegistrySwitchKeys, options.registry);
  return entries;
}

std::optional<std::wstring> InstallRootOf(const std::wstring& workerExePath) {
  const size_t last = workerExePath.rfind(L'\\');
  if (last == std::wstring::npos || last == 0) return std::nullopt;
  const size_t second = workerExePath.rfind(L'\\', last - 1);
  if (second == std::wstring::npos) return std::nullopt;
  return workerExePath.substr(0, second);
}

bool WriteSettings(const std::wstring& iniPath, const std::vector<SettingEntry>& entries, std::wstring* failedKey) {
  for (const SettingEntry& entry : entries) {
    if (!::WritePrivateProfileStringW(scourel::protocol::kSettingsSection, entry.first.c_str(), entry.second.c_str(),
                                      iniPath.c_str())) {
      if (failedKey) *failedKey = entry.first;
      return false;
    }
  }
  // Flush the profile cache so the worker reads the file as written.
  ::WritePrivateProfileStringW(nullptr, nullptr, nullptr, iniPath.c_str());
  return true;
}

}  // namespace overseer
