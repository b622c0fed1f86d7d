#include "windows_traces/junk_paths.h"

#include <gtest/gtest.h>

#include <random>

#include "support/random_text.h"

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

TEST(JunkPathsTest, RandomTextsKeepEachRulesInvariants) {
  std::mt19937 random(2064);
  const std::wstring_view from = L"Windows\\system32";
  for (int i = 0; i < 100000; ++i) {
    const std::wstring text = test::RandomText(random, {L"Windows\\system32", L"Windows\\", L"system32", L"Sysnative",
                                                        L".", L"log", L"LoG", L".lnk", L".LNK", L"\\", L":", L"x"});
    const auto shown = testing::PrintToString(text);
    const std::wstring_view extension = ExtensionOf(text);
    ASSERT_TRUE(text.ends_with(extension) && extension.find(L'.') == std::wstring_view::npos) << shown;
    ASSERT_TRUE(!IsLogFileName(text) || (extension.size() == 3 && text.size() > 3)) << shown;
    ASSERT_TRUE(text.starts_with(DriveOf(text)) && DriveOf(text).find(L':') == std::wstring::npos) << shown;
    const std::wstring parent = ParentOf(text);
    ASSERT_TRUE(text.starts_with(parent)) << shown;
    ASSERT_TRUE(parent.size() == text.size() ||
                (text[parent.size()] == L'\\' && text.find(L'\\', parent.size() + 1) == std::wstring::npos))
        << shown;
    ASSERT_TRUE(!HasShortcutMark(text) || text.find(L".lnk", 1) != std::wstring::npos ||
                text.find(L".LNK", 1) != std::wstring::npos)
        << shown;
    const std::wstring rewritten = SysnativeTarget(text);
    ASSERT_EQ(rewritten.find(from), std::wstring::npos) << shown;
    std::size_t occurrences = 0;
    for (auto at = text.find(from); at != std::wstring::npos; at = text.find(from, at + from.size())) ++occurrences;
    ASSERT_EQ(rewritten.size(), text.size() + occurrences) << shown;
    const std::wstring key = PathKey(text);
    ASSERT_TRUE(key.size() == text.size() && key.find_first_of(L"ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::wstring::npos) << shown;
  }
}

}  // namespace
}  // namespace scourel
