// The window-message link between the worker and its controller: window
// classes, progress ids, copy-data kinds, their record sizes and separators.
// Shared by scourel.exe and overseer.exe so the two sides cannot drift apart.
#pragma once

#include <cstdint>

namespace scourel::protocol {

inline constexpr wchar_t kWorkerClass[] = L"SCOUREL_CLASS";
inline constexpr wchar_t kControllerClass[] = L"OVERSEER_CLASS";
inline constexpr wchar_t kWorkerWindowTitle[] = L"the window";

// Command and reply ids of the tasks are in tasks.h. Posted by the first
// command set while its task runs: the number of the step just done.
inline constexpr unsigned kPcTracesProgress = 2082;
inline constexpr unsigned kBrowserProgress = 2083;

// Sent by the shredder to the worker's own window while a wipe reports progress.
inline constexpr unsigned kWipeProgress = 1036;

// Posted by the free-space wipe: wParam the percentage filled, lParam the
// bytes filled so far.
inline constexpr unsigned kFreeSpaceProgress = 2091;

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
  kFreeSpaceDone = 307,
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
inline constexpr wchar_t kSepFreeSpace[] = L"\\fw";
inline constexpr wchar_t kScanCompletedText[] = L"Scanning Completed";


}  // namespace scourel::protocol
