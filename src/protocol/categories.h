// The steps and categories that the worker's settings switch on and its
// replies count, each described once: settings key suffix, name, and where
// its count stands.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace scourel::protocol {

// The PC-traces steps in the order a clean runs them. The counters of the
// replies stand in the same order. The clipboard step has no switch: it runs
// whatever the settings say.
enum class PcStep : int {
  kDocuments,
  kRunHistory,
  kFindFiles,
  kClipboard,
  kNetwork,
  kScanDiskFiles,
  kRegistryTraces,
};
inline constexpr int kPcStepCount = 7;

struct PcStepSpec {
  PcStep step;
  std::wstring_view keySuffix;  // empty: no switch
  std::string_view name;        // overseer's option and field name
};

inline constexpr PcStepSpec kPcSteps[kPcStepCount] = {
    {PcStep::kDocuments, L"PCDOCUMENT", "documents"},
    {PcStep::kRunHistory, L"PCRUNHISTORY", "run_history"},
    {PcStep::kFindFiles, L"PCFINDFILES", "find_files"},
    {PcStep::kClipboard, L"", "clipboard"},
    {PcStep::kNetwork, L"PCNETWORK", "network"},
    {PcStep::kScanDiskFiles, L"PCSCANDISKFILES", "scan_disk_files"},
    {PcStep::kRegistryTraces, L"PCCLEARREGISTRY", "registry_traces"},
};

constexpr int CounterOf(PcStep step) { return static_cast<int>(step); }

// The six steps that have a switch, in reading order.
inline constexpr int kPcSwitchCount = 6;
constexpr std::array<const PcStepSpec*, kPcSwitchCount> PcSwitches() {
  std::array<const PcStepSpec*, kPcSwitchCount> switches{};
  std::size_t n = 0;
  for (const PcStepSpec& step : kPcSteps) {
    if (!step.keySuffix.empty()) switches[n++] = &step;
  }
  return switches;
}

// The browser categories in the order of their switches, of a clean and of
// the groups of every browser record.
enum class BrowserCategory : int {
  kCache,
  kCookies,
  kHistory,
  kAutocomplete,
  kSession,
  kDownloadHistory,
  kAddressBar,
  kProgramFiles,
  kIndex,
  kIcons,
};
inline constexpr int kBrowserCategoryCount = 10;

struct BrowserCategorySpec {
  BrowserCategory category;
  std::wstring_view keySuffix;
  std::string_view name;
};

inline constexpr BrowserCategorySpec kBrowserCategories[kBrowserCategoryCount] = {
    {BrowserCategory::kCache, L"CACHE", "cache"},
    {BrowserCategory::kCookies, L"COOKIES", "cookies"},
    {BrowserCategory::kHistory, L"HISTORY", "history"},
    {BrowserCategory::kAutocomplete, L"AUTOCOMPLETE", "autocomplete"},
    {BrowserCategory::kSession, L"SESSION", "session"},
    {BrowserCategory::kDownloadHistory, L"DOWNLOADHISTORY", "download_history"},
    {BrowserCategory::kAddressBar, L"ADDRESSBAR", "address_bar"},
    {BrowserCategory::kProgramFiles, L"PROGRAMFILES", "program_files"},
    {BrowserCategory::kIndex, L"INDEX", "index"},
    {BrowserCategory::kIcons, L"ICONS", "icons"},
};

// The five browsers, in the order their rows are shown.
enum class Browser : int { kInternetExplorer, kFirefox, kChrome, kOpera, kSafari };
inline constexpr int kBrowserCount = 5;
inline constexpr std::string_view kBrowserNames[kBrowserCount] = {"internet_explorer", "firefox", "chrome", "opera",
                                                                  "safari"};

// The registry cleaner's fifteen category numbers; 9 is never filled, 4 and
// 12 have no switch.
inline constexpr int kRegistryCategoryTotal = 15;

// The twelve registry switches in their reading order, with the category
// each selects.
struct RegistrySwitchSpec {
  std::wstring_view keySuffix;
  std::string_view name;
  int category;
};
inline constexpr int kRegistrySwitchCount = 12;
inline constexpr RegistrySwitchSpec kRegistrySwitches[kRegistrySwitchCount] = {
    {L"CURRENTUSER", "current_user", 14}, {L"COM", "com", 0},        {L"FONTS", "fonts", 6},
    {L"ASSOCIATION", "association", 3},   {L"TYPES", "types", 5},     {L"PATHS", "paths", 1},
    {L"DLL", "dll", 8},                   {L"EMPTY", "empty", 2},     {L"SOUND", "sound", 11},
    {L"HELP", "help", 7},                 {L"SOFTWARE", "software", 10}, {L"DEEPSCAN", "deep_scan", 13},
};

// The categories whose counts the registry scan record carries, in the order
// they stand in it.
inline constexpr int kRegistryReportCount = 12;
inline constexpr int kRegistryReportOrder[kRegistryReportCount] = {0, 1, 2, 3, 5, 6, 7, 8, 10, 11, 14, 13};

// The switch name of a category, or empty for the three without a switch.
constexpr std::string_view RegistryCategoryName(int category) {
  for (const auto& spec : kRegistrySwitches) {
    if (spec.category == category) return spec.name;
  }
  return {};
}

// The names of the counts of the registry scan record, in the order sent.
inline constexpr auto kRegistryReportNames = [] {
  std::array<std::string_view, kRegistryReportCount> names{};
  for (int i = 0; i < kRegistryReportCount; ++i) names[i] = RegistryCategoryName(kRegistryReportOrder[i]);
  return names;
}();

}  // namespace scourel::protocol

namespace scourel::protocol {

// One field of each table, in table order: what overseer offers as options
// and writes as settings keys.
template <typename Spec, std::size_t N, typename Field>
constexpr auto Column(const Spec (&specs)[N], Field Spec::*field) {
  std::array<Field, N> column{};
  for (std::size_t i = 0; i < N; ++i) column[i] = specs[i].*field;
  return column;
}

inline constexpr auto kBrowserCategoryNames = Column(kBrowserCategories, &BrowserCategorySpec::name);
inline constexpr auto kBrowserCategoryKeys = Column(kBrowserCategories, &BrowserCategorySpec::keySuffix);
inline constexpr auto kRegistrySwitchNames = Column(kRegistrySwitches, &RegistrySwitchSpec::name);
inline constexpr auto kRegistrySwitchKeys = Column(kRegistrySwitches, &RegistrySwitchSpec::keySuffix);

template <typename Field>
constexpr auto PcSwitchColumn(Field PcStepSpec::*field) {
  std::array<Field, kPcSwitchCount> column{};
  for (std::size_t i = 0; i < kPcSwitchCount; ++i) column[i] = PcSwitches()[i]->*field;
  return column;
}
inline constexpr auto kPcSwitchNames = PcSwitchColumn(&PcStepSpec::name);
inline constexpr auto kPcSwitchKeys = PcSwitchColumn(&PcStepSpec::keySuffix);

}  // namespace scourel::protocol
