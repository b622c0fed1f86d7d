// COM for the calling thread, for as long as the object lives.
#pragma once

#include "common/win.h"

namespace scourel {

class ScopedComInit {
 public:
  ScopedComInit() noexcept : result_(::CoInitialize(nullptr)) {}
  ~ScopedComInit() {
    // Every successful CoInitialize (S_FALSE included) needs its CoUninitialize.
    if (SUCCEEDED(result_)) ::CoUninitialize();
  }
  ScopedComInit(const ScopedComInit&) = delete;
  ScopedComInit& operator=(const ScopedComInit&) = delete;

 private:
  HRESULT result_;
};

}  // namespace scourel
