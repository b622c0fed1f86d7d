// Runs overseer.exe from the test program's folder with its output captured,
// and stands in for a worker that never answers.
#pragma once

#include <string>
#include <thread>

#include "common/unique_handle.h"
#include "support/fixtures.h"

namespace scourel::test {

struct OverseerRun {
  int exitCode = -1;  // -1: did not end within the limit (then killed)
  std::string out;
  std::string err;
  unsigned elapsedMs = 0;
};

// arguments: everything after the program name.
OverseerRun RunOverseer(const std::wstring& arguments, unsigned limitMs = 120000);

// A SCOUREL_CLASS window on a thread of this process that takes every
// command and replies to none. With hangMs, its window procedure also takes
// that long over each command.
class SilentWorker {
 public:
  explicit SilentWorker(unsigned hangMs = 0);
  ~SilentWorker();
  SilentWorker(const SilentWorker&) = delete;
  SilentWorker& operator=(const SilentWorker&) = delete;
  HWND window() const { return window_; }

 private:
  std::thread thread_;
  HWND window_ = nullptr;
  UniqueHandleKernel ready_;
};

}  // namespace scourel::test
