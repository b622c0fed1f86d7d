// The Windows-traces replies of a real worker carry exactly the planted
// numbers: the full scan's junk-file, shortcut, PC-traces and Recycle Bin
// records, then the junk-file, shortcut and Recycle Bin tasks.
#include <gtest/gtest.h>

#include <bit>

#include "protocol/reply_text.h"
#include "protocol/size_text.h"
#include "support/browser_fixture.h"
#include "support/worker_harness.h"
#include "windows_traces/junk_files.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// Junk in the real places the task walks.
struct PlantedJunk {
  PlantedJunk() {
    PlantSized(erased, 'j');
    WriteFileBytes(dump, std::string(700, 'd'));
  }
  const std::wstring tag = L"junk-e2e", windows = ShellFolderPath(CSIDL_WINDOWS);
  const std::wstring sharedWer = ShellFolderPath(CSIDL_COMMON_APPDATA) + L"\\Microsoft\\Windows\\WER\\" + tag;
  const std::wstring userWer = ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\Microsoft\\Windows\\WER\\" + tag;
  const std::wstring tempSub = TempFolder() + tag, dump = windows + L"\\Minidump\\" + tag + L".dmp";
  // Two temporary files (first counter); a dump, two logs, two reports (second).
  const SizedFiles erased = {
      {tempSub + L"\\plain.tmp", 1000}, {windows + L"\\temp\\" + tag + L".tmp", 300},
      {windows + L"\\Logs\\CBS\\" + tag + L"\\CBS.log", 250}, {windows + L"\\" + tag + L".LOG", 60},
      {sharedWer + L"\\ReportQueue\\Report.wer", 100}, {userWer + L"\\Report.wer", 50}};
  const Cleanup removed = RemovedAtEnd(
      {tempSub, erased[1].first, dump, windows + L"\\Logs\\CBS\\" + tag, erased[3].first, sharedWer, userWer});
  const float bytes = 1000 + 300 + 700 + 250 + 60 + 100 + 50;
};

// Shortcuts in the three places the shortcut walk visits. The dead ones in
// the Start Menu and on the public desktop go; a live one, one to a folder,
// one into System32 and a dead one in Accessories stay.
struct PlantedShortcuts {
  PlantedShortcuts() {
    MakeDirs(targets / L"folder");
    WriteFileBytes(targets / L"\U0001F600\\app.exe", "x");
    for (const wchar_t* name : {L"alive.txt", L"gone.txt"}) WriteFileBytes(targets / name, "x");
    WriteFileBytes(system32, "probe");
    for (const std::wstring& folder : {profile, menu, accessories}) MakeDirs(folder);
    for (const std::wstring& link : dead) ok = CreateShortcut(link, targets / L"gone.txt") && ok;
    for (const auto& [link, target] : kept) {
      // The last two never read back as saved: Wine's GetPath gives "?" for a
      // name outside the ANSI page, and a drive that is not mapped is unknown.
      ok = (CreateShortcut(link, target) || (&target >= &kept[4].second && PathExists(link))) && ok;
    }
    ::DeleteFileW((targets / L"gone.txt").c_str());
    deadSize = ReadFileBytes(dead[0]).size() + ReadFileBytes(dead[1]).size();
  }
  ScratchDir targets{L"junk-e2e-targets"};
  const std::wstring profile = ShellFolderPath(CSIDL_PROFILE) + L"\\scourel-e2e";
  const std::wstring menu = ShellFolderPath(CSIDL_COMMON_PROGRAMS) + L"\\scourel-e2e";
  const std::wstring accessories = ShellFolderPath(CSIDL_COMMON_PROGRAMS) + L"\\Accessories\\scourel-e2e";
  const std::wstring system32 =
      ShellFolderPath(CSIDL_WINDOWS).substr(0, 3) + L"Windows\\system32\\scourel-e2e-probe.txt";
  const std::wstring dead[2] = {ShellFolderPath(CSIDL_COMMON_DESKTOPDIRECTORY) + L"\\scourel-e2e-dead.lnk",
                                menu + L"\\dead.lnk"};
  const std::pair<std::wstring, std::wstring> kept[6] = {
      {profile + L"\\live.lnk", targets / L"alive.txt"}, {profile + L"\\folder.LNK", targets / L"folder"},
      {accessories + L"\\dead.lnk", targets / L"gone.txt"}, {profile + L"\\system32.lnk", system32},
      {profile + L"\\astral.lnk", targets / L"\U0001F600\\app.exe"}, {profile + L"\\unmapped.lnk", L"Q:\\app.exe"}};
  std::uint64_t deadSize = 0;
  bool ok = true;
  const Cleanup removed = RemovedAtEnd({profile, menu, accessories, dead[0], system32});
};

// The worker runs as Windows 6.2, as Windows 8.1 and later tell a program
// without a compatibility manifest. "Windows\system32" is then no reason to
// look in "Windows\Sysnative", which a 64-bit program does not see: a
// shortcut into the real System32 is alive and stays.
TEST(TracesEndToEndTest, FullScanThenTasksReportPlantedNumbers) {
  const WineVersionOf told(L"scourel.exe", L"win8");
  WorkerHarness worker(L"junk-e2e");
  ASSERT_TRUE(worker.Started());
  // A task's completion, {count, bytes}; {-1, -1} when none came.
  using Done = std::pair<std::int64_t, std::int64_t>;
  const auto run = [&](UINT start) {
    worker.Send(start);
    const auto done = worker.WaitFor(start + 1);
    return done ? Done(static_cast<std::int32_t>(done->wParam), done->lParam) : Done(-1, -1);
  };
  // First clean away what the sandbox holds of its own.
  ASSERT_NE(run(2034), Done(-1, -1));
  ASSERT_NE(run(2040), Done(-1, -1));
  ::SHEmptyRecycleBinW(nullptr, nullptr, SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND);
  // What stays counted after a clean (crash dumps, for one).
  ResetForJunkFileScan(g_totals);
  JunkFiles(kMeasure);
  const std::int32_t baseFirst = g_totals.junkFirst.get(), baseSecond = g_totals.junkSecond.get();
  const float baseBytes = g_totals.byteTotal.get();
  ResetForJunkFileScan(g_totals);

  PlantedJunk junk;
  PlantedShortcuts shortcuts;
  ASSERT_TRUE(shortcuts.ok);
  ASSERT_TRUE(PlantRecycledFiles(shortcuts.targets / L"bin", 3, 1000));
  // Under Wine every drive root's query reports the one shared bin.
  const int roots = std::popcount(static_cast<unsigned>(::GetLogicalDrives()));
  // One entry in each history list, a shortcut in Recent, a file in each
  // credentials folder; on the drive root only a "FOUND.nnn" folder counts.
  const RegistryCanary canary;
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"MRUList", L"a"}});
  PlantList(kWordWheelKey, {{L"0", L"invoice"}, {L"MRUListEx", L"x"}});
  const SizedFiles traces = {{ShellFolderPath(CSIDL_RECENT) + L"\\pctraces-scan.lnk", 1024},
                             {ShellFolderPath(CSIDL_APPDATA) + L"\\Microsoft\\Credentials\\pctraces-scan", 2048},
                             {ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\Microsoft\\Credentials\\pctraces-scan", 1024},
                             {L"C:\\FOUND.000\\FILE0000.CHK", 512}, {L"C:\\FOUND.000x\\FILE0000.CHK", 4}};
  const Cleanup tracesFiles = RemovedAtEnd(
      {traces[0].first, traces[1].first, traces[2].first, L"C:\\FOUND.000", L"C:\\FOUND.000x"});
  PlantSized(traces, 'p');

  // The full scan measures and erases nothing.
  worker.Send(2087);
  const auto scanJunk = worker.WaitForCopyData(101);
  const auto scanShortcuts = worker.WaitForCopyData(102);
  const auto scanPc = worker.WaitForCopyData(104, 300000);
  const auto scanBin = worker.WaitForCopyData(103);
  ASSERT_TRUE(worker.WaitForCopyData(106));  // the scan has ended
  ASSERT_TRUE(scanJunk && scanShortcuts && scanPc && scanBin);
  const float junkBytes = baseBytes + junk.bytes;
  EXPECT_EQ(scanJunk->text, JunkScanText(baseFirst + 2, junkBytes, baseSecond + 5));
  EXPECT_EQ(scanShortcuts->text, L"2\\s0.00 KB");
  EXPECT_EQ(scanPc->text, L"1\\pc   1.00 KB\\pc 2\\pc 2\\pc 0\\pc 2\\pc   3.00 KB\\pc 1\\pc   0.50 KB\\pc 0");
  EXPECT_EQ(scanBin->text, RecycleBinScanText(3 * roots, 3000.0f * static_cast<float>(roots)));
  for (const auto& [path, size] : junk.erased) EXPECT_TRUE(PathExists(path)) << path;
  for (const auto& [path, size] : traces) EXPECT_TRUE(PathExists(path)) << path;
  for (const std::wstring& link : shortcuts.dead) EXPECT_TRUE(PathExists(link)) << link;
  EXPECT_TRUE(KeyPresent(HKEY_CURRENT_USER, kRunMruKey));
  EXPECT_EQ(BinItems(), 3);

  // The clean then reports the same numbers.
  EXPECT_EQ(run(2034), Done(baseFirst + baseSecond + 7, ReplyBytes(junkBytes)));
  for (const auto& [path, size] : junk.erased) EXPECT_FALSE(PathExists(path)) << path;
  EXPECT_TRUE(PathExists(junk.dump));

  EXPECT_EQ(run(2040), Done(2, shortcuts.deadSize));
  for (const std::wstring& link : shortcuts.dead) EXPECT_FALSE(PathExists(link)) << link;
  for (const auto& [link, target] : shortcuts.kept) EXPECT_TRUE(PathExists(link)) << link;
  EXPECT_TRUE(PathExists(shortcuts.system32));

  // The Recycle Bin task adds to the byte total the shortcut task left.
  EXPECT_EQ(run(2052), Done(3 * roots, ReplyBytes(static_cast<float>(shortcuts.deadSize) + 3000.0f * roots)));
  EXPECT_EQ(BinItems(), 0);
  EXPECT_EQ(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel::test
