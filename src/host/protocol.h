// The window-message link between the worker and its controller: command ids,
// reply ids, copy-data kinds and their record sizes. Shared by scourel.exe and
// overseer.exe so the two sides cannot drift apart.
#pragma once

#include <cstdint>

namespace scourel::protocol {

inline constexpr wchar_t kWorkerClass[] = L"SCOUREL_CLASS";
inline constexpr wchar_t kControllerClass[] = L"OVERSEER_CLASS";
inline constexpr wchar_t kWorkerWindowTitle[] = L"the window";

// Commands, controller to worker. The second set is the first plus 24.
enum Command : unsigned {
  kJunkFilesStart = 2034,
  kJunkFilesStop = 2036,
  kRegistryFixStart = 2037,
  kIgnored = 2039,
  kShortcutsStart = 2040,
  kShortcutsStop = 2042,
  kExtensionFix = 2043,
  kBrowserStart = 2046,
  kBrowserStop = 2048,
  kPcTracesStart = 2049,
  kPcTracesStop = 2051,
  kRecycleBinStart = 2052,
  kRecycleBinStop = 2054,
  kPluginCleanStart = 2055,
  kPluginCleanStop = 2057,

  kJunkFilesStart2 = 2058,
  kJunkFilesStop2 = 2060,
  kRegistryFixStart2 = 2061,
  kRegistryFixStop = 2063,
  kShortcutsStart2 = 2064,
  kShortcutsStop2 = 2066,
  kExtensionFix2 = 2067,
  kBrowserStart2 = 2070,
  kBrowserStop2 = 2072,
  kPcTracesStart2 = 2073,
  kPcTracesStop2 = 2075,
  kRecycleBinStart2 = 2076,
  kRecycleBinStop2 = 2078,
  kPluginCleanStart2 = 2079,
  kPluginCleanStop2 = 2081,

  kFullScanStart = 2087,
  kFullScanStop = 2088,
};

inline constexpr unsigned kSecondSetOffset = 24;

// Replies, worker to controller.
enum Reply : unsigned {
  kJunkFilesDone = 2035,
  kRegistryFixDone = 2038,
  kShortcutsDone = 2041,
  kExtensionFixDone = 2044,
  kPluginCleanDone = 2056,
  kRecycleBinDone = 2053,

  kJunkFilesDone2 = 2059,
  kRegistryFixDone2 = 2062,
  kShortcutsDone2 = 2065,
  kExtensionFixDone2 = 2068,
  kBrowserDone2 = 2071,
  kPcTracesDone2 = 2074,
  kRecycleBinDone2 = 2077,
  kPluginCleanDone2 = 2080,

  kPcTracesProgress = 2082,
  kBrowserProgress = 2083,
};

// Sent by the shredder to the worker's own window while a wipe reports progress.
inline constexpr unsigned kWipeProgress = 1036;

// WM_COPYDATA kinds (COPYDATASTRUCT::dwData).
enum CopyDataKind : unsigned {
  kScanJunkFiles = 101,
  kScanShortcuts = 102,
  kScanRecycleBin = 103,
  kScanPcTraces = 104,
  kScanBrowser = 105,
  kScanPlugins = 106,
  kScanRegistry = 107,
  kScanExtensions = 108,
  kScanRegistryDone = 109,
  kPcTracesDone = 303,
  kPcTracesStopped = 304,
  kBrowserDone = 305,
  kBrowserStopped = 306,
};

inline constexpr std::uint32_t kShortRecordBytes = 522;   // 261 wide characters
inline constexpr std::uint32_t kLongRecordBytes = 4098;   // 2049 wide characters

constexpr std::uint32_t RecordBytes(unsigned kind) {
  switch (kind) {
    case kScanJunkFiles:
    case kScanShortcuts:
    case kScanRecycleBin:
    case kScanPcTraces:
    case kScanExtensions:
    case kPcTracesDone:
    case kPcTracesStopped:
      return kShortRecordBytes;
    default:
      return kLongRecordBytes;
  }
}

// Separators the worker puts between fields of its copy-data texts.
inline constexpr wchar_t kSepJunk[] = L"\\j";
inline constexpr wchar_t kSepShortcuts[] = L"\\s";
inline constexpr wchar_t kSepRecycleBin[] = L"\\r";
inline constexpr wchar_t kSepPcTraces[] = L"\\pc";
inline constexpr wchar_t kSepBrowser[] = L"\\is";
inline constexpr wchar_t kSepPlugins[] = L"\\pss";
inline constexpr wchar_t kSepRegistry[] = L"\\cv";
inline constexpr wchar_t kScanCompletedText[] = L"Scanning Completed";

inline constexpr int kPcTracesCounterCount = 7;
inline constexpr int kBrowserCategoryCount = 10;
inline constexpr int kRegistryCategoryCount = 12;

}  // namespace scourel::protocol
