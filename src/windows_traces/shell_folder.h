// The shell's folders by CSIDL number.
#pragma once

#include <string>

#include "common/win.h"

namespace scourel {

// SHGetFolderPathW for the current user; empty when the shell has none.
inline std::wstring ShellFolderPath(int csidl) {
  wchar_t path[MAX_PATH] = {};
  if (FAILED(::SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path))) return {};
  return path;
}

}  // namespace scourel
