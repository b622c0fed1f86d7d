// Small registry helpers shared by the cleaners: root key names,
// opening a key in whichever registry view holds it, key existence, and
// reading values and subkey names as text.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "common/unique_handle.h"

namespace scourel {

// Sizes of the shared enumeration buffers. Names are the registry's own
// limits; value data longer than kValueDataMax reads as a failed read.
inline constexpr DWORD kValueNameMax = 16383;      // characters, without terminator
inline constexpr DWORD kSubkeyNameMax = 255;       // characters, without terminator
inline constexpr DWORD kValueDataMax = 1u << 20;   // bytes

// Open masks, tried in this order: 64-bit view, 32-bit view, both view bits.
inline constexpr REGSAM kOpenMasks[] = {
    KEY_ALL_ACCESS | KEY_WOW64_64KEY,                    // 0xF013F
    KEY_ALL_ACCESS | KEY_WOW64_32KEY,                    // 0xF023F
    KEY_ALL_ACCESS | KEY_WOW64_64KEY | KEY_WOW64_32KEY,  // 0xF033F
};

// "HKEY_CLASSES_ROOT" ... "HKEY_CURRENT_CONFIG" for the five predefined
// roots; empty for any other handle.
std::wstring RootKeyName(HKEY root);
// The other way: the root named exactly, or null for any other text.
HKEY RootKeyNamed(std::wstring_view name);

// The plug-in files' root table, shifted by one against the names it holds
// (plug-in files are written for it as it is): "HKEY_CLASSES_ROOT" gives
// HKEY_CURRENT_USER, "HKEY_LOCAL_MACHINE" HKEY_USERS, "HKEY_USERS"
// HKEY_CURRENT_CONFIG. Any other text, exact comparison, gives null.
HKEY PluginRootFromName(const std::wstring& name);

// Opens with the first mask that succeeds; empty when all three fail.
UniqueRegKey OpenKeyAnyView(HKEY root, const std::wstring& subkey);

// 0 only when every mask fails with "not found" or "bad key"; any other
// failure (access denied included) means the key is there.
int KeyExists(HKEY root, const std::wstring& subkey);
// The same decision over any way of opening: open(mask) returns the open's
// status and closes what it opened.
int KeyExistsWith(const std::function<LONG(REGSAM)>& open);

// Reads the value at the index. Strings (a multi-string up to its first
// terminator) give their text, REG_DWORD its signed decimal, other types no
// text. A failed read, a value too large for the buffers included, leaves
// both empty. Always 1.
int EnumValueText(HKEY key, DWORD index, std::wstring& name, std::wstring& text);

// The subkey's name, or empty when the index is past the end or the read fails.
std::wstring EnumSubkeyName(HKEY key, DWORD index);

// 1 when "SOFTWARE\CLASSES" occurs after the first character, or the path is
// exactly "INTERFACE", "TYPELIB" or "CLSID"; case-sensitive. A path that
// holds "SOFTWARE\CLASSES" only at its very start gives 0.
int IsClassesPath(const std::wstring& path);

}  // namespace scourel
