#include <gtest/gtest.h>

#include "common/win.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

// The host-side links the safety tests rely on must really appear as Windows
// sees them: a folder link as a reparse point, a hard link as a second name.
TEST(FixturesTest, HostLinksShowInWine) {
  ScratchDir dir(L"fixtures");
  MakeDirs(dir / L"target");
  WriteFileBytes(dir / L"target\\file.txt", "x");
  ASSERT_TRUE(MakeUnixSymlink(dir / L"target", dir / L"link"));
  const DWORD attributes = ::GetFileAttributesW((dir / L"link").c_str());
  ASSERT_NE(attributes, INVALID_FILE_ATTRIBUTES);
  EXPECT_TRUE(attributes & FILE_ATTRIBUTE_REPARSE_POINT);

  ASSERT_TRUE(MakeUnixHardLink(dir / L"target\\file.txt", dir / L"second.txt"));
  EXPECT_EQ(ReadFileBytes(dir / L"second.txt"), "x");

  CanaryTree canary(dir / L"canary");
  EXPECT_EQ(canary.Damage(), L"");
  ::DeleteFileW((dir / L"canary\\canary.txt").c_str());
  EXPECT_NE(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel::test
