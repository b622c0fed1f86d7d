// Name and path tests of the junk-file and shortcut walks. Pure text, no
// system state, so they test without a disk.
#pragma once

#include <string>
#include <string_view>

namespace scourel {

// The text after the last "."; empty when the name has no dot.
std::wstring_view ExtensionOf(std::wstring_view name);
// "log" in any case after the last dot.
bool IsLogFileName(std::wstring_view name);
// Folders the log walk never enters: ".", "..", "system", "System32",
// "SysWOW64", "winsxs", compared with case ("SYSTEM32" is entered).
bool IsLogWalkSkippedFolder(std::wstring_view name);

// The drive letter part of a path: the text before its first ":" (the whole
// text when there is none).
std::wstring DriveOf(std::wstring_view path);
// The path cut at its last backslash (the whole path when there is none).
std::wstring ParentOf(std::wstring_view path);

// True when `part` occurs in `text` at a position after the first character.
bool ContainsAfterFirst(std::wstring_view text, std::wstring_view part);
// ".lnk" or ".LNK" (only those two spellings) after the first character.
bool HasShortcutMark(std::wstring_view name);
// "Windows\system32" -> "Windows\Sysnative", every occurrence, with case.
std::wstring SysnativeTarget(std::wstring_view target);

// Lower-case copy, for comparing paths the way the file system does.
std::wstring PathKey(std::wstring_view path);

}  // namespace scourel
