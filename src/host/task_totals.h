// The process-wide totals every scan and clean adds to, and the size text the
// replies make of byte totals. Counters are 32-bit signed and byte totals
// single-precision floats: both limits show in what the controller receives.
#pragma once

#include <cstdint>
#include <string>

#include "common/relaxed.h"
#include "host/protocol.h"

namespace scourel {

struct TaskTotals {
  Relaxed<float> byteTotal;
  // Documents, run history, find files, clipboard, network, scan-disk files,
  // registry traces.
  Relaxed<std::int32_t> pcTraces[protocol::kPcTracesCounterCount];
  Relaxed<std::int32_t> junkFirst;   // temporary files
  Relaxed<std::int32_t> junkSecond;  // dumps, logs, error reports, dead shortcuts
  Relaxed<std::int32_t> recycleBinItems;
  Relaxed<float> recycleBinBytes;  // the full scan's measurement only
  Relaxed<std::int32_t> pluginItems;
  Relaxed<float> pluginBytes;
  // In the order of the registry switches: current user, COM, fonts,
  // associations, types, paths, DLLs, empty keys, sounds, help, software, deep scan.
  Relaxed<std::int32_t> registry[protocol::kRegistryCategoryCount];
  // In the order of the browser switches.
  Relaxed<std::int32_t> browserCounts[protocol::kBrowserCategoryCount];
  Relaxed<float> browserBytes[protocol::kBrowserCategoryCount];
};

extern TaskTotals g_totals;

enum PcTracesStep : int {
  kPcDocuments = 0,
  kPcRunHistory,
  kPcFindFiles,
  kPcClipboard,
  kPcNetwork,
  kPcScanDiskFiles,
  kPcRegistry,
};

// The junk-file scan's reset: byte total, the seven PC-traces counters, both
// junk-file counters and the Recycle Bin item counter, all at once.
void ResetForJunkFileScan();

// File sizes reach the float totals as unsigned 64-bit values converted to float.
inline void AddBytes(Relaxed<float>& total, std::uint64_t size) {
  total.add(static_cast<float>(size));
}

// "%.2f KB" below 1048576 bytes, "%.2f MB" below 1073741824, else "%.2f GB".
std::wstring SizeText(float bytes);
// The same with "%7.2f", for the full scan's PC-traces record.
std::wstring PaddedSizeText(float bytes);

// The lParam of a numeric reply: the float's value truncated toward zero.
std::int64_t ReplyBytes(float bytes);

}  // namespace scourel
