#include "plugins/plugin_targets.h"

#include "common/registry_paths.h"
#include "common/text.h"

namespace scourel {

namespace {

using Parts = std::vector<std::wstring>;

// Windows reads "/" as "\" in file paths; in key paths it belongs to a name.
bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }
bool HasWildcard(std::wstring_view text) { return text.find_first_of(L"*?") != std::wstring_view::npos; }

Parts Split(std::wstring_view text, bool filePath = true) {
  Parts parts;
  size_t start = 0;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i == text.size() || (filePath ? IsSeparator(text[i]) : text[i] == L'\\')) {
      if (i > start) parts.emplace_back(text.substr(start, i - start));
      start = i + 1;
    }
  }
  return parts;
}

std::wstring Join(const Parts& parts, size_t count) {
  std::wstring path = count ? parts[0] : std::wstring();
  for (size_t i = 1; i < count; ++i) path += L"\\" + parts[i];
  return path;
}

bool StartsWith(const Parts& path, const Parts& prefix) {
  if (prefix.empty() || prefix.size() > path.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    if (!SameTextIgnoringCase(path[i], prefix[i])) return false;
  }
  return true;
}

// "C:\..." or "\\server\share\...": the root as the first part, then the
// rest with "." and ".." resolved the way Windows does (".." stops at the
// root). Empty for anything else.
Parts Normalised(std::wstring_view path) {
  Parts raw = Split(path);
  Parts parts;
  size_t rest = 1;
  if (path.size() >= 2 && ((path[0] | 0x20) >= L'a' && (path[0] | 0x20) <= L'z') && path[1] == L':' &&
      (path.size() == 2 || IsSeparator(path[2]))) {
    parts.push_back(raw[0]);
  } else if (path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1]) && raw.size() >= 2 &&
             raw[0] != L"?" && raw[0] != L".") {
    parts.push_back(L"\\\\" + raw[0] + L"\\" + raw[1]);
    rest = 2;
  } else {
    return {};
  }
  for (size_t i = rest; i < raw.size(); ++i) {
    if (raw[i] == L".") continue;
    if (raw[i] == L"..") {
      if (parts.size() > 1) parts.pop_back();
      continue;
    }
    parts.push_back(raw[i]);
  }
  return parts;
}

// The system folders below Windows that no plug-in may reach into.
constexpr std::wstring_view kWindowsSystemFolders[] = {
    L"System",   L"System32", L"SysWOW64",      L"Sysnative", L"WinSxS", L"servicing", L"Boot",
    L"Fonts",    L"assembly", L"Microsoft.NET", L"inf",       L"Installer", L"SystemApps", L"SystemResources",
};

// One file entry on its way through the refusal table.
struct FileCandidate {
  std::wstring_view text;
  const PluginFolders& folders;
  int token = -1;          // index in kFolderTokens
  std::wstring_view rest{};  // after the token
  Parts parts{};           // the expanded path, normalised; the root first
  bool wildcard = false;

  const std::wstring& last() const { return parts.back(); }
  // Deleting this takes `folder` with it: it is the folder or lies above it.
  bool Covers(const Parts& folder) const { return !wildcard && StartsWith(folder, parts); }
  bool DirectlyIn(const Parts& folder) const { return parts.size() == folder.size() + 1 && StartsWith(parts, folder); }
  bool TakesAllOf(const Parts& folder) const { return wildcard && DirectlyIn(folder) && MatchesAll(last()); }
  bool Within(const Parts& folder) const { return StartsWith(parts, folder); }
};

template <typename Test>
bool AnyFolder(const std::vector<std::wstring>& folders, Test test) {
  for (const std::wstring& folder : folders) {
    const Parts parts = Normalised(folder);
    if (!parts.empty() && test(parts)) return true;
  }
  return false;
}

bool AnyRestPart(const FileCandidate& c, bool (*test)(std::wstring_view)) {
  for (const std::wstring& part : Split(c.rest)) {
    if (part != L"." && part != L".." && test(part)) return true;
  }
  return false;
}

struct FileRefusal {
  std::string_view name;
  bool (*applies)(const FileCandidate&);
};

// Every shape of "DeleteFile" entry the worker refuses, tried in this order.
// The first rows make sure the path is one the rows below judge correctly:
// what they pass, Windows opens under exactly the name they looked at. The
// rest keep a plug-in from deleting a whole system or user area. Only files
// in a wildcard's own folder match it, so a wildcard is judged by its folder.
const FileRefusal kFileRefusals[] = {
    {"longer than the reader's buffer", [](const FileCandidate& c) { return c.text.size() >= kValueBufferChars; }},
    {"no folder token before the first \\", [](const FileCandidate& c) { return c.token < 0; }},
    {"a token whose folder the system lacks",
     [](const FileCandidate& c) { return c.folders.tokens[static_cast<size_t>(c.token)].empty() || c.parts.empty(); }},
    {"characters no path may hold",
     [](const FileCandidate& c) {
       for (const wchar_t ch : c.rest) {
         if (ch < 0x20 || ch == L'"' || ch == L'<' || ch == L'>' || ch == L'|') return true;
       }
       return false;
     }},
    {"a stream or drive inside the path",
     [](const FileCandidate& c) { return c.rest.find(L':') != std::wstring_view::npos; }},
    {"a part ending in a dot or a space",
     [](const FileCandidate& c) {
       return AnyRestPart(c, [](std::wstring_view part) { return part.back() == L'.' || part.back() == L' '; });
     }},
    {"a short-name alias",
     [](const FileCandidate& c) {
       return AnyRestPart(c, [](std::wstring_view part) {
         const size_t tilde = part.find(L'~');
         return tilde != std::wstring_view::npos && tilde + 1 < part.size() && part[tilde + 1] >= L'0' &&
                part[tilde + 1] <= L'9';
       });
     }},
    {"a device name", [](const FileCandidate& c) { return AnyRestPart(c, IsDeviceName); }},
    {"a wildcard before the last part",
     [](const FileCandidate& c) {
       for (size_t i = 0; i + 1 < c.parts.size(); ++i) {
         if (HasWildcard(c.parts[i])) return true;
       }
       return false;
     }},
    {"a drive root or what lies directly in it", [](const FileCandidate& c) { return c.parts.size() <= 2; }},
    {"the Windows folder or what lies directly in it",
     [](const FileCandidate& c) {
       return AnyFolder({c.folders.windows}, [&](const Parts& f) { return c.Covers(f) || c.DirectlyIn(f); });
     }},
    {"a system folder of Windows or anything in it",
     [](const FileCandidate& c) {
       if (c.folders.windows.empty()) return false;
       for (const std::wstring_view name : kWindowsSystemFolders) {
         const Parts f = Normalised(c.folders.windows + L"\\" + std::wstring(name));
         if (c.Covers(f) || c.Within(f)) return true;
       }
       return false;
     }},
    {"a Program Files folder or what lies directly in it",
     [](const FileCandidate& c) {
       return AnyFolder(c.folders.programFiles, [&](const Parts& f) { return c.Covers(f) || c.DirectlyIn(f); });
     }},
    {"the folder of all profiles or what lies directly in it",
     [](const FileCandidate& c) {
       const Parts profile = Normalised(c.folders.profile);
       if (profile.size() < 2) return false;
       const Parts profiles(profile.begin(), profile.end() - 1);
       return c.Covers(profiles) || (c.wildcard && c.DirectlyIn(profiles));
     }},
    {"a whole profile",
     [](const FileCandidate& c) {
       const Parts profile = Normalised(c.folders.profile);
       if (profile.size() < 2) return false;
       const Parts profiles(profile.begin(), profile.end() - 1);
       // Any folder beside the user's own profile is someone's profile too.
       const bool another = c.parts.size() == profiles.size() + 1 + c.wildcard && c.Within(profiles);
       return c.Covers(profile) || c.TakesAllOf(profile) || (another && (!c.wildcard || MatchesAll(c.last())));
     }},
    {"a whole special folder",
     [](const FileCandidate& c) {
       std::vector<std::wstring> all = c.folders.special;
       all.insert(all.end(), c.folders.tokens.begin(), c.folders.tokens.end());
       return AnyFolder(all, [&](const Parts& f) { return c.Covers(f) || c.TakesAllOf(f); });
     }},
};

// Top-level keys Windows and every program share below a hive's root.
constexpr std::wstring_view kSharedKeys[] = {
    L"Software\\Microsoft",
    L"Software\\Classes",
    L"Software\\Policies",
    L"Software\\Wow6432Node",
    L"Software\\Microsoft\\Windows",
    L"Software\\Microsoft\\Windows\\CurrentVersion",
    L"Software\\Microsoft\\Windows NT",
    L"Software\\Microsoft\\Windows NT\\CurrentVersion",
    L"System\\CurrentControlSet",
};

struct KeyCandidate {
  const PluginEntry& entry;
  const RegistryTarget& target;
  Parts parts;  // the subkey's non-empty parts
  // Below HKEY_USERS the first part is a hive: the rest is as under HKEY_CURRENT_USER.
  Parts inHive() const {
    const size_t skip = target.root == HKEY_USERS ? 1 : 0;
    return parts.size() > skip ? Parts(parts.begin() + static_cast<std::ptrdiff_t>(skip), parts.end()) : Parts();
  }
};

struct KeyRefusal {
  std::string_view name;
  bool (*applies)(const KeyCandidate&);
};

// Every shape of registry entry the worker refuses: what no key path holds,
// and, for keys (which go with all their subkeys), whole hives and the keys
// every program shares. A value entry names one value and passes the rest.
const KeyRefusal kKeyRefusals[] = {
    {"longer than the reader's buffer",
     [](const KeyCandidate& c) { return c.entry.value.size() >= kValueBufferChars; }},
    {"characters no key path may hold",
     [](const KeyCandidate& c) {
       for (const wchar_t ch : c.target.subkey + c.target.valueName) {
         if (ch < 0x20) return true;
       }
       return false;
     }},
    {"a root key itself", [](const KeyCandidate& c) { return c.entry.kind == EntryKind::kKey && c.parts.empty(); }},
    {"a whole hive or top-level key",
     [](const KeyCandidate& c) { return c.entry.kind == EntryKind::kKey && c.inHive().size() <= 1; }},
    {"a key Windows shares with every program",
     [](const KeyCandidate& c) {
       if (c.entry.kind != EntryKind::kKey) return false;
       const std::wstring path = Join(c.inHive(), c.inHive().size());
       for (const std::wstring_view shared : kSharedKeys) {
         if (SameTextIgnoringCase(path, shared)) return true;
       }
       return false;
     }},
};

int TokenIndex(std::wstring_view first) {
  for (size_t i = 0; i < kFolderTokenCount; ++i) {
    if (kFolderTokens[i].token == first) return static_cast<int>(i);
  }
  return -1;
}

EntryTarget ResolveFile(const PluginEntry& entry, const PluginFolders& folders) {
  EntryTarget result;
  FileCandidate c{entry.value, folders};
  const size_t slash = c.text.find(L'\\');
  c.token = TokenIndex(c.text.substr(0, slash));
  if (c.token >= 0) {
    c.rest = slash == std::wstring_view::npos ? std::wstring_view() : c.text.substr(slash + 1);
    c.parts = Normalised(ExpandFileEntry(c.text, folders));
    c.wildcard = !c.parts.empty() && HasWildcard(c.last());
  }
  for (const FileRefusal& row : kFileRefusals) {
    if (row.applies(c)) {
      result.refusal = row.name;
      return result;
    }
  }
  result.file.path = Join(c.parts, c.parts.size());
  result.file.wildcard = c.wildcard;
  // Links are looked for below the part of the path the token gave.
  const Parts base = Normalised(folders.tokens[static_cast<size_t>(c.token)]);
  size_t shared = 0;
  while (shared < base.size() && shared < c.parts.size() && SameTextIgnoringCase(base[shared], c.parts[shared])) ++shared;
  result.file.baseLength = Join(c.parts, shared).size();
  return result;
}

}  // namespace

bool IsDeviceName(std::wstring_view name) {
  std::wstring_view stem = name.substr(0, name.find(L'.'));
  while (!stem.empty() && stem.back() == L' ') stem.remove_suffix(1);
  for (const std::wstring_view device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"}) {
    if (SameTextIgnoringCase(stem, device)) return true;
  }
  const bool numbered = stem.size() == 4 && stem[3] >= L'0' && stem[3] <= L'9';
  return numbered && (SameTextIgnoringCase(stem.substr(0, 3), L"COM") || SameTextIgnoringCase(stem.substr(0, 3), L"LPT"));
}

bool MatchesAll(std::wstring_view pattern) {
  return pattern.find(L'*') != std::wstring_view::npos &&
         pattern.find_first_not_of(L"*?.") == std::wstring_view::npos;
}

bool MatchesPattern(std::wstring_view name, std::wstring_view pattern) {
  if (pattern == L"*.*") return true;
  // Greedy match with one backtrack point: linear for any pattern.
  size_t n = 0, p = 0, starP = std::wstring_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == L'?' || SameTextIgnoringCase(pattern.substr(p, 1), name.substr(n, 1)))) {
      ++n, ++p;
    } else if (p < pattern.size() && pattern[p] == L'*') {
      starP = p++, starN = n;
    } else if (starP != std::wstring_view::npos) {
      p = starP + 1, n = ++starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == L'*') ++p;
  return p == pattern.size();
}

RegistryTarget ParseKeyEntry(std::wstring_view text) {
  RegistryTarget target;
  const size_t slash = text.find(L'\\');
  target.root = PluginRootFromName(std::wstring(text.substr(0, slash)));
  if (target.root) {
    target.subkey = slash == std::wstring_view::npos ? std::wstring() : std::wstring(text.substr(slash + 1));
  } else {
    target.root = HKEY_CURRENT_USER;
    target.subkey = text;
  }
  return target;
}

RegistryTarget ParseValueEntry(std::wstring_view text) {
  const size_t comma = text.find(L',');
  RegistryTarget target = ParseKeyEntry(text.substr(0, comma));
  if (comma != std::wstring_view::npos) target.valueName = text.substr(comma + 1);
  return target;
}

std::wstring ExpandFileEntry(std::wstring_view text, const PluginFolders& folders) {
  const size_t slash = text.find(L'\\');
  const int token = TokenIndex(text.substr(0, slash));
  if (token < 0 || folders.tokens[static_cast<size_t>(token)].empty()) return {};
  const std::wstring_view rest = slash == std::wstring_view::npos ? std::wstring_view() : text.substr(slash + 1);
  const Parts parts = Normalised(folders.tokens[static_cast<size_t>(token)] + L"\\" + std::wstring(rest));
  return Join(parts, parts.size());
}

EntryTarget ResolveEntry(const PluginEntry& entry, const PluginFolders& folders) {
  if (entry.kind == EntryKind::kFile) return ResolveFile(entry, folders);
  EntryTarget result;
  result.registry = entry.kind == EntryKind::kKey ? ParseKeyEntry(entry.value) : ParseValueEntry(entry.value);
  const KeyCandidate candidate{entry, result.registry, Split(result.registry.subkey, false)};
  for (const KeyRefusal& row : kKeyRefusals) {
    if (row.applies(candidate)) {
      result.refusal = row.name;
      break;
    }
  }
  return result;
}

std::vector<std::string_view> KeyRefusals() {
  std::vector<std::string_view> names;
  for (const KeyRefusal& row : kKeyRefusals) names.push_back(row.name);
  return names;
}

std::vector<std::string_view> FileRefusals() {
  std::vector<std::string_view> names;
  for (const FileRefusal& row : kFileRefusals) names.push_back(row.name);
  return names;
}

}  // namespace scourel
