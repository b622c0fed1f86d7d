// The fixes on the seeded registry, and the per-row deletion rules on a
// scratch tree.
#include "registry_cleaner/registry_fix.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "protocol/categories.h"
#include "registry_cleaner/key_tree_delete.h"
#include "registry_cleaner/registry_scan.h"
#include "support/registry_seed.h"
#include "support/task_fixture.h"

namespace scourel::test {
namespace {

// One category switched on after another, each fix in the same run: a later
// fix works through the rows of the earlier ones again (the seed is planted
// anew each time, under the same names, so the first scan's rows name it),
// and leaves every other entry and every canary in place. The last scan,
// after every fix but one, finds the seed exactly: no fix left anything a
// scan would find.
TEST(RegistryFixTest, EachCategoryAloneThenTogether) {
  ScratchDir settings(L"registry-fix-settings");
  const TaskContext context = TestContext(Mode::kErase, 0, settings / L"Settings.INI");
  std::vector<int> fixed;
  for (const auto& registrySwitch : protocol::kRegistrySwitches) {
    SCOPED_TRACE(std::string(registrySwitch.name));
    for (const auto& other : protocol::kRegistrySwitches) {
      ::WritePrivateProfileStringW(L"Corvane Suite", (L"IDS_C" + std::wstring(other.keySuffix)).c_str(),
                                   &other == &registrySwitch ? L"TRUE" : L"true", context.settingsPath.c_str());
    }
    SeededRegistry seed;
    if (fixed.empty() || &registrySwitch == &protocol::kRegistrySwitches[protocol::kRegistrySwitchCount - 1]) {
      RunRegistryScan(kMeasure);
      // Exact: a false positive anywhere in the sandbox's registry shows here.
      EXPECT_EQ(RegistryReportCounts(), kSeedReport);
      EXPECT_EQ(RunFileExtensionScan(kMeasure), kSeedExtensions);
      EXPECT_EQ(RunFileExtensionScan(kMeasure), 2 * kSeedExtensions);  // the pass adds without a reset
      EXPECT_EQ(seed.Damage({}), L"");                                 // scanning changes nothing
    }
    fixed.push_back(registrySwitch.category);
    SelectFixCategories(context, KeyFamily::kFirstSet);
    EXPECT_EQ(seed.Damage(fixed), L"");
  }
}

TEST(RegistryFixTest, RowRules) {
  const struct {
    std::vector<std::wstring> plant;  // "path" or "path=value name", below the scratch key
    RegistryIssue row;                // its key path below the scratch key
    std::vector<std::wstring> gone;   // what the fix deletes; everything else planted stays
  } cases[] = {
      // A key entry takes its parent when that is left empty, one level only.
      {{L"a", L"a\\p\\k"}, {L"", L"a\\p\\k", L"", L""}, {L"a\\p\\k", L"a\\p"}},
      {{L"p\\k", L"p=v"}, {L"", L"p\\k", L"", L""}, {L"p\\k"}},
      {{L"p\\k", L"p\\other"}, {L"", L"p\\k", L"", L""}, {L"p\\k"}},
      // At most one direct child goes per level: the key stays, one subkey fewer.
      {{L"k\\a\\a1", L"k\\a\\a2", L"k\\b"}, {L"", L"k", L"", L""}, {L"k\\a\\a1", L"k\\a\\a2", L"k\\a"}},
      {{L"k\\a\\a1", L"k=v"}, {L"", L"k", L"", L""}, {L"k\\a\\a1", L"k\\a", L"k", L"k=v"}},
      // A value: the key goes when it holds one value, else the value alone.
      {{L"k=v", L"k\\sub"}, {L"", L"k", L"v", L"d"}, {L"k=v", L"k\\sub", L"k"}},
      {{L"k=v", L"k=w"}, {L"", L"k", L"v", L"d"}, {L"k=v"}},
      {{L"k=w"}, {L"", L"k", L"v", L"d"}, {L"k=w", L"k"}},  // one value, though another one
      {{L"k"}, {L"", L"k", L"", L"data"}, {}},              // no values at all: nothing to do
      {{L"k=v"}, {L"", L"gone", L"v", L"d"}, {}},
      {{L"k=v"}, {L"hkey_current_user", L"k", L"v", L"d"}, {}},  // roots by their exact names only
  };
  ScratchKey scratch(L"fix-rows");
  ::RegCreateKeyW(scratch.key(), L"keep", UniqueRegKey().put());  // the scratch key never ends up empty
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.plant));
    const auto split = [&](const std::wstring& item) {
      const std::size_t eq = item.find(L'=');
      return std::pair(scratch.path() + L"\\" + item.substr(0, eq),
                       eq == std::wstring::npos ? std::nullopt : std::optional(item.substr(eq + 1)));
    };
    PlantedRegistry planted;
    for (const std::wstring& item : c.plant) {
      const auto [path, name] = split(item);
      planted.Plant(HKEY_CURRENT_USER, path, name, L"x");
    }
    g_registry.found.ResetCounts();
    RecordIssue(kCatHelp, c.row.rootName.empty() ? L"HKEY_CURRENT_USER" : c.row.rootName,
                scratch.path() + L"\\" + c.row.keyPath, c.row.valueName, c.row.valueData);
    g_registry.fixList.ResetCounts();  // each case on its own
    g_registry.fixFlags[kCatHelp].set(1);
    FixSelected(kErase);
    for (const auto& items : {c.plant, c.gone}) {
      for (const std::wstring& item : items) {
        const auto [path, name] = split(item);
        const bool present = name ? ValuePresent(HKEY_CURRENT_USER, path, *name) : KeyPresent(HKEY_CURRENT_USER, path);
        EXPECT_EQ(present, std::find(c.gone.begin(), c.gone.end(), item) == c.gone.end()) << item;
      }
    }
  }
  EXPECT_EQ(DeleteKeyTree(SystemCleanerIo(), HKEY_CURRENT_USER, L""), -1);  // never the root itself
  EXPECT_EQ(DeleteKeyTree(SystemCleanerIo(), HKEY_CURRENT_USER, std::wstring(kDeletePathChars + 1, L'k')), -1);
}

}  // namespace
}  // namespace scourel::test
