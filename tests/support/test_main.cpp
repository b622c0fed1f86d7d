// Entry of every test program: checks the sandbox before any test runs.
#include <cstdio>

#include <gtest/gtest.h>

#include "support/sandbox_guard.h"

int wmain(int argc, wchar_t** argv) {
  const std::wstring problem = scourel::test::SandboxProblem();
  if (!problem.empty()) {
    std::fwprintf(stderr, L"refusing to run outside the test sandbox: %ls\n", problem.c_str());
    std::fwprintf(stderr, L"run the tests with scripts/test (or ctest in a build folder)\n");
    return 3;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
