#include "task/settings.h"

#include <gtest/gtest.h>

#include "common/win.h"
#include "registry_cleaner/registry_fix.h"
#include "support/fixtures.h"
#include "support/task_fixture.h"

namespace scourel {
namespace {

using test::ScratchDir;

// A switch is on for exactly "TRUE", an index is exactly one digit 0 to 8.
TEST(SettingsTest, ValuesAreOnOrAnIndexOnlyWhenExact) {
  EXPECT_TRUE(IsSwitchOn(L"TRUE"));
  for (const wchar_t* off : {L"true", L"True", L"TRUE ", L" TRUE", L"TRUEE", L"T", L""}) {
    EXPECT_FALSE(IsSwitchOn(off)) << testing::PrintToString(std::wstring(off));
  }
  EXPECT_EQ(ParseWipeIndex(L"0"), 0u);
  EXPECT_EQ(ParseWipeIndex(L"8"), 8u);
  for (const wchar_t* none : {L"9", L"08", L" 1", L"1 ", L"-1", L"\x0660", L"\xFF11", L"", L"x", L"/", L":"}) {
    EXPECT_FALSE(ParseWipeIndex(none)) << testing::PrintToString(std::wstring(none));
  }
}

// The key each family reads is seen from outside in settings_family_test.
TEST(SettingsTest, OnlyModeArgumentOSelectsTheOFamily) {
  EXPECT_EQ(FamilyForSecondSet(L"o"), KeyFamily::kO);
  for (const wchar_t* plain : {L"", L"O", L"o ", L"oo", L"-o"}) {
    EXPECT_EQ(FamilyForSecondSet(plain), KeyFamily::kPlain) << testing::PrintToString(std::wstring(plain));
  }
}

class SettingsFileTest : public testing::Test {
 protected:
  void Write(const std::string& text) { test::WriteFileBytes(path_, text); }
  bool ReadSwitch(KeyFamily family, std::wstring_view suffix, unsigned chars) const {
    return SettingsFile(path_).Switch(family, suffix, chars);
  }
  std::uint32_t ReadWipeAlgorithm() const { return SettingsFile(path_).ReadWipeAlgorithm(); }
  void SelectFixCategories(KeyFamily family) const {
    scourel::SelectFixCategories(test::TestContext(Mode::kErase, 0, path_), family);
  }

  ScratchDir dir_{L"settings"};
  std::wstring path_ = dir_ / L"Settings.INI";
};

TEST_F(SettingsFileTest, SwitchesReadThroughTheIniFileAndLongValuesAreCut) {
  EXPECT_FALSE(ReadSwitch(KeyFamily::kFirstSet, L"CACHE", kBrowserChars));  // no file
  Write(
      "[Corvane Suite]\r\n"
      "IDS_CCACHE=TRUE\r\n"
      "IDS_CHISTORY=\"TRUE \"\r\n"
      "IDS_CSESSION=TRUE\r\n"
      "IDS_WIPEALGORITHM=" + std::string(150, '7') + "\r\n"
      "[Other]\r\n"
      "IDS_CICONS=TRUE\r\n");
  EXPECT_TRUE(ReadSwitch(KeyFamily::kFirstSet, L"CACHE", kBrowserChars));
  EXPECT_FALSE(ReadSwitch(KeyFamily::kFirstSet, L"HISTORY", kBrowserChars));  // quotes keep the space
  EXPECT_FALSE(ReadSwitch(KeyFamily::kFirstSet, L"AUTOCOMPLETE", kBrowserChars));  // missing key
  EXPECT_FALSE(ReadSwitch(KeyFamily::kPlain, L"SESSION", kBrowserChars));  // other family
  EXPECT_FALSE(ReadSwitch(KeyFamily::kFirstSet, L"ICONS", kBrowserChars));  // other section
  EXPECT_EQ(ReadSetting(path_, L"IDS_WIPEALGORITHM", kWipeAlgorithmChars).size(), kWipeAlgorithmChars - 1);
}

TEST_F(SettingsFileTest, InvalidWipeIndexLeavesTheLastOne) {
  g_wipeMethod.set(0);
  const std::pair<const char*, unsigned> steps[] = {{"5", 5}, {"9", 5}, {"8", 8}, {"x", 8}, {"0", 0}};
  for (const auto& [value, expected] : steps) {
    Write(std::string("[Corvane Suite]\r\nIDS_WIPEALGORITHM=\"") + value + "\"\r\n");
    ReadWipeAlgorithm();
    EXPECT_EQ(g_wipeMethod.get(), expected) << value;
  }
  ::DeleteFileW(path_.c_str());
  ReadWipeAlgorithm();
  EXPECT_EQ(g_wipeMethod.get(), 0u) << "a missing file changes nothing";
}

TEST_F(SettingsFileTest, RegistryFlagsAreReadAfreshForEveryFix) {
  // The switch removed between two fixes is off in the second.
  Write("[Corvane Suite]\r\nIDS_CCOM=TRUE\r\nIDS_CFONTS=TRUE\r\n");
  SelectFixCategories(KeyFamily::kFirstSet);
  EXPECT_EQ(FixFlag(kCatCom), 1);
  Write("[Corvane Suite]\r\nIDS_CFONTS=TRUE\r\n");
  SelectFixCategories(KeyFamily::kFirstSet);
  EXPECT_EQ(FixFlag(kCatCom), 0);
  EXPECT_EQ(FixFlag(kCatFonts), 1);

  // Every switch of the family maps to its own category; the extension and
  // additional-references categories have no switch.
  std::string all = "[Corvane Suite]\r\n";
  for (auto suffix : protocol::kRegistrySwitchKeys) all += "IDS_O" + std::string(suffix.begin(), suffix.end()) + "=TRUE\r\n";
  Write(all);
  SelectFixCategories(KeyFamily::kO);
  for (int c = 0; c < kRegistryCategoryTotal; ++c) {
    const bool selectable = c != kCatExtensions && c != kCatAdditional && c != kCatNone;
    EXPECT_EQ(FixFlag(c), selectable ? 1 : 0) << c;
  }
}

}  // namespace
}  // namespace scourel
