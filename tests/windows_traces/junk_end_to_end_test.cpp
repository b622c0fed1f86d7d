// The junk-file, shortcut and Recycle Bin replies of a real worker, for the
// full scan and for the three tasks, carry exactly the planted numbers.
#include <gtest/gtest.h>

#include "common/unique_handle.h"
#include "common/win.h"
#include "host/protocol.h"
#include "host/reply_text.h"
#include "host/task_totals.h"
#include "junk_places_fixture.h"
#include "recycle_bin_fixture.h"
#include "shortcut_fixture.h"
#include "support/fixtures.h"
#include "support/worker_harness.h"
#include "windows_traces/dead_shortcuts.h"
#include "windows_traces/junk_files.h"

namespace scourel::test {
namespace {

using namespace protocol;

std::uint64_t FileSize(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return 0;
  return (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

void EmptyBin() { ::SHEmptyRecycleBinW(nullptr, nullptr, SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND); }

TEST(JunkEndToEndTest, FullScanThenTasksReportPlantedNumbers) {
  WorkerHarness worker(L"junk-e2e");
  ASSERT_TRUE(worker.Started());
  // First clean away what the sandbox holds of its own.
  worker.Send(kJunkFilesStart);
  ASSERT_TRUE(worker.WaitFor(kJunkFilesDone));
  worker.Send(kShortcutsStart);
  ASSERT_TRUE(worker.WaitFor(kShortcutsDone));
  EmptyBin();
  // What stays counted after a clean (crash dumps, for one).
  ResetForJunkFileScan();
  MeasureJunkFiles();
  const std::int32_t baseFirst = g_totals.junkFirst.get();
  const std::int32_t baseSecond = g_totals.junkSecond.get();
  const float baseBytes = g_totals.byteTotal.get();
  ResetForJunkFileScan();
  MeasureDeadShortcuts();
  ASSERT_EQ(g_totals.junkSecond.get(), 0);
  ResetForJunkFileScan();

  PlantedJunk junk(L"junk-e2e");
  ASSERT_TRUE(junk.ok());
  ScratchDir targets(L"junk-e2e-targets");
  WriteFileBytes(targets / L"gone.txt", "gone");
  const std::wstring deadLink = PublicDesktopDir() + L"\\scourel-e2e-dead.lnk";
  MakeDirs(PublicDesktopDir());
  ASSERT_TRUE(CreateShortcut(deadLink, targets / L"gone.txt"));
  ::DeleteFileW((targets / L"gone.txt").c_str());
  const std::uint64_t deadSize = FileSize(deadLink);
  ASSERT_TRUE(PlantRecycledFiles(targets / L"bin", 3, 1000));
  const int roots = DriveRootCount();

  worker.Send(kFullScanStart);
  const auto scanJunk = worker.WaitForCopyData(kScanJunkFiles);
  const auto scanShortcuts = worker.WaitForCopyData(kScanShortcuts);
  const auto scanBin = worker.WaitForCopyData(kScanRecycleBin);
  ASSERT_TRUE(worker.WaitForCopyData(kScanPlugins));  // the scan has ended
  ASSERT_TRUE(scanJunk && scanShortcuts && scanBin);
  const float junkBytes = baseBytes + junk.bytes();
  EXPECT_EQ(scanJunk->text, JunkScanText(baseFirst + junk.first(), junkBytes, baseSecond + junk.second()));
  EXPECT_EQ(scanShortcuts->text, ShortcutScanText(1, 0.0f));
  EXPECT_EQ(scanBin->text, RecycleBinScanText(3 * roots, 3000.0f * static_cast<float>(roots)));
  EXPECT_TRUE(PathExists(deadLink));
  EXPECT_EQ(QueryBin().items, 3);

  worker.Send(kJunkFilesStart);
  const auto junkDone = worker.WaitFor(kJunkFilesDone);
  ASSERT_TRUE(junkDone);
  EXPECT_EQ(static_cast<std::int32_t>(junkDone->wParam), baseFirst + baseSecond + junk.first() + junk.second());
  EXPECT_EQ(static_cast<std::int64_t>(junkDone->lParam), ReplyBytes(junkBytes));
  for (const std::wstring& path : junk.erased()) EXPECT_FALSE(PathExists(path)) << path;

  worker.Send(kShortcutsStart);
  const auto shortcutsDone = worker.WaitFor(kShortcutsDone);
  ASSERT_TRUE(shortcutsDone);
  EXPECT_EQ(shortcutsDone->wParam, 1u);
  EXPECT_EQ(static_cast<std::int64_t>(shortcutsDone->lParam), static_cast<std::int64_t>(deadSize));
  EXPECT_FALSE(PathExists(deadLink));

  // The Recycle Bin task adds to the byte total the shortcut task left.
  worker.Send(kRecycleBinStart);
  const auto binDone = worker.WaitFor(kRecycleBinDone);
  ASSERT_TRUE(binDone);
  EXPECT_EQ(static_cast<std::int32_t>(binDone->wParam), 3 * roots);
  EXPECT_EQ(static_cast<std::int64_t>(binDone->lParam),
            ReplyBytes(static_cast<float>(deadSize) + 3000.0f * static_cast<float>(roots)));
  EXPECT_EQ(QueryBin().items, 0);
  EXPECT_EQ(junk.Damage(), L"");
  ::DeleteFileW(deadLink.c_str());
}

// With Windows 6.2 reported, a target in "Windows\system32" is looked for in
// "Windows\Sysnative", which a 64-bit program does not see: the shortcut is
// taken for dead although its target exists.
TEST(JunkEndToEndTest, Windows62RewriteMakesSystem32TargetsDead) {
  const wchar_t* kAppKey = L"Software\\Wine\\AppDefaults\\scourel.exe";
  {
    UniqueRegKey key;
    ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, kAppKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(),
                                nullptr),
              ERROR_SUCCESS);
    const wchar_t kWin8[] = L"win8";
    ::RegSetValueExW(key.get(), L"Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(kWin8), sizeof kWin8);
  }
  struct RemoveKey {
    const wchar_t* path;
    ~RemoveKey() { ::RegDeleteTreeW(HKEY_CURRENT_USER, path); }
  } removeKey{kAppKey};

  WorkerHarness worker(L"junk-e2e-62");
  ASSERT_TRUE(worker.Started());
  worker.Send(kShortcutsStart);
  ASSERT_TRUE(worker.WaitFor(kShortcutsDone));

  const std::wstring target = WindowsDir().substr(0, 3) + L"Windows\\system32\\scourel-probe-62.txt";
  WriteFileBytes(target, "probe");
  ScratchDir targets(L"junk-e2e-62-targets");
  WriteFileBytes(targets / L"alive.txt", "alive");
  const std::wstring system32Link = PublicDesktopDir() + L"\\scourel-system32.lnk";
  const std::wstring liveLink = PublicDesktopDir() + L"\\scourel-alive.lnk";
  MakeDirs(PublicDesktopDir());
  ASSERT_TRUE(CreateShortcut(system32Link, target));
  ASSERT_TRUE(CreateShortcut(liveLink, targets / L"alive.txt"));
  ASSERT_EQ(ShortcutTarget(system32Link), target);

  worker.Send(kShortcutsStart);
  const auto done = worker.WaitFor(kShortcutsDone);
  ASSERT_TRUE(done);
  EXPECT_EQ(done->wParam, 1u);
  EXPECT_FALSE(PathExists(system32Link));
  EXPECT_TRUE(PathExists(liveLink));
  EXPECT_TRUE(PathExists(target));
  ::DeleteFileW(liveLink.c_str());
  ::DeleteFileW(system32Link.c_str());
  ::DeleteFileW(target.c_str());
}

}  // namespace
}  // namespace scourel::test
