// Refuses to run tests outside the build's throwaway Wine prefix.
#pragma once

#include <string>

namespace scourel::test {

// Empty when the process runs inside the sandbox; otherwise why not.
std::wstring SandboxProblem();

}  // namespace scourel::test
