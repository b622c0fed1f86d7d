// Sets the current directory for as long as it lives: the worker looks some
// things up relative to its own, so overseer measures from there.
#pragma once

#include <string>

#include "common/win.h"

namespace overseer {

class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::wstring& folder) {
    wchar_t previous[MAX_PATH] = {};
    if (::GetCurrentDirectoryW(MAX_PATH, previous)) previous_ = previous;
    ::SetCurrentDirectoryW(folder.c_str());
  }
  ~CurrentDirectory() {
    if (!previous_.empty()) ::SetCurrentDirectoryW(previous_.c_str());
  }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;

 private:
  std::wstring previous_;
};

}  // namespace overseer
