// The caches scan over a generated cache of 50,000 files in 2,000 folders,
// against two floors measured in the same run on the same tree: a bare
// FindFirstFileW/FindNextFileW walk, and the same walk with the one
// share-read open and close per file that deciding whether to take a file
// needs. The tree is planted twice, one place at a time: as Internet
// Explorer's cache (one visit), and as Chrome's default profile cache, which
// the scan also lists a second time when it looks for journal files in the
// whole profile.
//
//   wine-run bench_browser_scan.exe [--rounds N]
//
// Everything goes below the sandbox profile's local application data and is
// removed afterwards; it refuses to run when a browser folder is there already.
#include <chrono>
#include <cstdio>
#include <cwchar>
#include <functional>
#include <string>

#include "cache_tree.h"
#include "browsers/browser_traces.h"
#include "common/known_folders.h"
#include "common/unique_handle.h"

using namespace scourel;

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kFolders = 2000;

double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

// Depth-first over `folder` (ending in a backslash); `file` for every file.
void Walk(const std::wstring& folder, const std::function<void(const std::wstring&)>& file) {
  WIN32_FIND_DATAW entry;
  const UniqueFindHandle find(::FindFirstFileW((folder + L"*.*").c_str(), &entry));
  if (!find) return;
  do {
    const std::wstring name = entry.cFileName;
    if (name == L"." || name == L"..") continue;
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
      Walk(folder + name + L"\\", file);
    } else {
      file(folder + name);
    }
  } while (::FindNextFileW(find.get(), &entry));
}

struct Timings {
  double bare = 1e9, opened = 1e9, scan = 1e9;
  std::int32_t scanned = 0;
};

Timings Measure(const std::wstring& root, int rounds) {
  Timings best;
  TaskTotals totals;
  const TaskContext context{totals, SystemCleanerIo(), nullptr, 0, Mode::kMeasure, nullptr, L"", L""};
  for (int round = 0; round < rounds; ++round) {
    int files = 0;
    auto start = Clock::now();
    Walk(root + L"\\", [&](const std::wstring&) { ++files; });
    best.bare = std::min(best.bare, Seconds(start));

    start = Clock::now();
    Walk(root + L"\\", [&](const std::wstring& path) {
      UniqueHandleKernel probe(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                             FILE_ATTRIBUTE_NORMAL, nullptr));
      files += probe.valid();
    });
    best.opened = std::min(best.opened, Seconds(start));

    totals.browser.Reset();
    start = Clock::now();
    ScanBrowserTraces(context);
    best.scan = std::min(best.scan, Seconds(start));
    best.scanned = totals.browser.CategoryCount(protocol::BrowserCategory::kCache);
  }
  return best;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  wchar_t sandbox[8];
  if (::GetEnvironmentVariableW(L"SCOUREL_SANDBOX", sandbox, 8) == 0) {
    std::fprintf(stderr, "bench_browser_scan: run it through the build's wine-run\n");
    return 2;
  }
  const int rounds = argc > 2 && std::wcscmp(argv[1], L"--rounds") == 0 ? std::max(1, _wtoi(argv[2])) : 3;
  const std::wstring local = ShellFolderPath(CSIDL_LOCAL_APPDATA);
  const std::wstring places[] = {local + L"\\Microsoft\\Windows\\Temporary Internet Files",
                                 local + L"\\Google\\Chrome\\User Data\\Default\\Cache"};
  for (const wchar_t* owned : {L"\\Microsoft\\Windows\\Temporary Internet Files", L"\\Google"}) {
    if (::GetFileAttributesW((local + owned).c_str()) != INVALID_FILE_ATTRIBUTES) {
      std::fprintf(stderr, "bench_browser_scan: %ls exists already; remove it first\n", (local + owned).c_str());
      return 1;
    }
  }
  // Where a step for a missing Chrome profile would look: a drive of the sandbox.
  ::SetCurrentDirectoryW(L"C:\\");

  std::printf("%d files in %d folders, best of %d rounds\n", kFolders * kFilesPerFolder, kFolders, rounds);
  std::printf("%-34s %9s %9s %9s %10s %10s %8s\n", "tree planted as", "bare s", "open s", "scan s", "scan/bare",
              "scan/open", "counted");
  const char* names[] = {"Internet Explorer cache", "Chrome default profile cache"};
  for (int i = 0; i < 2; ++i) {
    PlantCacheTree(places[i], 0, kFolders);
    const Timings t = Measure(places[i], rounds);
    std::printf("%-34s %9.3f %9.3f %9.3f %10.2f %10.2f %8d\n", names[i], t.bare, t.opened, t.scan, t.scan / t.bare,
                t.scan / t.opened, t.scanned);
    RemoveAll(i == 0 ? places[0] : local + L"\\Google");
  }
  return 0;
}
