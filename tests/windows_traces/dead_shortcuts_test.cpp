#include "windows_traces/dead_shortcuts.h"

#include <gtest/gtest.h>

#include "host/task_totals.h"
#include "junk_places_fixture.h"
#include "shortcut_fixture.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

std::uint64_t FileSize(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return 0;
  return (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

// Shortcuts planted in the three places the walk visits, with targets made
// in a scratch folder; the dead ones lose their target after saving.
class DeadShortcutsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    CleanAwayExistingDeadShortcuts();
    MakeDirs(targets_ / L"folder");
    WriteFileBytes(targets_ / L"alive.txt", "alive");
    WriteFileBytes(targets_ / L"gone.txt", "gone");
    WriteFileBytes(targets_ / L"gone2.txt", "gone");
    MakeDirs(profileDir_);
    MakeDirs(accessories_);
    MakeDirs(PublicDesktopDir());
    ASSERT_TRUE(CreateShortcut(publicDead_, targets_ / L"gone.txt"));
    MakeDirs(menuDir_);
    ASSERT_TRUE(CreateShortcut(menuDead_, targets_ / L"gone.txt"));
    ASSERT_TRUE(CreateShortcut(profileDir_ + L"\\live.lnk", targets_ / L"alive.txt"));
    ASSERT_TRUE(CreateShortcut(profileDir_ + L"\\folder.LNK", targets_ / L"folder"));
    ASSERT_TRUE(CreateShortcut(accessories_ + L"\\dead-accessory.lnk", targets_ / L"gone.txt"));
    // A folder link inside the profile leads to a canary holding a dead shortcut.
    ASSERT_TRUE(CreateShortcut(canaryDir_ / L"dead-in-canary.lnk", targets_ / L"gone2.txt"));
    canaryBytes_ = ReadFileBytes(canaryDir_ / L"dead-in-canary.lnk");
    RemoveUnixLink(profileDir_ + L"\\linked");
    ASSERT_TRUE(MakeUnixSymlink(canaryDir_.path(), profileDir_ + L"\\linked"));
    ::DeleteFileW((targets_ / L"gone.txt").c_str());
    ::DeleteFileW((targets_ / L"gone2.txt").c_str());
    g_totals.junkSecond.set(0);
  }
  void TearDown() override {
    RemoveUnixLink(profileDir_ + L"\\linked");
    RemoveTree(profileDir_);
    RemoveTree(accessories_);
    RemoveTree(menuDir_);
    ::DeleteFileW(publicDead_.c_str());
    g_totals.junkSecond.set(0);
    g_totals.byteTotal.set(0.0f);
  }

  ScratchDir targets_{L"shortcut-targets"};
  ScratchDir canaryDir_{L"shortcut-canary"};
  CanaryTree canary_{canaryDir_ / L"tree"};
  std::string canaryBytes_;
  std::wstring profileDir_ = ProfileDir() + L"\\scourel-shortcuts";
  std::wstring accessories_ = CommonStartMenuDir() + L"\\Programs\\Accessories\\scourel-test";
  std::wstring publicDead_ = PublicDesktopDir() + L"\\scourel-dead.lnk";
  std::wstring menuDir_ = CommonStartMenuDir() + L"\\Programs\\scourel-test";
  std::wstring menuDead_ = menuDir_ + L"\\dead.lnk";
};

TEST_F(DeadShortcutsTest, DeadShortcutIsShreddedAndCountedOthersKept) {
  const std::uint64_t deadSize = FileSize(publicDead_) + FileSize(menuDead_);
  ASSERT_GT(deadSize, 0u);

  CleanDeadShortcuts();

  EXPECT_EQ(g_totals.junkSecond.get(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), static_cast<float>(deadSize));
  EXPECT_FALSE(PathExists(publicDead_));
  EXPECT_FALSE(PathExists(menuDead_));
  EXPECT_TRUE(PathExists(profileDir_ + L"\\live.lnk"));
  EXPECT_TRUE(PathExists(profileDir_ + L"\\folder.LNK"));
  EXPECT_TRUE(PathExists(accessories_ + L"\\dead-accessory.lnk"));
  EXPECT_EQ(ReadFileBytes(canaryDir_ / L"dead-in-canary.lnk"), canaryBytes_);
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(DeadShortcutsTest, MeasureCountsWithoutSizeOrErasing) {
  g_totals.byteTotal.set(123.0f);
  MeasureDeadShortcuts();
  EXPECT_EQ(g_totals.junkSecond.get(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), 0.0f);
  EXPECT_TRUE(PathExists(publicDead_));
  EXPECT_TRUE(PathExists(menuDead_));

  g_totals.junkSecond.set(0);
  CleanDeadShortcuts();
  EXPECT_EQ(g_totals.junkSecond.get(), 2);
  EXPECT_EQ(canary_.Damage(), L"");
}

// This test program does not run as Windows 6.2, so a target in
// "Windows\system32" is taken as it stands and found alive.
TEST_F(DeadShortcutsTest, System32TargetIsAliveWithoutTheRewrite) {
  const std::wstring target = WindowsDir().substr(0, 3) + L"Windows\\system32\\scourel-probe.txt";
  WriteFileBytes(target, "probe");
  const std::wstring link = profileDir_ + L"\\system32.lnk";
  ASSERT_TRUE(CreateShortcut(link, target));
  ASSERT_EQ(ShortcutTarget(link), target);

  CleanDeadShortcuts();

  EXPECT_TRUE(PathExists(link));
  EXPECT_EQ(g_totals.junkSecond.get(), 2);
  ::DeleteFileW(target.c_str());
}

}  // namespace
}  // namespace scourel::test
