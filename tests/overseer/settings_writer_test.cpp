#include "overseer/settings_writer.h"

#include <gtest/gtest.h>

#include "host/settings.h"
#include "support/fixtures.h"

namespace overseer {
namespace {

using scourel::test::ScratchDir;

TEST(OverseerSettingsTest, InstallRootIsTwoFoldersUp) {
  EXPECT_EQ(InstallRootOf(L"C:\\A\\B\\worker.exe"), L"C:\\A");
  EXPECT_EQ(InstallRootOf(L"C:\\root\\bin\\scourel.exe"), L"C:\\root");
  EXPECT_EQ(InstallRootOf(L"C:\\scourel.exe"), std::nullopt);
  EXPECT_EQ(InstallRootOf(L"scourel.exe"), std::nullopt);
}

TEST(OverseerSettingsTest, PrefixFollowsSetAndMode) {
  EXPECT_EQ(KeyPrefix(false, false), L"IDS_C");
  EXPECT_EQ(KeyPrefix(false, true), L"IDS_C");
  EXPECT_EQ(KeyPrefix(true, false), L"IDS_");
  EXPECT_EQ(KeyPrefix(true, true), L"IDS_O");
}

TEST(OverseerSettingsTest, NothingAskedNothingWritten) { EXPECT_TRUE(SettingsEntries(Options{}, false).empty()); }

struct FamilyCase {
  bool secondSet;
  bool modeO;
  scourel::KeyFamily family;  // what the worker reads for that command
};

// Written by overseer, read back as the worker reads them: every switch of
// every area lands in the family the worker will read, as exactly TRUE/FALSE.
TEST(OverseerSettingsTest, EachFamilyReadsBackAsTheWorkerSeesIt) {
  const FamilyCase cases[] = {{false, false, scourel::KeyFamily::kFirstSet},
                              {false, true, scourel::KeyFamily::kFirstSet},
                              {true, false, scourel::KeyFamily::kPlain},
                              {true, true, scourel::KeyFamily::kO}};
  for (const FamilyCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "second set " << c.secondSet << ", mode o " << c.modeO);
    ScratchDir dir(L"overseer-settings");
    const std::wstring ini = dir / L"Settings.INI";
    Options options;
    options.secondSet = c.secondSet;
    options.wipeMethod = 5;
    options.browser = std::vector<bool>{true, false, true, false, true, false, true, false, true, false};
    options.pc = std::vector<bool>{false, true, false, true, false, true};
    options.registry = std::vector<bool>{true, true, false, false, true, true, false, false, true, true, false, false};
    const auto entries = SettingsEntries(options, c.modeO);
    EXPECT_EQ(entries.size(), 1u + 10 + 6 + 12);
    ASSERT_TRUE(WriteSettings(ini, entries, nullptr));

    EXPECT_EQ(scourel::ReadSetting(ini, L"IDS_WIPEALGORITHM", scourel::kWipeAlgorithmChars), L"5");
    auto expectArea = [&](std::span<const std::wstring_view> suffixes, const std::vector<bool>& on) {
      for (size_t i = 0; i < suffixes.size(); ++i) {
        const std::wstring key = scourel::KeyName(c.family, suffixes[i]);
        EXPECT_EQ(scourel::ReadSetting(ini, key, 1000), on[i] ? L"TRUE" : L"FALSE") << key.c_str();
      }
    };
    expectArea(scourel::kBrowserKeys, *options.browser);
    expectArea(scourel::kPcTracesKeys, *options.pc);
    expectArea(scourel::kRegistryKeys, *options.registry);
    // And nothing went into another family.
    for (auto other : {scourel::KeyFamily::kFirstSet, scourel::KeyFamily::kPlain, scourel::KeyFamily::kO}) {
      if (other == c.family) continue;
      EXPECT_EQ(scourel::ReadSetting(ini, scourel::KeyName(other, L"CACHE"), 100), L"");
    }
  }
}

TEST(OverseerSettingsTest, AreaNotGivenIsLeftAsItWas) {
  ScratchDir dir(L"overseer-settings-keep");
  const std::wstring ini = dir / L"Settings.INI";
  ::WritePrivateProfileStringW(L"Corvane Suite", L"IDS_CCOOKIES", L"TRUE", ini.c_str());
  ::WritePrivateProfileStringW(L"Corvane Suite", L"IDS_WIPEALGORITHM", L"2", ini.c_str());
  Options options;
  options.pc = std::vector<bool>(6, true);
  ASSERT_TRUE(WriteSettings(ini, SettingsEntries(options, false), nullptr));
  EXPECT_EQ(scourel::ReadSetting(ini, L"IDS_CCOOKIES", 100), L"TRUE");
  EXPECT_EQ(scourel::ReadSetting(ini, L"IDS_WIPEALGORITHM", 100), L"2");
  EXPECT_EQ(scourel::ReadSetting(ini, L"IDS_CPCNETWORK", 100), L"TRUE");
}

TEST(OverseerSettingsTest, UnwritableFileNamesTheKey) {
  std::wstring failed;
  Options options;
  options.wipeMethod = 0;
  EXPECT_FALSE(WriteSettings(L"C:\\scourel-tests\\no-such-folder\\deeper\\Settings.INI",
                             SettingsEntries(options, false), &failed));
  EXPECT_EQ(failed, L"IDS_WIPEALGORITHM");
}

}  // namespace
}  // namespace overseer
