// Reading Settings.INI. The controller writes it; the worker reads it afresh
// at the start of every task and never writes it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/relaxed.h"

namespace scourel {

inline constexpr wchar_t kSettingsSection[] = L"Corvane Suite";
inline constexpr wchar_t kWipeAlgorithmKey[] = L"IDS_WIPEALGORITHM";

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
bool ReadSwitch(KeyFamily family, std::wstring_view suffix, unsigned bufferChars);
// Reads IDS_WIPEALGORITHM into g_wipeMethod when it holds a valid index.
void ReadWipeAlgorithm();

// Key suffixes, in reading order.
inline constexpr std::wstring_view kPcTracesKeys[] = {
    L"PCDOCUMENT", L"PCRUNHISTORY", L"PCFINDFILES", L"PCNETWORK", L"PCSCANDISKFILES", L"PCCLEARREGISTRY"};
inline constexpr std::wstring_view kBrowserKeys[] = {
    L"CACHE", L"COOKIES", L"HISTORY", L"AUTOCOMPLETE", L"SESSION",
    L"DOWNLOADHISTORY", L"ADDRESSBAR", L"PROGRAMFILES", L"INDEX", L"ICONS"};
inline constexpr std::wstring_view kRegistryKeys[] = {
    L"CURRENTUSER", L"COM", L"FONTS", L"ASSOCIATION", L"TYPES", L"PATHS",
    L"DLL", L"EMPTY", L"SOUND", L"HELP", L"SOFTWARE", L"DEEPSCAN"};

}  // namespace scourel
