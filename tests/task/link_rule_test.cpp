// The rule for links on the way to a location, over real unix symlinks,
// which Wine shows as reparse points for folders and plain for files.
#include "task/link_rule.h"

#include <gtest/gtest.h>

#include <tuple>

#include "support/fixtures.h"

namespace scourel {
namespace {

TEST(LinkRule, ALocationIsReachedOnlyWithoutALinkBelowItsBase) {
  test::ScratchDir dir(L"link_rule"), outside(L"link_rule_canary");
  test::CanaryTree canary(outside / L"tree");
  test::WriteFileBytes(dir / L"base\\a\\b\\f.txt", "f");
  ASSERT_TRUE(test::MakeUnixSymlink(canary.root(), dir / L"base\\folder-link"));
  ASSERT_TRUE(test::MakeUnixSymlink(canary.root() + L"\\canary.txt", dir / L"base\\a\\file-link.txt"));
  ASSERT_TRUE(test::MakeUnixSymlink(dir / L"base", dir / L"linked-base"));
  const test::Cleanup links([&] {
    for (const wchar_t* link : {L"base\\folder-link", L"base\\a\\file-link.txt", L"linked-base"}) {
      test::RemoveUnixLink(dir / link);
    }
  });
  const std::tuple<const wchar_t*, const wchar_t*, bool> cases[] = {
      {L"base", L"base\\a\\b\\", true},
      {L"base\\", L"base\\a\\b\\f.txt", true},
      {L"base", L"base", true},
      {L"base", L"base\\folder-link\\", false},           // the location is a link
      {L"base", L"base\\folder-link\\sub\\keep.log", false},  // a link on the way
      {L"base", L"base\\a\\file-link.txt", false},        // a file link with plain attributes
      {L"base", L"base\\a\\missing", false},
      {L"linked-base", L"linked-base\\a\\b", true},       // the base itself may be a link
      {L"", L"linked-base\\a\\b", false},                 // unless the whole path is under the rule
      {L"elsewhere", L"base\\a\\b", true},                // a base that is no prefix: the whole path
  };
  for (const auto& [base, location, reached] : cases) {
    EXPECT_EQ(ReachedWithoutLinks(SystemCleanerIo(), *base ? dir / base : L"", dir / location), reached)
        << base << " | " << location;
  }
  EXPECT_EQ(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel
