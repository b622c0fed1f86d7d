// Which file a name really reaches: the final path of an opened handle, and
// names compared the way Windows compares them. A link (a symbolic link, a
// junction, or under Wine a unix symlink that shows plain attributes) makes
// the final path differ from the name that was opened.
#pragma once

#include <string>

#include "common/win.h"

namespace scourel {

// GetFileNameByHandle's DOS name of an open handle, "\\?\" prefix included;
// empty when the system cannot tell.
std::wstring FinalPathOf(HANDLE handle);
// Opens an existing file or folder for its attributes only (links followed)
// and returns its final path; empty when it does not open.
std::wstring FinalPathOf(const std::wstring& path);

// True when `name` and `finalPath` name the same place: both without their
// "\\?\" (or "\\?\UNC\") prefix and closing backslashes, `name` with its
// short components made long, compared ordinally without case.
bool SamePathName(const std::wstring& name, const std::wstring& finalPath);

}  // namespace scourel
