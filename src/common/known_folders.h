// The base folders every cleaner starts from, fetched afresh on each call:
// the shell's folders by CSIDL number, the Windows folder and the temporary
// folder. An empty result means the system has no such folder; callers leave
// the place out rather than start from the root of a drive.
#pragma once

#include <string>

#include "common/win.h"

namespace scourel {

// SHGetFolderPathW for the current user (no token, current path).
std::wstring ShellFolderPath(int csidl);
// SHGetSpecialFolderPathW, without creating the folder.
std::wstring SpecialFolder(int csidl);
// GetWindowsDirectoryW as it stands (no trailing backslash unless a drive root).
std::wstring WindowsDirectory();
// The same with exactly one trailing backslash.
std::wstring WindowsDirectoryWithBackslash();
// GetTempPathW, which ends in a backslash.
std::wstring TempFolder();
// The drive letter of the Windows folder: the text before its first ":".
std::wstring WindowsDrive();

// The folder with a backslash appended unless it already ends in one.
std::wstring WithBackslash(std::wstring folder);

}  // namespace scourel
