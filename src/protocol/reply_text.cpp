#include "protocol/reply_text.h"

#include <cstdarg>
#include <cstring>
#include <cwchar>

#include "protocol/size_text.h"

namespace scourel {

namespace {

// Wide formatting. The texts are written with %ls for strings so that they
// mean the same under every C runtime.
std::wstring Format(const wchar_t* format, ...) {
  wchar_t buffer[4200];
  va_list args;
  va_start(args, format);
  const int n = std::vswprintf(buffer, sizeof buffer / sizeof buffer[0], format, args);
  va_end(args);
  return n < 0 ? std::wstring() : std::wstring(buffer, static_cast<size_t>(n));
}

using protocol::kSepPcTraces;

}  // namespace

std::wstring JunkScanText(std::int32_t first, float bytes, std::int32_t second) {
  return Format(L"%ld%ls%ls%ls%ld", static_cast<long>(first), protocol::kSepJunk, SizeText(bytes).c_str(),
                protocol::kSepJunk, static_cast<long>(second));
}

std::wstring ShortcutScanText(std::int32_t count, float bytes) {
  return Format(L"%ld%ls%ls", static_cast<long>(count), protocol::kSepShortcuts, SizeText(bytes).c_str());
}

std::wstring RecycleBinScanText(std::int32_t count, float bytes) {
  return Format(L"%ld%ls%ls", static_cast<long>(count), protocol::kSepRecycleBin, SizeText(bytes).c_str());
}

std::wstring PcTracesScanText(const PcCounters& c, float documentBytes, float networkBytes,
                              float scanDiskBytes) {
  return Format(L"%ld%ls%ls%ls %ld%ls %ld%ls %ld%ls %ld%ls%ls%ls %ld%ls%ls%ls %ld", static_cast<long>(c[0]),
                kSepPcTraces, PaddedSizeText(documentBytes).c_str(), kSepPcTraces, static_cast<long>(c[1]),
                kSepPcTraces, static_cast<long>(c[2]), kSepPcTraces, static_cast<long>(c[3]), kSepPcTraces,
                static_cast<long>(c[4]), kSepPcTraces, PaddedSizeText(networkBytes).c_str(), kSepPcTraces,
                static_cast<long>(c[5]), kSepPcTraces, PaddedSizeText(scanDiskBytes).c_str(), kSepPcTraces,
                static_cast<long>(c[6]));
}

std::wstring BrowserText(const std::array<std::int32_t, protocol::kBrowserCategoryCount>& counts,
                         const std::array<float, protocol::kBrowserCategoryCount>& bytes) {
  std::wstring text;
  for (int i = 0; i < protocol::kBrowserCategoryCount; ++i) {
    if (i) text += L' ';
    text += Format(L"%d%ls%ls%ls", counts[i], protocol::kSepBrowser, SizeText(bytes[i]).c_str(),
                   protocol::kSepBrowser);
  }
  return text;
}

std::wstring PluginScanText(std::int32_t count, float bytes) {
  return Format(L"%d%ls%ls", count, protocol::kSepPlugins, SizeText(bytes).c_str());
}

std::wstring RegistryScanText(const std::array<std::int32_t, protocol::kRegistryReportCount>& counts) {
  std::wstring text;
  for (int i = 0; i < protocol::kRegistryReportCount; ++i) {
    if (i) text += L' ';
    text += Format(L"%d%ls", counts[i], protocol::kSepRegistry);
  }
  return text;
}

std::wstring ExtensionScanText(std::int32_t count) { return Format(L"%d", count); }

std::wstring FreeSpaceDoneText(const FreeSpaceReport& r) {
  const wchar_t* sep = protocol::kSepFreeSpace;
  return Format(L"%ls%ls%llu%ls%lu%ls%lu%ls%ls%ls%ls%ls%ls%ls%ls%ls%lu", r.status.c_str(), sep,
                static_cast<unsigned long long>(r.bytesFilled), sep, static_cast<unsigned long>(r.fillFiles), sep,
                static_cast<unsigned long>(r.folderFiles), sep, r.recordStep ? L"done" : L"skipped", sep,
                r.trimIssued ? L"issued" : L"not issued", sep, r.solidState.c_str(), sep, r.fileSystem.c_str(), sep,
                static_cast<unsigned long>(r.indexFolders));
}

std::wstring PcTracesDoneText(const PcCounters& c) {
  return Format(L"%d%ls %d%ls %d%ls %d%ls %d%ls %d%ls %d", c[0], kSepPcTraces, c[1], kSepPcTraces, c[2],
                kSepPcTraces, c[3], kSepPcTraces, c[4], kSepPcTraces, c[5], kSepPcTraces, c[6]);
}

std::wstring PcTracesStoppedText(const PcCounters& c) {
  // The stop reply uses the full scan's PC-traces layout over the completion's
  // arguments: seven counters and six separators, where that layout expects
  // a size after the fifth counter. Only the text up to the fifth counter and
  // its separator is meaningful, and that is all the controller reads. Past
  // it, the sixth counter lands in a size slot (shown as a size of 0.000000),
  // the seventh follows, and the slots with no argument are left empty.
  return Format(L"%ld%ls %ld%ls %ld%ls %ld%ls %ld%ls%ls%ls %ld%ls%ls%ls %ld", static_cast<long>(c[0]),
                kSepPcTraces, static_cast<long>(c[1]), kSepPcTraces, static_cast<long>(c[2]), kSepPcTraces,
                static_cast<long>(c[3]), kSepPcTraces, static_cast<long>(c[4]), kSepPcTraces, L"0.000000",
                kSepPcTraces, static_cast<long>(c[6]), L"", L"0.000000", L"", 0L);
}

std::vector<std::uint8_t> CopyDataBuffer(const std::wstring& text, std::uint32_t cbData) {
  std::vector<std::uint8_t> buffer(static_cast<size_t>(cbData) * 2, 0);
  const size_t bytes = std::min<size_t>(text.size() * sizeof(wchar_t), cbData);
  std::memcpy(buffer.data(), text.data(), bytes);
  return buffer;
}

}  // namespace scourel
