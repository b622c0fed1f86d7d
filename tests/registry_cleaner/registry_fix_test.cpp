// The fixes on the seeded registry, and the per-row deletion rules on a
// scratch tree.
#include "registry_cleaner/registry_fix.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "common/registry_key.h"
#include "common/registry_paths.h"
#include "protocol/categories.h"
#include "registry_cleaner/key_tree_delete.h"
#include "registry_cleaner/registry_scan.h"
#include "support/registry_seed.h"
#include "support/task_fixture.h"

namespace scourel::test {
namespace {

// One category switched on after another, each fix in the same run: a later
// fix works through the rows of the earlier ones again (the seed is planted
// anew each time), and leaves every other entry and every canary in place.
TEST(RegistryFixTest, EachCategoryAloneThenTogether) {
  ScratchDir settings(L"registry-fix-settings");
  const TaskContext context = TestContext(Mode::kErase, 0, settings / L"Settings.INI");
  std::vector<int> fixed;
  for (const auto& registrySwitch : protocol::kRegistrySwitches) {
    SCOPED_TRACE(std::string(registrySwitch.name));
    for (const auto& other : protocol::kRegistrySwitches) {
      const std::wstring key = L"IDS_C" + std::wstring(other.keySuffix);
      ::WritePrivateProfileStringW(L"Corvane Suite", key.c_str(), &other == &registrySwitch ? L"TRUE" : L"true",
                                   context.settingsPath.c_str());
    }
    SeededRegistry seed;
    RunRegistryScan(kMeasure);
    RunFileExtensionScan(kMeasure);
    fixed.push_back(registrySwitch.category);
    SelectFixCategories(context, KeyFamily::kFirstSet);
    for (int category = 0; category < kRegistryCategoryTotal; ++category) {
      EXPECT_EQ(FixFlag(category), category == registrySwitch.category ? 1 : 0);
    }
    EXPECT_EQ(seed.Damage(fixed), L"");
  }
}

TEST(RegistryFixTest, FileExtensionFixTakesItsCategoryOnly) {
  SeededRegistry seed;
  RunRegistryScan(kMeasure);
  RunFileExtensionScan(kMeasure);
  FixFileExtensions(kErase);
  EXPECT_EQ(seed.Damage({kCatExtensions}), L"");
}

struct RowCase {
  std::vector<std::wstring> plant;  // "path" or "path=value name"
  RegistryIssue row;                // key path relative to the scratch key
  std::vector<std::wstring> left;   // what remains below the scratch key, sorted
};

// Every key and value below the key, as "path" and "path=name", sorted.
void Listing(HKEY key, const std::wstring& prefix, std::vector<std::wstring>& out) {
  const KeyCounts counts = CountsOf(key);
  for (DWORD i = 0; i < counts.values; ++i) {
    wchar_t name[256];
    DWORD length = 256;
    if (::RegEnumValueW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0) out.push_back(prefix + L"=" + name);
  }
  for (DWORD i = 0; i < counts.subkeys; ++i) {
    const std::wstring name = EnumSubkeyName(key, i);
    UniqueRegKey child;
    ::RegOpenKeyExW(key, name.c_str(), 0, KEY_READ, child.put());
    const std::wstring path = prefix.empty() ? name : prefix + L"\\" + name;
    out.push_back(path);
    Listing(child.get(), path, out);
  }
}

TEST(RegistryFixTest, RowRules) {
  const RowCase cases[] = {
      // A key entry takes its parent when that is left empty, one level only.
      {{L"a\\p\\k"}, {L"", L"a\\p\\k", L"", L""}, {L"a"}},
      {{L"p\\k", L"p=v"}, {L"", L"p\\k", L"", L""}, {L"p", L"p=v"}},
      {{L"p\\k", L"p\\other"}, {L"", L"p\\k", L"", L""}, {L"p", L"p\\other"}},
      // At most one direct child goes per level: the key stays, one subkey fewer.
      {{L"k\\a\\a1", L"k\\a\\a2", L"k\\b"}, {L"", L"k", L"", L""}, {L"k", L"k\\b"}},
      {{L"k\\a\\a1", L"k=v"}, {L"", L"k", L"", L""}, {}},
      // A value: the key goes when it is the only one, else the value alone.
      {{L"k=v", L"k\\sub"}, {L"", L"k", L"v", L"d"}, {}},
      {{L"k=v", L"k=w"}, {L"", L"k", L"v", L"d"}, {L"k", L"k=w"}},
      {{L"k=w"}, {L"", L"k", L"v", L"d"}, {}},  // one value, though another one: the key goes
      {{L"k"}, {L"", L"k", L"", L"data"}, {L"k"}},           // no values at all: nothing to do
      {{L"k=v"}, {L"", L"gone", L"v", L"d"}, {L"k", L"k=v"}},
  };
  ScratchKey scratch(L"fix-rows");
  for (const RowCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.plant));
    ::RegDeleteTreeW(scratch.key(), nullptr);
    std::vector<std::wstring> plant = c.plant, expected = c.left;
    plant.push_back(L"keep");  // the parent of a top-level row must not end up empty
    expected.push_back(L"keep");
    std::sort(expected.begin(), expected.end());
    for (const std::wstring& item : plant) {
      const std::size_t eq = item.find(L'=');
      const std::wstring path = scratch.path() + L"\\" + item.substr(0, eq);
      const std::wstring name = eq == std::wstring::npos ? L"" : item.substr(eq + 1);
      if (eq == std::wstring::npos) {
        ::RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), UniqueRegKey().put());
      } else {
        ::RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), REG_SZ, L"x", 4);
      }
    }
    g_registry.found.ResetCounts();
    RecordIssue(kCatHelp, L"HKEY_CURRENT_USER", scratch.path() + L"\\" + c.row.keyPath, c.row.valueName, c.row.valueData);
    g_registry.fixList.ResetCounts();
    for (auto& flag : g_registry.fixFlags) flag.set(0);
    g_registry.fixFlags[kCatHelp].set(1);
    FixSelected(kErase);
    std::vector<std::wstring> left;
    Listing(scratch.key(), L"", left);
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, expected);
  }
}

TEST(RegistryFixTest, RowsNamingNoRootOrTheRootItselfTouchNothing) {
  EXPECT_EQ(RootFromName(L"HKEY_CLASSES_ROOT"), HKEY_CLASSES_ROOT);
  EXPECT_EQ(RootFromName(L"HKEY_LOCAL_MACHINE"), HKEY_LOCAL_MACHINE);  // not the plug-in table's shift
  EXPECT_EQ(RootFromName(L"hkey_users"), nullptr);
  EXPECT_EQ(DeleteKeyTree(HKEY_CURRENT_USER, L""), -1);
  EXPECT_EQ(DeleteKeyTree(HKEY_CURRENT_USER, std::wstring(kDeletePathChars + 1, L'k')), -1);
}

}  // namespace
}  // namespace scourel::test
