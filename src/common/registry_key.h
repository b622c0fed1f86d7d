// Opening a registry key: the handle, owned, together with the status of the
// open, so that a failed open leaves nothing to release and callers that care
// can tell "missing" from "denied".
#pragma once

#include <string>
#include <system_error>

#include "common/status.h"
#include "common/unique_handle.h"

namespace scourel {

struct OpenedKey {
  UniqueRegKey key;
  LSTATUS status = ERROR_INVALID_HANDLE;

  explicit operator bool() const noexcept { return key.valid(); }
  HKEY get() const noexcept { return key.get(); }
  std::error_code error() const noexcept { return Win32Error(static_cast<DWORD>(status)); }
};

// RegOpenKeyExW with the given access; on failure the key is empty and the
// status says why.
[[nodiscard]] OpenedKey OpenRegKey(HKEY root, const std::wstring& path, REGSAM access);

struct KeyCounts {
  DWORD values = 0;
  DWORD subkeys = 0;
};
// RegQueryInfoKeyW's value and subkey counts; zeros when the query fails.
KeyCounts CountsOf(HKEY key);

}  // namespace scourel
