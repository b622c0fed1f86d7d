// Runs overseer.exe with its output captured, and stands in for a worker
// that never answers.
#pragma once

#include <string>
#include <thread>

#include "common/unique_handle.h"

namespace scourel::test {

struct OverseerRun {
  int exitCode = -1;  // -1: did not end within the limit (then killed)
  std::string out, err;
  unsigned elapsedMs = 0;
};

// arguments: everything after the program name.
OverseerRun RunOverseer(const std::wstring& arguments, unsigned limitMs = 120000);

// A SCOUREL_CLASS window on a thread of its own that takes every command and
// replies to none; with hangMs its window procedure takes that long over each.
class SilentWorker {
 public:
  explicit SilentWorker(unsigned hangMs);
  ~SilentWorker();

 private:
  std::thread thread_;
  HWND window_ = nullptr;
};

}  // namespace scourel::test
