// Reading Settings.INI. The controller writes it; the worker reads it afresh
// at the start of every task and never writes it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/relaxed.h"
#include "protocol/settings_keys.h"

namespace scourel {

using protocol::kSettingsSection;
using protocol::kWipeAlgorithmKey;

// GetPrivateProfileStringW buffer sizes, in characters. A longer value is cut.
inline constexpr unsigned kWipeAlgorithmChars = 100;
inline constexpr unsigned kPcTracesFirstSetChars = 520;
inline constexpr unsigned kPcTracesSecondSetChars = 1000;
inline constexpr unsigned kBrowserChars = 520;
inline constexpr unsigned kRegistryChars = 500;

// Key families differ only by the prefix: IDS_C..., IDS_..., IDS_O...
enum class KeyFamily { kFirstSet, kPlain, kO };

KeyFamily FamilyForSecondSet(std::wstring_view modeArgument);
std::wstring KeyName(KeyFamily family, std::wstring_view suffix);

// The process-wide wipe-method index, 0 at start.
extern Relaxed<std::uint32_t> g_wipeMethod;

// Exactly "TRUE" is on; "true", "TRUE ", "" and anything else is off.
bool IsSwitchOn(std::wstring_view value);
// Exactly "0".."8"; anything else is no index.
std::optional<std::uint32_t> ParseWipeIndex(std::wstring_view value);

// One key of the worker's section, empty when the key, section or file is missing.
std::wstring ReadSetting(const std::wstring& iniPath, const std::wstring& key, unsigned bufferChars);

// The worker's section of one settings file.
class SettingsFile {
 public:
  explicit SettingsFile(std::wstring path) : path_(std::move(path)) {}

  const std::wstring& path() const { return path_; }
  std::wstring Read(const std::wstring& key, unsigned bufferChars) const {
    return ReadSetting(path_, key, bufferChars);
  }
  bool Switch(KeyFamily family, std::wstring_view suffix, unsigned bufferChars) const;
  // Reads IDS_WIPEALGORITHM into g_wipeMethod when it holds a valid index,
  // and returns the index now in force.
  std::uint32_t ReadWipeAlgorithm() const;

 private:
  std::wstring path_;
};

}  // namespace scourel
