#include "windows_traces/dead_shortcuts.h"

#include <gtest/gtest.h>

#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// Shortcuts in the three places the walk visits, with targets in a scratch
// folder; the dead ones lose their target after saving. This program does not
// run as Windows 6.2, so a "Windows\system32" target is taken as it stands.
TEST(DeadShortcutsTest, MeasureCountsThenCleanShredsOnlyDeadShortcutsOutsideAccessories) {
  CleanAwayExistingDeadShortcuts();
  ScratchDir targets(L"shortcut-targets");
  ScratchDir canaryDir(L"shortcut-canary");
  CanaryTree canary(canaryDir / L"tree");
  const std::wstring profile = ShellFolderPath(CSIDL_PROFILE) + L"\\scourel-shortcuts";
  const std::wstring menu = CommonStartMenuDir() + L"\\Programs\\scourel-test";
  const std::wstring accessories = CommonStartMenuDir() + L"\\Programs\\Accessories\\scourel-test";
  const std::wstring system32 = WindowsDir().substr(0, 3) + L"Windows\\system32\\scourel-probe.txt";
  const std::wstring dead[] = {PublicDesktopDir() + L"\\scourel-dead.lnk", menu + L"\\dead.lnk"};
  const Cleanup planted = RemovedAtEnd({profile + L"\\linked", profile, menu, accessories, dead[0], system32});
  const Cleanup totals([] {
    g_totals.junkSecond.set(0);
    g_totals.byteTotal.set(0.0f);
  });
  MakeDirs(targets / L"folder");
  for (const wchar_t* name : {L"alive.txt", L"gone.txt", L"gone2.txt"}) WriteFileBytes(targets / name, "x");
  WriteFileBytes(system32, "probe");
  for (const std::wstring& folder : {profile, menu, accessories, PublicDesktopDir()}) MakeDirs(folder);
  for (const std::wstring& link : dead) ASSERT_TRUE(CreateShortcut(link, targets / L"gone.txt"));
  const std::pair<std::wstring, std::wstring> kept[] = {
      {profile + L"\\live.lnk", targets / L"alive.txt"}, {profile + L"\\folder.LNK", targets / L"folder"},
      {accessories + L"\\dead-accessory.lnk", targets / L"gone.txt"}, {profile + L"\\system32.lnk", system32},
      // Reached only through a folder link inside the profile.
      {canaryDir / L"dead-in-canary.lnk", targets / L"gone2.txt"}};
  for (const auto& [link, target] : kept) ASSERT_TRUE(CreateShortcut(link, target));
  const std::string canaryBytes = ReadFileBytes(canaryDir / L"dead-in-canary.lnk");
  ASSERT_TRUE(MakeUnixSymlink(canaryDir.path(), profile + L"\\linked"));
  ::DeleteFileW((targets / L"gone.txt").c_str());
  ::DeleteFileW((targets / L"gone2.txt").c_str());
  const std::uint64_t deadSize = FileSize(dead[0]) + FileSize(dead[1]);

  g_totals.byteTotal.set(123.0f);
  DeadShortcuts(kMeasure);
  EXPECT_EQ(g_totals.junkSecond.get(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), 0.0f);
  for (const std::wstring& link : dead) EXPECT_TRUE(PathExists(link));

  g_totals.junkSecond.set(0);
  DeadShortcuts(kErase);
  EXPECT_EQ(g_totals.junkSecond.get(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), static_cast<float>(deadSize));
  for (const std::wstring& link : dead) EXPECT_FALSE(PathExists(link));
  for (const auto& [link, target] : kept) EXPECT_TRUE(PathExists(link)) << link;
  EXPECT_EQ(ReadFileBytes(canaryDir / L"dead-in-canary.lnk"), canaryBytes);
  EXPECT_EQ(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel::test
