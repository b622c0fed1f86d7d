// The junk-file, shortcut and Recycle Bin replies of a real worker, for the
// full scan and for the three tasks, carry exactly the planted numbers.
#include <gtest/gtest.h>

#include "protocol/size_text.h"

#include "protocol/messages.h"
#include "protocol/reply_text.h"
#include "support/worker_harness.h"
#include "windows_traces/junk_files.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

using namespace protocol;

// Junk in the real places the task walks, with links from the temp and
// report folders to a canary that must survive.
struct PlantedJunk {
  explicit PlantedJunk(const std::wstring& tag) {
    const std::wstring windows = WindowsDir();
    const std::wstring sharedWer = windows.substr(0, 3) + L"ProgramData\\Microsoft\\Windows\\WER\\" + tag;
    const std::wstring userWer = ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\Microsoft\\Windows\\WER\\" + tag;
    wchar_t temp[MAX_PATH + 2] = {};
    ::GetTempPathW(MAX_PATH + 2, temp);
    tempSub = temp + tag;
    MakeDirs(tempSub + L"\\nested\\deeper");
    // Two temporary files (first counter); a dump, two logs, two reports (second).
    erased = {{tempSub + L"\\readonly.tmp", 1000}, {windows + L"\\temp\\" + tag + L".tmp", 300},
              {windows + L"\\Logs\\CBS\\" + tag + L"\\CBS.log", 250}, {windows + L"\\" + tag + L".LOG", 60},
              {sharedWer + L"\\ReportQueue\\Report.wer", 100}, {userWer + L"\\Report.wer", 50}};
    PlantSized(erased, 'j');
    MakeReadOnly(erased[0].first);
    dump = windows + L"\\Minidump\\" + tag + L".dmp";
    PlantFile(dump, std::string(700, 'd'));
    cleanup = {tempSub, erased[1].first, dump, windows + L"\\Logs\\CBS\\" + tag, erased[3].first, sharedWer, userWer};
    links = {tempSub + L"\\link-to-canary", sharedWer + L"\\link-to-canary"};
    for (const std::wstring& link : links) ok = MakeUnixSymlink(canary.root(), link) && ok;
  }
  ~PlantedJunk() {
    for (const std::wstring& link : links) RemoveUnixLink(link);
    for (const std::wstring& path : cleanup) RemoveTree(path);
  }
  ScratchDir canaryDir{L"junk-e2e-canary"};
  CanaryTree canary{canaryDir.path()};
  std::wstring tempSub, dump;
  SizedFiles erased;
  std::vector<std::wstring> cleanup, links;
  bool ok = true;
  const float bytes = 1000 + 300 + 700 + 250 + 60 + 100 + 50;
};

TEST(JunkEndToEndTest, FullScanThenTasksReportPlantedNumbers) {
  WorkerHarness worker(L"junk-e2e");
  ASSERT_TRUE(worker.Started());
  // First clean away what the sandbox holds of its own.
  worker.Send(2034);
  ASSERT_TRUE(worker.WaitFor(2035));
  worker.Send(2040);
  ASSERT_TRUE(worker.WaitFor(2041));
  EmptyBin();
  // What stays counted after a clean (crash dumps, for one).
  ResetForJunkFileScan(g_totals);
  JunkFiles(kMeasure);
  const std::int32_t baseFirst = g_totals.junkFirst.get(), baseSecond = g_totals.junkSecond.get();
  const float baseBytes = g_totals.byteTotal.get();
  ResetForJunkFileScan(g_totals);
  DeadShortcuts(kMeasure);
  ASSERT_EQ(g_totals.junkSecond.get(), 0);
  ResetForJunkFileScan(g_totals);

  PlantedJunk junk(L"junk-e2e");
  ASSERT_TRUE(junk.ok);
  ScratchDir targets(L"junk-e2e-targets");
  WriteFileBytes(targets / L"gone.txt", "gone");
  const std::wstring deadLink = PublicDesktopDir() + L"\\scourel-e2e-dead.lnk";
  const Cleanup link = RemovedAtEnd({deadLink});
  MakeDirs(PublicDesktopDir());
  ASSERT_TRUE(CreateShortcut(deadLink, targets / L"gone.txt"));
  ::DeleteFileW((targets / L"gone.txt").c_str());
  const std::uint64_t deadSize = FileSize(deadLink);
  ASSERT_TRUE(PlantRecycledFiles(targets / L"bin", 3, 1000));
  const int roots = DriveRootCount();

  // The full scan measures and erases nothing.
  worker.Send(2087);
  const auto scanJunk = worker.WaitForCopyData(kScanJunkFiles);
  const auto scanShortcuts = worker.WaitForCopyData(kScanShortcuts);
  const auto scanBin = worker.WaitForCopyData(kScanRecycleBin);
  ASSERT_TRUE(worker.WaitForCopyData(kScanPlugins));  // the scan has ended
  ASSERT_TRUE(scanJunk && scanShortcuts && scanBin);
  const float junkBytes = baseBytes + junk.bytes;
  EXPECT_EQ(scanJunk->text, JunkScanText(baseFirst + 2, junkBytes, baseSecond + 5));
  EXPECT_EQ(scanShortcuts->text, ShortcutScanText(1, 0.0f));
  EXPECT_EQ(scanBin->text, RecycleBinScanText(3 * roots, 3000.0f * static_cast<float>(roots)));
  for (const auto& [path, size] : junk.erased) EXPECT_TRUE(PathExists(path)) << path;
  EXPECT_TRUE(PathExists(deadLink));
  EXPECT_EQ(QueryBin().first, 3);

  // The clean then reports the same numbers.
  worker.Send(2034);
  const auto junkDone = worker.WaitFor(2035);
  ASSERT_TRUE(junkDone);
  EXPECT_EQ(static_cast<std::int32_t>(junkDone->wParam), baseFirst + baseSecond + 7);
  EXPECT_EQ(static_cast<std::int64_t>(junkDone->lParam), ReplyBytes(junkBytes));
  for (const auto& [path, size] : junk.erased) EXPECT_FALSE(PathExists(path)) << path;
  EXPECT_TRUE(PathExists(junk.dump));
  EXPECT_FALSE(PathExists(junk.tempSub + L"\\nested"));
  EXPECT_TRUE(PathExists(junk.tempSub));

  worker.Send(2040);
  const auto shortcutsDone = worker.WaitFor(2041);
  ASSERT_TRUE(shortcutsDone);
  EXPECT_EQ(shortcutsDone->wParam, 1u);
  EXPECT_EQ(static_cast<std::int64_t>(shortcutsDone->lParam), static_cast<std::int64_t>(deadSize));
  EXPECT_FALSE(PathExists(deadLink));

  // The Recycle Bin task adds to the byte total the shortcut task left.
  worker.Send(2052);
  const auto binDone = worker.WaitFor(2053);
  ASSERT_TRUE(binDone);
  EXPECT_EQ(static_cast<std::int32_t>(binDone->wParam), 3 * roots);
  EXPECT_EQ(static_cast<std::int64_t>(binDone->lParam),
            ReplyBytes(static_cast<float>(deadSize) + 3000.0f * static_cast<float>(roots)));
  EXPECT_EQ(QueryBin().first, 0);
  EXPECT_EQ(junk.canary.Damage(), L"");
}

// With Windows 6.2 reported, a target in "Windows\system32" is looked for in
// "Windows\Sysnative", which a 64-bit program does not see: the shortcut is
// taken for dead although its target exists.
// Windows 8.1 and later tell a process without a compatibility manifest that
// they are 6.2, as Wine's "win8" does. Our 64-bit worker sees the real
// System32 under its own name, so a shortcut into it is alive and stays.
TEST(JunkEndToEndTest, Windows62KeepsLiveSystem32Targets) {
  const std::wstring appKey = L"Software\\Wine\\AppDefaults\\scourel.exe";
  const std::wstring target = WindowsDir().substr(0, 3) + L"Windows\\system32\\scourel-probe-62.txt";
  const std::wstring system32Link = PublicDesktopDir() + L"\\scourel-system32.lnk";
  const Cleanup planted = RemovedAtEnd({system32Link, target});
  const Cleanup version([&] { ::RegDeleteTreeW(HKEY_CURRENT_USER, appKey.c_str()); });
  SetText(appKey, L"Version", L"win8");
  ASSERT_TRUE(KeyPresent(appKey));

  WorkerHarness worker(L"junk-e2e-62");
  ASSERT_TRUE(worker.Started());
  worker.Send(2040);
  ASSERT_TRUE(worker.WaitFor(2041));

  WriteFileBytes(target, "probe");
  MakeDirs(PublicDesktopDir());
  ASSERT_TRUE(CreateShortcut(system32Link, target));

  worker.Send(2040);
  const auto done = worker.WaitFor(2041);
  ASSERT_TRUE(done);
  EXPECT_EQ(done->wParam, 0u);
  EXPECT_TRUE(PathExists(system32Link));
  EXPECT_TRUE(PathExists(target));
}

}  // namespace
}  // namespace scourel::test
