// Entry of every test program: checks the sandbox before any test runs.
#include <cstdio>

#include <gtest/gtest.h>

#include "support/browser_fixture.h"
#include "support/sandbox_guard.h"

namespace {

// Every test runs with its current directory on C:, where a worker's steps
// for a missing Chrome profile land ("C:\Cache", "C:\Login Data", ...):
// decoys planted there must come through every test unchanged.
class CurrentDriveDecoy : public testing::Environment {
 public:
  void SetUp() override {
    ::SetCurrentDirectoryW(L"C:\\");
    scourel::test::PlantDriveRootTraces();
  }
  void TearDown() override {
    EXPECT_EQ(scourel::test::DriveRootDamage(), L"");
    scourel::test::RemoveDriveRootTraces();
  }
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
