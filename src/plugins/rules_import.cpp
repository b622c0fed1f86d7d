#include "plugins/rules_import.h"

#include <set>

#include "common/text.h"

namespace scourel {

namespace {

// Rules variables with the token that names the same folder. On 64-bit
// Windows every one of them is the shell folder behind the token.
struct VariableToken {
  std::wstring_view variable;
  std::wstring_view token;
};
constexpr VariableToken kVariables[] = {
    {L"%AppData%", L"%AppData%"},           {L"%LocalAppData%", L"%LocalAppData%"},
    {L"%Documents%", L"%Personal%"},        {L"%ProgramFiles%", L"%ProgramFiles%"},
    {L"%CommonAppData%", L"%CommonAppData%"}, {L"%ProgramData%", L"%CommonAppData%"},
    {L"%AllUsersProfile%", L"%CommonAppData%"}, {L"%UserProfile%", L"%UserProfile%"},
    {L"%WinDir%", L"%Windows%"},            {L"%SystemRoot%", L"%Windows%"},
    {L"%SystemDrive%", L"%SystemDrive%"},
};

// Rules roots with the plug-in root name that opens the same key: the
// plug-in table is shifted by one, and reaches neither HKLM nor HKCR.
struct RootName {
  std::wstring_view rules;
  std::wstring_view plugin;
};
constexpr RootName kRoots[] = {
    {L"HKCU", L"HKEY_CLASSES_ROOT"},   {L"HKEY_CURRENT_USER", L"HKEY_CLASSES_ROOT"},
    {L"HKU", L"HKEY_LOCAL_MACHINE"},   {L"HKEY_USERS", L"HKEY_LOCAL_MACHINE"},
    {L"HKCC", L"HKEY_USERS"},          {L"HKEY_CURRENT_CONFIG", L"HKEY_USERS"},
};

std::vector<std::wstring_view> SplitAt(std::wstring_view text, wchar_t separator) {
  std::vector<std::wstring_view> parts;
  for (;;) {
    const size_t at = text.find(separator);
    parts.push_back(Trimmed(text.substr(0, at)));
    if (at == std::wstring_view::npos) return parts;
    text.remove_prefix(at + 1);
  }
}

// "FileKey12" -> "FileKey"
std::wstring_view BaseOf(std::wstring_view name) {
  while (!name.empty() && name.back() >= L'0' && name.back() <= L'9') name.remove_suffix(1);
  return name;
}

struct Converted {
  std::vector<PluginEntry> entries;
  std::string reason;  // set when nothing is converted
};

Converted Refuse(std::string reason) { return {{}, std::move(reason)}; }

Converted FileKey(std::wstring_view value) {
  const std::vector<std::wstring_view> fields = SplitAt(value, L'|');
  std::wstring_view path = fields[0];
  while (!path.empty() && path.back() == L'\\') path.remove_suffix(1);
  bool recurse = false, removeSelf = false;
  for (size_t i = 2; i < fields.size(); ++i) {
    if (SameName(fields[i], L"RECURSE")) {
      recurse = true;
    } else if (SameName(fields[i], L"REMOVESELF")) {
      removeSelf = true;
    } else {
      return Refuse("an unknown flag");
    }
  }
  const size_t close = path.size() > 1 && path[0] == L'%' ? path.find(L'%', 1) : std::wstring_view::npos;
  if (close == std::wstring_view::npos) return Refuse("the path does not start with a folder variable");
  const std::wstring_view variable = path.substr(0, close + 1);
  const std::wstring_view rest = path.substr(close + 1);
  const VariableToken* mapped = nullptr;
  for (const VariableToken& known : kVariables) {
    if (SameName(known.variable, variable)) mapped = &known;
  }
  if (!mapped) return Refuse("the variable " + std::string(variable.begin(), variable.end()) + " has no plug-in token");
  if (!rest.empty() && rest.front() != L'\\') return Refuse("text joined to the folder variable");
  if (rest.find(L'%') != std::wstring_view::npos) return Refuse("a variable inside the path");
  if (rest.find_first_of(L"*?") != std::wstring_view::npos) return Refuse("a wildcard in the folder");
  std::vector<std::wstring_view> patterns;
  if (fields.size() > 1) {
    for (const std::wstring_view pattern : SplitAt(fields[1], L';')) {
      if (!pattern.empty()) patterns.push_back(pattern);
    }
  }
  if (patterns.empty()) return Refuse("no file pattern");

  const std::wstring folder = std::wstring(mapped->token) + std::wstring(rest);
  Converted converted;
  // A plug-in's folder entry takes every file below the folder and then the
  // folders themselves: only RECURSE with REMOVESELF over every file does that.
  if (recurse || removeSelf) {
    if (!recurse) return Refuse("REMOVESELF without RECURSE keeps the subfolders a plug-in would take");
    if (!removeSelf) return Refuse("RECURSE without REMOVESELF keeps the folders a plug-in would take");
    if (patterns.size() != 1 || !MatchesAll(patterns[0])) {
      return Refuse("RECURSE with a pattern: a plug-in's folder entry takes every file");
    }
    converted.entries.push_back({EntryKind::kFile, 0, folder});
    return converted;
  }
  for (const std::wstring_view pattern : patterns) {
    converted.entries.push_back({EntryKind::kFile, 0, folder + L"\\" + std::wstring(pattern)});
  }
  return converted;
}

Converted RegKey(std::wstring_view value) {
  const size_t bar = value.find(L'|');
  const std::wstring_view path = Trimmed(value.substr(0, bar));
  const size_t slash = path.find(L'\\');
  const std::wstring_view root = path.substr(0, slash);
  const RootName* mapped = nullptr;
  for (const RootName& known : kRoots) {
    if (SameName(known.rules, root)) mapped = &known;
  }
  if (!mapped) return Refuse("the root " + std::string(root.begin(), root.end()) + " is out of a plug-in's reach");
  const std::wstring_view rest = slash == std::wstring_view::npos ? std::wstring_view() : path.substr(slash + 1);
  if (rest.empty()) return Refuse("a root key alone");
  const std::wstring key = std::wstring(mapped->plugin) + L"\\" + std::wstring(rest);
  if (bar == std::wstring_view::npos) return {{{EntryKind::kKey, 0, key}}, {}};
  // A plug-in's value entry ends its key path at the first comma.
  if (rest.find(L',') != std::wstring_view::npos) return Refuse("a comma in the key path of a value");
  return {{{EntryKind::kValue, 0, key + L"," + std::wstring(value.substr(bar + 1))}}, {}};
}

// What the INI reader would hand back unchanged.
bool StoresAsIs(std::wstring_view value) {
  if (value.empty() || value.size() >= kValueBufferChars || value != Trimmed(value)) return false;
  if (value.size() >= 2 && (value.front() == L'"' || value.front() == L'\'') && value.back() == value.front()) {
    return false;
  }
  for (const wchar_t c : value) {
    if (c < 0x20) return false;
  }
  return true;
}

std::wstring FileNameFor(std::wstring_view section) {
  if (section.size() >= 2 && section.substr(section.size() - 2) == L" *") section.remove_suffix(2);
  std::wstring name;
  for (const wchar_t c : section) {
    name += (c < 0x20 || std::wstring_view(L"\\/:*?\"<>|").find(c) != std::wstring_view::npos) ? L'_' : c;
  }
  while (!name.empty() && (name.back() == L' ' || name.back() == L'.')) name.pop_back();
  while (!name.empty() && name.front() == L' ') name.erase(0, 1);
  if (name.empty()) name = L"plugin";
  if (IsDeviceName(name)) name.insert(0, L"_");
  return name;
}

class SectionImport {
 public:
  SectionImport(const IniSection& section, const PluginFolders& folders) : folders_(folders) {
    result_.name = section.name;
    for (const IniEntry& entry : section.entries) {
      const std::wstring_view base = BaseOf(entry.name);
      if (SameName(base, L"ExcludeKey")) {
        (SameName(SplitAt(entry.value, L'|')[0], L"REG") ? registryExclusion_ : fileExclusion_) = entry.name;
      }
    }
    for (const IniEntry& entry : section.entries) Take(entry);
  }

  ImportedSection Finish(std::set<std::wstring>& usedNames) {
    size_t parts = 0;
    for (const EntryFamily& family : kEntryFamilies) {
      const size_t count = Count(family.kind);
      parts = std::max(parts, (count + static_cast<size_t>(family.bound) - 1) / static_cast<size_t>(family.bound));
    }
    const std::wstring base = FileNameFor(result_.name);
    for (size_t part = 0; part < parts; ++part) {
      ImportedPlugin plugin;
      plugin.definition.hasInfo = true;
      plugin.definition.description = result_.name + (part ? L" (" + std::to_wstring(part + 1) + L")" : L"");
      for (const EntryFamily& family : kEntryFamilies) {
        int number = 0;
        for (size_t i = 0, seen = 0; i < entries_.size(); ++i) {
          if (entries_[i].kind != family.kind) continue;
          if (seen++ / static_cast<size_t>(family.bound) != part) continue;
          plugin.definition.entries.push_back({family.kind, ++number, entries_[i].value});
        }
      }
      plugin.fileName = UniqueName(base + (part ? L" (" + std::to_wstring(part + 1) + L")" : L""), usedNames);
      result_.plugins.push_back(std::move(plugin));
    }
    return std::move(result_);
  }

 private:
  void Take(const IniEntry& entry) {
    const std::wstring_view base = BaseOf(entry.name);
    const bool file = SameName(base, L"FileKey");
    if (file || SameName(base, L"RegKey")) {
      const std::wstring& exclusion = file ? fileExclusion_ : registryExclusion_;
      if (!exclusion.empty()) {
        Skip(entry.name, "the section excludes some of it (" + Narrow(exclusion) + "), which a plug-in cannot");
        return;
      }
      const Converted converted = file ? FileKey(entry.value) : RegKey(entry.value);
      if (!converted.reason.empty()) Skip(entry.name, converted.reason);
      for (const PluginEntry& made : converted.entries) Check(entry.name, made);
    } else if (SameName(base, L"ExcludeKey")) {
      Skip(entry.name, "an exclusion: a plug-in deletes all it names");
    } else if (SameName(base, L"Detect") || SameName(base, L"DetectFile") || SameName(base, L"DetectOS") ||
               SameName(base, L"SpecialDetect")) {
      Skip(entry.name, "a detection rule: a plug-in applies on every system");
    } else if (SameName(base, L"Warning")) {
      Skip(entry.name, "a warning: plug-ins show none");
    } else if (!SameName(base, L"LangSecRef") && !SameName(base, L"Section") && !SameName(base, L"Default")) {
      Skip(entry.name, "not a cleaning rule");
    }
  }

  void Check(const std::wstring& key, const PluginEntry& made) {
    if (!StoresAsIs(made.value)) {
      Skip(key, "cannot be stored as a plug-in value as it stands");
      return;
    }
    const EntryTarget target = ResolveEntry(made, folders_);
    if (!target.refusal.empty()) {
      Skip(key, "the worker refuses it: " + std::string(target.refusal));
      return;
    }
    entries_.push_back(made);
  }

  size_t Count(EntryKind kind) const {
    size_t count = 0;
    for (const PluginEntry& entry : entries_) count += entry.kind == kind;
    return count;
  }

  static std::wstring UniqueName(const std::wstring& wanted, std::set<std::wstring>& used) {
    auto folded = [](std::wstring name) {
      for (wchar_t& c : name) c = (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c;
      return name;
    };
    std::wstring name = wanted;
    for (int n = 2; used.count(folded(name)); ++n) name = wanted + L" [" + std::to_wstring(n) + L"]";
    used.insert(folded(name));
    return name;
  }

  void Skip(const std::wstring& key, std::string reason) { result_.skipped.push_back({key, std::move(reason)}); }

  const PluginFolders& folders_;
  ImportedSection result_;
  std::vector<PluginEntry> entries_;
  std::wstring fileExclusion_, registryExclusion_;
};

}  // namespace

std::vector<ImportedSection> ImportRules(std::wstring_view text, const PluginFolders& folders) {
  std::vector<ImportedSection> imported;
  std::set<std::wstring> usedNames;
  const std::vector<IniSection> sections = ParseIni(text);
  // The first section holds what came before any header: no rules.
  for (size_t i = 1; i < sections.size(); ++i) {
    imported.push_back(SectionImport(sections[i], folders).Finish(usedNames));
  }
  return imported;
}

}  // namespace scourel
