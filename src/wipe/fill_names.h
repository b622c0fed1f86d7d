// Where a free-space wipe puts its fill: files named from "XE8AQU.tmp" and
// the folder "$$XE8AQU" at the volume root. Nothing else is ever created or
// removed by a wipe.
#pragma once

#include <cstdint>
#include <string>

namespace scourel {

// X:\XE8AQU.tmp, then X:\XE8AQU1.tmp, X:\XE8AQU2.tmp, ...
std::wstring FillFilePath(wchar_t letter, std::uint32_t index);
// X:\$$XE8AQU
std::wstring FillFolderPath(wchar_t letter);

// Removes every fill file at the root and the fill folder with all it holds;
// returns how many files went.
std::uint32_t RemoveFillLeftovers(wchar_t letter);
// Removes what a folder holds (files and folders, never through a link), then
// the folder itself.
std::uint32_t RemoveFolderTree(const std::wstring& folder);

}  // namespace scourel
