// Plants the browser fixture's profiles for the demo, or removes them again
// (--remove), inside the sandbox's profile. No held file and no link: the
// demo's scan shows the rows and the caches they hold.
#include <cstdio>
#include <cwchar>

#include "support/browser_fixture.h"
#include "support/sandbox_guard.h"

int wmain(int argc, wchar_t** argv) {
  using namespace scourel::test;
  if (const std::wstring problem = SandboxProblem(); !problem.empty()) {
    std::fwprintf(stderr, L"plant_browser_traces: refusing to run outside the sandbox: %ls\n", problem.c_str());
    return 3;
  }
  RemoveBrowserRoots();
  if (argc > 1 && std::wcscmp(argv[1], L"--remove") == 0) return 0;
  PlantBrowserTraces(BrowserScenario{});
  return 0;
}
