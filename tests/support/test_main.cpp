// Entry of every test program: checks the sandbox before any test runs.
#include <cstdio>
#include <optional>

#include <gtest/gtest.h>

#include "support/browser_fixture.h"
#include "support/sandbox_guard.h"

namespace {

// Every test runs with its current directory on C:, where a worker's cache
// step for a missing Chrome profile lands in "C:\Cache": a decoy planted
// there must come through every test unchanged.
class CurrentDriveDecoy : public testing::Environment {
 public:
  void SetUp() override {
    ::SetCurrentDirectoryW(L"C:\\");
    scourel::test::RemoveTree(scourel::test::kRootCache);
    decoy_.emplace(scourel::test::kRootCache);
  }
  void TearDown() override {
    EXPECT_EQ(decoy_->Damage(), L"");
    scourel::test::RemoveTree(scourel::test::kRootCache);
  }

 private:
  std::optional<scourel::test::CanaryTree> decoy_;
};

}  // namespace

int wmain(int argc, wchar_t** argv) {
  const std::wstring problem = scourel::test::SandboxProblem();
  if (!problem.empty()) {
    std::fwprintf(stderr, L"refusing to run outside the test sandbox: %ls\n", problem.c_str());
    std::fwprintf(stderr, L"run the tests with scripts/test (or ctest in a build folder)\n");
    return 3;
  }
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new CurrentDriveDecoy);
  return RUN_ALL_TESTS();
}
