// Runs overseer.exe with its output captured, from a worker's install root.
#pragma once

#include <string>

#include "support/fixtures.h"

namespace scourel::test {

struct OverseerRun {
  int exitCode = -1;  // -1: did not end within the limit (then killed)
  std::string out, err;
  unsigned elapsedMs = 0;
};

// arguments: everything after the program name.
OverseerRun RunOverseer(const std::wstring& arguments, unsigned limitMs = 120000);

// A copy of a program as <root>\bin\scourel.exe, so as a worker it reads <root>\Settings.INI.
struct Installed : ScratchDir {
  explicit Installed(const std::wstring& name, const std::wstring& program = L"scourel.exe")
      : ScratchDir((CloseRunningWorkers(), name)), exe(InstallCopy(path(), program)) {}
  ~Installed() { CloseRunningWorkers(); }
  std::wstring Worker(const std::wstring& rest) const { return L"--worker \"" + exe + L"\" " + rest; }
  const std::wstring exe;
};

}  // namespace scourel::test
