// The name a file is given before it is deleted: every character of its name
// becomes "x" except the last point, so only the name's length and the place
// of its extension survive.
#pragma once

#include <string>

namespace scourel {

// Pure text: "C:\a\report.final.docx" -> "C:\a\xxxxxxxxxxxx.xxxx".
std::wstring ObscuredPath(const std::wstring& path);

}  // namespace scourel
