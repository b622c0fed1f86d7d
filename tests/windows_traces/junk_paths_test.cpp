#include "windows_traces/junk_paths.h"

#include <gtest/gtest.h>

namespace scourel {
namespace {

TEST(JunkPathsTest, LogNamesIgnoreCaseAfterTheLastDot) {
  struct Case {
    const wchar_t* name;
    bool log;
  } cases[] = {
      {L"CBS.log", true},     {L"x.LOG", true},       {L"a.b.Log", true},  {L"setup.log.bak", false},
      {L"log", false},        {L"x.", false},         {L".log", true},     {L"x.logs", false},
      {L"x.lo", false},       {L"catalog", false},    {L"x.l\u00f6g", false},
  };
  for (const Case& c : cases) EXPECT_EQ(IsLogFileName(c.name), c.log) << c.name;
}

TEST(JunkPathsTest, LogWalkSkipNamesAreComparedWithCase) {
  for (const wchar_t* name : {L".", L"..", L"system", L"System32", L"SysWOW64", L"winsxs"}) {
    EXPECT_TRUE(IsLogWalkSkippedFolder(name)) << name;
  }
  for (const wchar_t* name : {L"SYSTEM32", L"system32", L"syswow64", L"WinSxS", L"System", L"Logs", L"..."}) {
    EXPECT_FALSE(IsLogWalkSkippedFolder(name)) << name;
  }
}

TEST(JunkPathsTest, DriveAndParent) {
  EXPECT_EQ(DriveOf(L"C:\\Windows"), L"C");
  EXPECT_EQ(DriveOf(L"D:\\a:b"), L"D");
  EXPECT_EQ(ParentOf(L"C:\\Users\\alice"), L"C:\\Users");
  EXPECT_EQ(ParentOf(L"C:\\Users\\alice\\"), L"C:\\Users\\alice");
}

TEST(JunkPathsTest, ShortcutMarkMustFollowTheFirstCharacter) {
  struct Case {
    const wchar_t* name;
    bool mark;
  } cases[] = {
      {L"a.lnk", true},      {L"a.LNK", true},  {L"a.Lnk", false},      {L".lnk", false},
      {L"x.lnk.txt", true},  {L"readme", false}, {L"folder.LNK", true}, {L"\U0001F600.lnk", true},
  };
  for (const Case& c : cases) EXPECT_EQ(HasShortcutMark(c.name), c.mark) << c.name;
  EXPECT_TRUE(ContainsAfterFirst(L"C:\\Start Menu\\Accessories\\x.lnk", L"Accessories"));
  EXPECT_FALSE(ContainsAfterFirst(L"Accessories\\x.lnk", L"Accessories"));
  EXPECT_FALSE(ContainsAfterFirst(L"C:\\accessories\\x.lnk", L"Accessories"));
}

TEST(JunkPathsTest, SysnativeRewriteIsExactAndCaseSensitive) {
  EXPECT_EQ(SysnativeTarget(L"C:\\Windows\\system32\\calc.exe"), L"C:\\Windows\\Sysnative\\calc.exe");
  EXPECT_EQ(SysnativeTarget(L"C:\\windows\\system32\\calc.exe"), L"C:\\windows\\system32\\calc.exe");
  EXPECT_EQ(SysnativeTarget(L"C:\\Windows\\System32\\calc.exe"), L"C:\\Windows\\System32\\calc.exe");
  EXPECT_EQ(SysnativeTarget(L"X:\\Windows\\system32\\Windows\\system32"), L"X:\\Windows\\Sysnative\\Windows\\Sysnative");
  EXPECT_EQ(SysnativeTarget(L""), L"");
}

}  // namespace
}  // namespace scourel
