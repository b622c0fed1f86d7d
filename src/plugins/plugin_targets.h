// What a plug-in entry points at, and the entries no plug-in may make the
// worker act on. Pure: the system's folders come in as data, so every rule
// tests without a disk or a registry.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "common/win.h"
#include "plugins/plugin_format.h"

namespace scourel {

// Folder tokens a "DeleteFile" value may start with: the text before its
// first "\" must be one of them exactly, case included. An entry that starts
// any other way, a full path included, is refused: a plug-in reaches only
// what lies below the folders these name.
struct FolderToken {
  std::wstring_view token;
  int csidl;
};
inline constexpr FolderToken kFolderTokens[] = {
    {L"%AppData%", CSIDL_APPDATA},
    {L"%LocalAppData%", CSIDL_LOCAL_APPDATA},
    {L"%Personal%", CSIDL_PERSONAL},
    {L"%ProgramFiles%", CSIDL_PROGRAM_FILES},
    {L"%CommonAppData%", CSIDL_COMMON_APPDATA},
    {L"%UserProfile%", CSIDL_PROFILE},
    {L"%Windows%", CSIDL_WINDOWS},
    {L"%SystemDrive%", CSIDL_WINDOWS},  // the Windows folder cut at its last "\"
};
inline constexpr size_t kFolderTokenCount = std::size(kFolderTokens);

// The system's folders as the rules need them; an empty string is a folder
// the system does not have.
struct PluginFolders {
  std::array<std::wstring, kFolderTokenCount> tokens;  // in kFolderTokens order
  std::wstring windows;
  std::wstring profile;                    // the user's own profile
  std::vector<std::wstring> programFiles;  // both views, and their common files
  std::vector<std::wstring> special;       // shell folders that must never go whole
};

struct RegistryTarget {
  HKEY root = nullptr;
  std::wstring subkey;
  std::wstring valueName;  // value entries only
};

struct FileTarget {
  std::wstring path;      // absolute and normalised: no ".", "..", or doubled "\"
  size_t baseLength = 0;  // leading characters that are the token's folder
  bool wildcard = false;  // the last part holds "*" or "?"
};

struct EntryTarget {
  std::string_view refusal;  // why the entry is not acted on; empty when it is
  RegistryTarget registry;   // key and value entries
  FileTarget file;           // file entries
};

// Key entries: the text before the first "\" goes through the plug-in root
// table; a name it does not know leaves the whole text under
// HKEY_CURRENT_USER. Value entries: the key path is the text before the
// first ",", the value name the rest (empty without a comma).
RegistryTarget ParseKeyEntry(std::wstring_view text);
RegistryTarget ParseValueEntry(std::wstring_view text);

// The token expanded, "/" read as "\", "." and ".." resolved; no check.
// Empty when the first part is no token or the system lacks its folder.
std::wstring ExpandFileEntry(std::wstring_view text, const PluginFolders& folders);

// Everything the worker does with an entry starts here: the target, or why
// there is none.
EntryTarget ResolveEntry(const PluginEntry& entry, const PluginFolders& folders);

// The names of the refusals, in the order they are tried; key entries and
// file entries have their own tables.
std::vector<std::string_view> KeyRefusals();
std::vector<std::string_view> FileRefusals();

// "CON", "nul.txt", "COM1" ...: names Windows opens as devices.
bool IsDeviceName(std::wstring_view name);
// A pattern that matches every name: only "*", "?" and ".", and a "*".
bool MatchesAll(std::wstring_view pattern);
// The file-name test of a wildcard: "*" any run, "?" one character, case
// ignored; "*.*" matches every name.
bool MatchesPattern(std::wstring_view name, std::wstring_view pattern);

}  // namespace scourel
