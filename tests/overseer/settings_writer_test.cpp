#include "overseer/settings_writer.h"

#include <gtest/gtest.h>

#include "task/settings.h"
#include "support/fixtures.h"

namespace overseer {
namespace {

using scourel::ReadSetting;
using scourel::test::ScratchDir;

TEST(OverseerSettingsTest, InstallRootIsTwoFoldersUp) {
  EXPECT_EQ(InstallRootOf(L"C:\\root\\bin\\scourel.exe"), L"C:\\root");
  EXPECT_EQ(InstallRootOf(L"C:\\scourel.exe"), std::nullopt);
  EXPECT_EQ(InstallRootOf(L"scourel.exe"), std::nullopt);
}

// Written by overseer, read back as the worker reads them: every switch of
// every area lands in the family the worker will read, as exactly TRUE/FALSE.
TEST(OverseerSettingsTest, EachFamilyReadsBackAsTheWorkerSeesIt) {
  using scourel::KeyFamily;
  Options options;
  options.wipeMethod = 5;
  options.browser = std::vector<bool>{1, 0, 1, 0, 1, 0, 1, 0, 1, 0};
  options.pc = std::vector<bool>{0, 1, 0, 1, 0, 1};
  options.registry = std::vector<bool>{1, 1, 0, 0, 1, 1, 0, 0, 1, 1, 0, 0};
  const struct {
    bool secondSet, modeO;
    KeyFamily family;  // what the worker reads for that command
  } cases[] = {{false, false, KeyFamily::kFirstSet}, {false, true, KeyFamily::kFirstSet},
               {true, false, KeyFamily::kPlain}, {true, true, KeyFamily::kO}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "second set " << c.secondSet << ", mode o " << c.modeO);
    ScratchDir dir(L"overseer-settings");
    const std::wstring ini = dir / L"Settings.INI";
    options.secondSet = c.secondSet;
    const auto entries = SettingsEntries(options, c.modeO);
    EXPECT_EQ(entries.size(), 1u + 10 + 6 + 12);
    ASSERT_TRUE(WriteSettings(ini, entries, nullptr));
    EXPECT_EQ(ReadSetting(ini, L"IDS_WIPEALGORITHM", scourel::kWipeAlgorithmChars), L"5");
    auto expectArea = [&](std::span<const std::wstring_view> suffixes, const std::vector<bool>& on) {
      for (size_t i = 0; i < suffixes.size(); ++i) {
        const std::wstring key = scourel::KeyName(c.family, suffixes[i]);
        EXPECT_EQ(ReadSetting(ini, key, 1000), on[i] ? L"TRUE" : L"FALSE") << key.c_str();
      }
    };
    expectArea(scourel::protocol::kBrowserCategoryKeys, *options.browser);
    expectArea(scourel::protocol::kPcSwitchKeys, *options.pc);
    expectArea(scourel::protocol::kRegistrySwitchKeys, *options.registry);
    for (auto other : {KeyFamily::kFirstSet, KeyFamily::kPlain, KeyFamily::kO}) {  // nothing in another family
      EXPECT_EQ(ReadSetting(ini, scourel::KeyName(other, L"CACHE"), 100), other == c.family ? L"TRUE" : L"");
    }
  }
}

// Only what the options name is written, over what the file held; a key
// that cannot be written is named.
TEST(OverseerSettingsTest, AreaNotGivenIsLeftAsItWasAndFailuresNameTheKey) {
  EXPECT_TRUE(SettingsEntries(Options{}, false).empty());
  ScratchDir dir(L"overseer-settings-keep");
  const std::wstring ini = dir / L"Settings.INI";
  ::WritePrivateProfileStringW(L"Corvane Suite", L"IDS_CCOOKIES", L"TRUE", ini.c_str());
  ::WritePrivateProfileStringW(L"Corvane Suite", L"IDS_WIPEALGORITHM", L"2", ini.c_str());
  Options options;
  options.pc = std::vector<bool>(6, true);
  ASSERT_TRUE(WriteSettings(ini, SettingsEntries(options, false), nullptr));
  EXPECT_EQ(ReadSetting(ini, L"IDS_CCOOKIES", 100) + ReadSetting(ini, L"IDS_WIPEALGORITHM", 100), L"TRUE2");
  EXPECT_EQ(ReadSetting(ini, L"IDS_CPCNETWORK", 100), L"TRUE");

  std::wstring failed;
  options.wipeMethod = 0;
  EXPECT_FALSE(WriteSettings(dir / L"missing\\Settings.INI", SettingsEntries(options, false), &failed));
  EXPECT_EQ(failed, L"IDS_WIPEALGORITHM");
}

}  // namespace
}  // namespace overseer
