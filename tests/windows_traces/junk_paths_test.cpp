#include "windows_traces/junk_paths.h"

#include <gtest/gtest.h>

namespace scourel {
namespace {

// Name tests whose edges the walks' own tests do not reach.
TEST(JunkPathsTest, NameTests) {
  for (const auto& [name, log] : {std::pair{L"CBS.log", true}, {L"a.b.Log", true}, {L".log", true},
                                  {L"setup.log.bak", false}, {L"log", false}, {L"x.logs", false},
                                  {L"catalog", false}, {L"x.l\u00f6g", false}}) {
    EXPECT_EQ(IsLogFileName(name), log) << name;
  }
  for (const auto& [name, mark] : {std::pair{L"a.lnk", true}, {L"a.LNK", true}, {L"a.Lnk", false}, {L".lnk", false},
                                   {L"x.lnk.txt", true}, {L"readme", false}, {L"\U0001F600.lnk", true}}) {
    EXPECT_EQ(HasShortcutMark(name), mark) << name;
  }
  EXPECT_TRUE(ContainsAfterFirst(L"C:\\Start Menu\\Accessories\\x.lnk", L"Accessories"));
  EXPECT_FALSE(ContainsAfterFirst(L"Accessories\\x.lnk", L"Accessories"));
  EXPECT_FALSE(ContainsAfterFirst(L"C:\\accessories\\x.lnk", L"Accessories"));
}

TEST(JunkPathsTest, SysnativeRewriteIsExactAndCaseSensitive) {
  EXPECT_EQ(SysnativeTarget(L"C:\\Windows\\system32\\calc.exe"), L"C:\\Windows\\Sysnative\\calc.exe");
  EXPECT_EQ(SysnativeTarget(L"C:\\windows\\system32\\calc.exe"), L"C:\\windows\\system32\\calc.exe");
  EXPECT_EQ(SysnativeTarget(L"C:\\Windows\\System32\\calc.exe"), L"C:\\Windows\\System32\\calc.exe");
  EXPECT_EQ(SysnativeTarget(L"X:\\Windows\\system32\\Windows\\system32"), L"X:\\Windows\\Sysnative\\Windows\\Sysnative");
}

}  // namespace
}  // namespace scourel
