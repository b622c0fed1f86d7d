// overseer's preview against the worker's scan of the same tree, in the same
// run: a generated Internet Explorer cache of 50,000 files in 2,000 folders,
// measured by the cache category's scan (the system's io) and previewed (the
// erasing form through the recording io). Then the tree grows to 100,000
// files and the preview's memory is read while it holds every item.
//
//   wine-run bench_preview.exe [--rounds N]
//
// Everything goes below the sandbox profile's local application data and is
// removed afterwards; it refuses to run when the cache folder is there already.
#include <chrono>
#include <cstdio>
#include <cwchar>
#include <string>
#include <utility>

#include "common/win.h"

#include <psapi.h>

#include "cache_tree.h"
#include "browsers/browser_traces.h"
#include "common/known_folders.h"
#include "common/unique_handle.h"
#include "overseer/preview.h"
#include "protocol/tasks.h"

using namespace scourel;

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

overseer::Options CachePreview() {
  overseer::Options options;
  options.verb = overseer::Verb::kPreview;
  options.task = &protocol::SpecOf(protocol::Task::kBrowser);
  options.browser = std::vector<bool>(protocol::kBrowserCategoryCount, false);
  (*options.browser)[static_cast<int>(protocol::BrowserCategory::kCache)] = true;
  return options;
}

// Private memory now, and its highest mark so far, in MiB.
std::pair<double, double> PrivateMiB() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  counters.cb = sizeof counters;
  ::K32GetProcessMemoryInfo(::GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                            sizeof counters);
  constexpr double kMiB = 1024.0 * 1024.0;
  return {static_cast<double>(counters.PrivateUsage) / kMiB, static_cast<double>(counters.PeakPagefileUsage) / kMiB};
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  wchar_t sandbox[8];
  if (::GetEnvironmentVariableW(L"SCOUREL_SANDBOX", sandbox, 8) == 0) {
    std::fprintf(stderr, "bench_preview: run it through the build's wine-run\n");
    return 2;
  }
  const int rounds = argc > 2 && std::wcscmp(argv[1], L"--rounds") == 0 ? std::max(1, _wtoi(argv[2])) : 3;
  const std::wstring local = ShellFolderPath(CSIDL_LOCAL_APPDATA);
  const std::wstring cache = local + L"\\Microsoft\\Windows\\Temporary Internet Files";
  if (::GetFileAttributesW(cache.c_str()) != INVALID_FILE_ATTRIBUTES) {
    std::fprintf(stderr, "bench_preview: %ls exists already; remove it first\n", cache.c_str());
    return 1;
  }
  // No settings file there: the switches come from the options alone.
  const std::wstring worker = L"C:\\scourel-bench-preview\\bin\\scourel.exe";
  const overseer::Options options = CachePreview();

  PlantCacheTree(cache, 0, 2000);
  double scan = 1e9, preview = 1e9;
  std::int32_t scanned = 0;
  std::size_t listed = 0;
  for (int round = 0; round < rounds; ++round) {
    TaskTotals totals;
    const TaskContext context{totals, SystemCleanerIo(), nullptr, 0, Mode::kMeasure, nullptr, L"", L""};
    auto start = Clock::now();
    BrowserCategoryStep(context, protocol::BrowserCategory::kCache);
    const double scanTime = Seconds(start);
    scan = std::min(scan, scanTime);
    scanned = totals.browser.CategoryCount(protocol::BrowserCategory::kCache);

    start = Clock::now();
    const overseer::Preview result = overseer::RunPreview(options, worker, nullptr);
    const double previewTime = Seconds(start);
    preview = std::min(preview, previewTime);
    listed = result.changes.size();
    // Side by side, so that a round slowed by other work shows in both.
    std::printf("round %d: scan %.3f s, preview %.3f s, %.2f\n", round + 1, scanTime, previewTime,
                previewTime / scanTime);
  }
  std::printf("%d files in 2000 folders, best of %d rounds\n", 2000 * kFilesPerFolder, rounds);
  std::printf("scan %.3f s (%d counted), preview %.3f s (%zu items), preview/scan %.2f (target <= 1.20)\n", scan,
              scanned, preview, listed, preview / scan);

  PlantCacheTree(cache, 2000, 4000);
  const double before = PrivateMiB().first;
  {
    const overseer::Preview result = overseer::RunPreview(options, worker, nullptr);
    const auto [held, peak] = PrivateMiB();
    std::printf("%zu items listed: private memory %.1f MiB more at its peak, %.1f MiB more while the list is held "
                "(target < 100)\n",
                result.changes.size(), peak - before, held - before);
  }
  RemoveAll(cache);
  return 0;
}
