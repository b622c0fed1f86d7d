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

// The path pieces at their edges, and a 0x20000-backslash path the walks can
// meet in a hostile tree.
TEST(JunkPathsTest, PathPiecesAtTheirEdges) {
  const std::wstring slashes(0x20000, L'\\');
  const struct {
    std::wstring path, extension, drive, parent;
  } cases[] = {
      {L"C:\\a.b\\c.TXT", L"TXT", L"C", L"C:\\a.b"},
      {L"C:\\a.b\\c", L"b\\c", L"C", L"C:\\a.b"},  // the last dot, wherever it is
      {L"name.", L"", L"name.", L"name."},
      {L"", L"", L"", L""},
      {L"\\", L"", L"\\", L""},
      {L"x:y:\\z", L"", L"x", L"x:y:"},
      {slashes + L"x.log", L"log", slashes + L"x.log", slashes.substr(1)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.path.substr(0, 40)));
    EXPECT_EQ(ExtensionOf(c.path), c.extension);
    EXPECT_EQ(DriveOf(c.path), c.drive);
    EXPECT_EQ(ParentOf(c.path), c.parent);
  }
  EXPECT_EQ(PathKey(L"C:\\Temp\\AZ.Log"), L"c:\\temp\\az.log");
  EXPECT_EQ(SysnativeTarget(slashes), slashes);
}

}  // namespace
}  // namespace scourel
