// Deleting keys and values never reaches through a registry link: real links
// in the prefix, each naming a canary key under HKEY_LOCAL_MACHINE.
#include "common/registry_links.h"

#include <gtest/gtest.h>

#include "support/fixtures.h"
#include "support/registry_seed.h"
#include "task/cleaner_io.h"

namespace scourel {
namespace {

constexpr wchar_t kTree[] = L"Software\\ScourelTests\\Links";
constexpr wchar_t kCanary[] = L"Software\\ScourelTests\\LinkCanary";

TEST(RegistryLinks, NothingIsDeletedThroughALink) {
  enum class Gone { kNothing, kLinkOnly, kTree };
  const struct {
    const char* name;
    const wchar_t* link;    // below kTree
    const wchar_t* target;  // below kTree: what is deleted
    Gone treeDelete, keyDelete;
    bool valueReached;
  } cases[] = {
      {"the key itself is a link", L"list", L"list", Gone::kLinkOnly, Gone::kLinkOnly, false},
      {"a link on the way", L"list", L"list\\sub", Gone::kNothing, Gone::kNothing, false},
      {"a link inside the tree", L"list\\inner", L"list", Gone::kTree, Gone::kNothing, true},
  };
  const test::Cleanup undo([] {
    (void)DeleteKeyTreeUnfollowed(HKEY_CURRENT_USER, kTree, 0);
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\ScourelTests");  // when empty: the registry scan counts it
  });
  for (const auto& c : cases) {
    for (int operation = 0; operation < 3; ++operation) {
      SCOPED_TRACE(testing::Message() << c.name << ", operation " << operation);
      test::PlantedRegistry canary;
      canary.Plant(HKEY_LOCAL_MACHINE, kCanary, L"a", L"canary a");
      canary.Plant(HKEY_LOCAL_MACHINE, kCanary + std::wstring(L"\\sub"), L"c", L"canary c");
      const std::wstring tree = kTree, link = tree + L"\\" + c.link, target = tree + L"\\" + c.target;
      ASSERT_TRUE(test::MakeRegistryLink(HKEY_CURRENT_USER, link, kCanary));
      ASSERT_TRUE(test::ValuePresent(HKEY_CURRENT_USER, link, L"a"));  // the link works

      Gone gone = Gone::kNothing;
      switch (operation) {
        case 0:
          gone = c.treeDelete;
          EXPECT_EQ(!SystemCleanerIo().DeleteKeyTree(HKEY_CURRENT_USER, target), gone != Gone::kNothing);
          break;
        case 1:
          gone = c.keyDelete;
          EXPECT_EQ(!SystemCleanerIo().DeleteKey(HKEY_CURRENT_USER, target, 0), gone != Gone::kNothing);
          break;
        case 2:  // the open a value's deletion goes through
          EXPECT_FALSE(OpenRegKeyWithoutLinks(HKEY_CURRENT_USER, link, KEY_ALL_ACCESS));
          EXPECT_EQ(static_cast<bool>(OpenRegKeyWithoutLinks(HKEY_CURRENT_USER, target, KEY_ALL_ACCESS)), c.valueReached);
          break;
      }
      EXPECT_EQ(test::KeyPresent(HKEY_CURRENT_USER, target), gone == Gone::kNothing);
      EXPECT_EQ(test::KeyPresent(HKEY_CURRENT_USER, link), gone == Gone::kNothing);
      EXPECT_TRUE(test::ValuePresent(HKEY_LOCAL_MACHINE, kCanary, L"a"));
      EXPECT_TRUE(test::ValuePresent(HKEY_LOCAL_MACHINE, kCanary + std::wstring(L"\\sub"), L"c"));
      (void)DeleteKeyTreeUnfollowed(HKEY_CURRENT_USER, kTree, 0);
    }
  }
}

}  // namespace
}  // namespace scourel
