// Runs overseer.exe with its output captured, and stands in for a worker
// that never answers.
#pragma once

#include <string>

#include "support/worker_harness.h"

namespace scourel::test {

struct OverseerRun {
  int exitCode = -1;  // -1: did not end within the limit (then killed)
  std::string out, err;
  unsigned elapsedMs = 0;
};

// arguments: everything after the program name.
OverseerRun RunOverseer(const std::wstring& arguments, unsigned limitMs = 120000);

// A SCOUREL_CLASS window that takes every command and replies to none; its
// window procedure takes hangMs over each.
class SilentWorker : public WindowThread {
 public:
  explicit SilentWorker(unsigned hangMs);
};

}  // namespace scourel::test
