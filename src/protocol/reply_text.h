// The texts of the worker's copy-data replies. Pure functions of the totals,
// so they test without windows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "protocol/categories.h"
#include "protocol/messages.h"

namespace scourel {

using PcCounters = std::array<std::int32_t, protocol::kPcStepCount>;

std::wstring JunkScanText(std::int32_t first, float bytes, std::int32_t second);   // 101
std::wstring ShortcutScanText(std::int32_t count, float bytes);                    // 102
std::wstring RecycleBinScanText(std::int32_t count, float bytes);                  // 103
// 104: the counters with three padded sizes: after documents, network and
// scan-disk files, the three steps that find files.
std::wstring PcTracesScanText(const PcCounters& counters, float documentBytes, float networkBytes,
                              float scanDiskBytes);
// 105, 305, 306: ten "count\issize\is" groups joined by spaces.
std::wstring BrowserText(const std::array<std::int32_t, protocol::kBrowserCategoryCount>& counts,
                         const std::array<float, protocol::kBrowserCategoryCount>& bytes);
std::wstring PluginScanText(std::int32_t count, float bytes);                      // 106
std::wstring RegistryScanText(const std::array<std::int32_t, protocol::kRegistryReportCount>& counts);  // 107
std::wstring ExtensionScanText(std::int32_t count);                                // 108
std::wstring PcTracesDoneText(const PcCounters& counters);                         // 303
std::wstring PcTracesStoppedText(const PcCounters& counters);                      // 304

// 307: what a free-space wipe did, its fields joined by "\fw".
struct FreeSpaceReport {
  std::wstring status;          // done, full, no drive, cannot write
  std::uint64_t bytesFilled = 0;
  std::uint32_t fillFiles = 0;
  std::uint32_t folderFiles = 0;  // small files the record step made
  bool recordStep = false;        // false where the file system is not NTFS
  bool trimIssued = false;
  std::wstring solidState;        // yes, no, unknown
  std::wstring fileSystem;        // as the volume names it; empty when unknown
  std::uint32_t indexFolders = 0;  // folders whose index took fill entries over its deleted names
};
std::wstring FreeSpaceDoneText(const FreeSpaceReport& report);

// The bytes that travel in a copy-data record: a buffer of twice cbData bytes
// whose first cbData bytes hold the text, cut to fit and zero-padded.
std::vector<std::uint8_t> CopyDataBuffer(const std::wstring& text, std::uint32_t cbData);

}  // namespace scourel
