// The fix step's key deletion. It takes away at most one direct child per
// level before it tries the key itself: a key with several subkeys is only
// partly deleted by one call, which then reports failure. Callers rely on
// exactly this much and no more.
#pragma once

#include <string>

#include "common/win.h"
#include "task/cleaner_io.h"

namespace scourel {

// Paths are held to 519 characters; a child whose path would be longer is
// left in place rather than cut short (a cut path could name another key).
inline constexpr std::size_t kDeletePathChars = 519;

// 0 when root\path is gone, -1 otherwise. Every open and delete goes through
// the registry view given (0, KEY_WOW64_32KEY or KEY_WOW64_64KEY).
int DeleteKeyTree(CleanerIo& io, HKEY root, const std::wstring& path, REGSAM view = 0);

}  // namespace scourel
