// The registry scan's main pass against a bare RegEnumKeyExW/RegEnumValueW
// walk of the same keys, in the same run: on the sandbox's registry as it
// is, then with 20,000 extra CLSIDs (half of them naming a missing library,
// so that the COM category fills its 10000 rows). Also the share of the file
// existence tests, and the worker's private bytes before and after a full
// scan that fills those rows.
//
//   wine-run bench_registry_scan.exe
//
// The extra CLSIDs are removed again when the bench ends.
#include "registry_cleaner/registry_scan.h"

#include <psapi.h>  // after the Windows headers it builds on

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "common/hidden_window.h"
#include "common/unique_handle.h"
#include "protocol/messages.h"
#include "registry_cleaner/file_reference.h"
#include "registry_cleaner/registry_issues.h"
#include "task/task_context.h"

using namespace scourel;

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kExtraClasses = 20000;
const wchar_t kExtraPrefix[] = L"CLSID\\{5C0EBE00-0000-4000-8000-";

double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

double Median(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

// --- The bare walk: the keys the main pass reads, read as plainly as can be.

struct BareWalk {
  long keys = 0;
  long values = 0;
  std::vector<std::wstring> driveTexts;  // value texts holding ":\", the candidates for file tests
  std::vector<wchar_t> name = std::vector<wchar_t>(16384);
  std::vector<BYTE> data = std::vector<BYTE>(1 << 20);

  // depth: how many levels of subkeys below are read too (-1: all);
  // keepTexts: collect the values' drive references; values: read the values.
  void Walk(HKEY key, int depth, bool keepTexts, bool readValues = true) {
    ++keys;
    DWORD subkeys = 0, valueCount = 0;
    if (::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &valueCount, nullptr, nullptr,
                           nullptr, nullptr) != ERROR_SUCCESS) {
      return;
    }
    for (DWORD i = 0; readValues && i < valueCount; ++i) {
      DWORD nameLength = static_cast<DWORD>(name.size()), dataLength = static_cast<DWORD>(data.size()), type = 0;
      if (::RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type, data.data(), &dataLength) != 0) continue;
      ++values;
      if (keepTexts && type == REG_SZ) {
        const std::wstring text(reinterpret_cast<const wchar_t*>(data.data()), dataLength / sizeof(wchar_t));
        if (text.find(L":\\") != std::wstring::npos) driveTexts.push_back(text.c_str());
      }
    }
    if (depth == 0) return;
    for (DWORD i = 0; i < subkeys; ++i) {
      DWORD nameLength = static_cast<DWORD>(name.size());
      if (::RegEnumKeyExW(key, i, name.data(), &nameLength, nullptr, nullptr, nullptr, nullptr) != 0) continue;
      UniqueRegKey child;
      if (::RegOpenKeyExW(key, name.data(), 0, KEY_READ, child.put()) == 0) {
        Walk(child.get(), depth - 1, keepTexts, readValues);
      }
    }
  }

  void Walk(HKEY root, const wchar_t* path, int depth, bool keepTexts = false, bool readValues = true) {
    UniqueRegKey key;
    if (::RegOpenKeyExW(root, path, 0, KEY_READ, key.put()) == 0) Walk(key.get(), depth, keepTexts, readValues);
  }

  // Each class root entry's own values, and for the others their CLSID and shell verbs.
  void WalkClassesRoot() {
    for (DWORD i = 0;; ++i) {
      wchar_t entry[256];
      DWORD length = 256;
      if (::RegEnumKeyExW(HKEY_CLASSES_ROOT, i, entry, &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
      Walk(HKEY_CLASSES_ROOT, entry, 0);
      if (entry[0] == L'.') continue;
      Walk(HKEY_CLASSES_ROOT, (std::wstring(entry) + L"\\CLSID").c_str(), 0);
      Walk(HKEY_CLASSES_ROOT, (std::wstring(entry) + L"\\shell").c_str(), 2);
    }
  }

  void MainPassKeys() {
    const HKEY cr = HKEY_CLASSES_ROOT, cu = HKEY_CURRENT_USER, lm = HKEY_LOCAL_MACHINE;
    for (const wchar_t* com : {L"CLSID", L"TypeLib", L"Interface", L"Wow6432Node\\CLSID", L"Wow6432Node\\TypeLib",
                               L"Wow6432Node\\Interface"}) {
      Walk(cr, com, -1, true);
      Walk(cr, com, 1, false, false);  // the empty-key scan counts each entry's contents again
    }
    const wchar_t* version = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";
    const struct {
      HKEY root;
      std::wstring path;
      int depth;
    } others[] = {
        {lm, std::wstring(version) + L"App Paths", 1},
        {cu, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Compatibility Assistant\\Store", 0},
        {cu, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Compatibility Assistant\\Persisted", 0},
        {lm, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Layers", 0},
        {cu, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Layers", 0},
        {cu, L"Software\\Classes", 1},
        {cu, L"AppEvents\\Schemes\\Apps", 2},
        {cr, L"FileType", 0},
        {lm, std::wstring(version) + L"Fonts", 0},
        {lm, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Fonts", 0},
        {lm, L"SOFTWARE\\Microsoft\\Windows\\Help", 0},
        {lm, L"SOFTWARE\\Microsoft\\Windows\\HTML Help", 0},
        {lm, L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\Help", 0},
        {lm, L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\HTML Help", 0},
        {lm, L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs", 0},
        {lm, std::wstring(version) + L"SharedDLLs", 0},
        {lm, std::wstring(version) + L"Shell Extensions\\Approved", 0},
        {lm, std::wstring(version) + L"Uninstall", 1},
        {lm, std::wstring(version) + L"Installer\\Folders", 0},
        {cr, L"Installer\\Patches", 0},
        {cr, L"Installer\\Products", 0},
        {cu, L"AppEvents\\EventLabels", 1},
        {cu, L"Software", 1},
        {cu, L"Software\\Classes\\Local Settings\\Software\\Microsoft\\Windows\\Shell\\MuiCache", 0},
    };
    for (const auto& key : others) Walk(key.root, key.path.c_str(), key.depth);
    WalkClassesRoot();
    WalkClassesRoot();  // associations and ProgIDs are two scans over the same entries
  }
};

void ReportPass(const char* label) {
  const TaskContext context{g_totals, SystemCleanerIo(), nullptr, 0, Mode::kMeasure, nullptr, L"", L""};
  // Scan and walk take turns, so that a change in the machine's load falls on both.
  constexpr int kRounds = 5;
  std::vector<double> scans, walks;
  BareWalk walk;
  const std::int32_t examinedBefore = g_registry.examined.get();
  for (int round = 0; round < kRounds; ++round) {
    auto start = Clock::now();
    RunRegistryScan(context);
    scans.push_back(Seconds(start));
    start = Clock::now();
    walk = BareWalk();
    walk.MainPassKeys();
    walks.push_back(Seconds(start));
  }
  const std::int32_t examined = (g_registry.examined.get() - examinedBefore) / kRounds;
  const double scan = Median(scans), bare = Median(walks);
  std::int32_t rows = 0;
  for (int category = 0; category < kRegistryCategoryTotal; ++category) rows += g_registry.found.Count(category);
  const auto start = Clock::now();
  int invalid = 0;
  for (const std::wstring& text : walk.driveTexts) invalid += IsFileReferenceValid(text) ? 0 : 1;
  const double tests = Seconds(start);
  std::printf(
      "%-28s scan %7.3f s, %6d values examined, %5d rows | bare walk %7.3f s, %6ld keys, %6ld values"
      " | ratio %.2f\n",
      label, scan, examined, rows, bare, walk.keys, walk.values, scan / bare);
  std::printf("%-28s file tests: %zu drive references (%d missing) in %.3f s, %.0f%% of the scan\n", "",
              walk.driveTexts.size(), invalid, tests, 100.0 * tests / scan);
}

// --- The extra classes, removed again whatever happens after seeding.

class ExtraClasses {
 public:
  ExtraClasses() {
    for (int i = 0; i < kExtraClasses; ++i) {
      wchar_t path[128];
      std::swprintf(path, 128, L"%ls%012X}\\InprocServer32", kExtraPrefix, i);
      const wchar_t* server = i % 2 ? L"C:\\windows\\system32\\ole32.dll" : L"C:\\scourel-bench\\missing\\x.dll";
      ::RegSetKeyValueW(HKEY_CLASSES_ROOT, path, nullptr, REG_SZ, server,
                        static_cast<DWORD>((std::wcslen(server) + 1) * sizeof(wchar_t)));
      ::RegSetKeyValueW(HKEY_CLASSES_ROOT, path, L"ThreadingModel", REG_SZ, L"Both", 10);
    }
  }
  ~ExtraClasses() {
    for (int i = 0; i < kExtraClasses; ++i) {
      wchar_t path[128];
      std::swprintf(path, 128, L"%ls%012X}", kExtraPrefix, i);
      ::RegDeleteTreeW(HKEY_CLASSES_ROOT, path);
      ::RegDeleteKeyW(HKEY_CLASSES_ROOT, path);
    }
  }
};

// --- The worker's private bytes around a full scan.

// The commit charge: Windows gives the same figure as PrivateUsage, which
// Wine leaves at zero.
std::size_t PrivateBytes(HANDLE process) {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  counters.cb = sizeof counters;
  ::GetProcessMemoryInfo(process, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
  return counters.PrivateUsage ? counters.PrivateUsage : counters.PagefileUsage;
}

// Pumps messages until the copy-data of that kind arrives or the time is up.
bool AwaitCopyData(unsigned kind, const unsigned& lastKind, DWORD timeoutMs) {
  const auto start = Clock::now();
  while (lastKind != kind && Seconds(start) * 1000 < timeoutMs) {
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
    for (MSG message; ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) ::DispatchMessageW(&message);
  }
  return lastKind == kind;
}

void ReportWorkerMemory(const char* label) {
  unsigned lastKind = 0;
  HiddenWindow controller;
  WindowSpec spec;
  spec.className = protocol::kControllerClass;
  if (controller.Register(spec) ||
      controller.Create([&](HWND, UINT message, WPARAM, LPARAM lParam) -> std::optional<LRESULT> {
        if (message != WM_COPYDATA) return std::nullopt;
        lastKind = static_cast<unsigned>(reinterpret_cast<const COPYDATASTRUCT*>(lParam)->dwData);
        return 1;
      })) {
    std::printf("worker memory: no controller window\n");
    return;
  }
  wchar_t exe[MAX_PATH] = {};
  ::GetModuleFileNameW(nullptr, exe, MAX_PATH);
  std::wstring line = L"\"" + std::wstring(exe, std::wcsrchr(exe, L'\\') + 1) + L"scourel.exe\"";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
    std::printf("worker memory: cannot start scourel.exe\n");
    return;
  }
  UniqueHandleKernel process(info.hProcess), thread(info.hThread);
  HWND worker = nullptr;
  for (int i = 0; i < 1000 && !worker; ++i, ::Sleep(10)) worker = ::FindWindowW(protocol::kWorkerClass, nullptr);
  const std::size_t before = PrivateBytes(process.get());
  ::PostMessageW(worker, 2087, 0, 0);
  const bool scanned = AwaitCopyData(protocol::kScanRegistryDone, lastKind, 600000);
  const std::size_t after = PrivateBytes(process.get());
  AwaitCopyData(protocol::kScanPlugins, lastKind, 600000);
  ::PostMessageW(worker, WM_CLOSE, 0, 0);
  if (::WaitForSingleObject(process.get(), 10000) != WAIT_OBJECT_0) ::TerminateProcess(process.get(), 1);
  std::printf(
      "%-28s worker private bytes %.1f MiB before the full scan, %.1f MiB after its registry part%s"
      " (+%.1f MiB)\n",
      label, before / 1048576.0, after / 1048576.0, scanned ? "" : " (timed out)",
      (static_cast<double>(after) - static_cast<double>(before)) / 1048576.0);
}

}  // namespace

int wmain() {
  wchar_t sandbox[8];
  if (::GetEnvironmentVariableW(L"SCOUREL_SANDBOX", sandbox, 8) == 0) {
    std::fprintf(stderr, "bench_registry_scan: run it through the build's wine-run\n");
    return 2;
  }
  ReportPass("sandbox registry");
  ReportWorkerMemory("sandbox registry");
  {
    const auto start = Clock::now();
    ExtraClasses extra;
    std::printf("seeded %d extra CLSIDs in %.1f s\n", kExtraClasses, Seconds(start));
    ReportPass("with 20,000 extra CLSIDs");
    ReportWorkerMemory("with 10000 rows found");
  }
  return 0;
}
