// Failures the protocol cannot carry are still known inside: system calls
// report them as std::error_code, built from GetLastError or a registry
// LSTATUS, so callers and tests can tell what went wrong.
#pragma once

#include <string>
#include <system_error>

#include "common/win.h"

namespace scourel {

[[nodiscard]] inline std::error_code Win32Error(DWORD code) noexcept {
  return {static_cast<int>(code), std::system_category()};
}

// The calling thread's last error, as a code (success when there is none).
[[nodiscard]] inline std::error_code LastError() noexcept { return Win32Error(::GetLastError()); }

// The system's own text for an error number, without the trailing line break.
std::wstring SystemMessage(DWORD code);

}  // namespace scourel
