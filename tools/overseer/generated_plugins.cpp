#include "overseer/generated_plugins.h"

#include <set>

#include "browsers/browser_steps.h"
#include "common/text.h"
#include "common/unique_handle.h"
#include "overseer/local_state.h"
#include "overseer/report_output.h"
#include "overseer/running_browsers.h"
#include "overseer/whole_file.h"
#include "plugins/plugin_files.h"
#include "plugins/plugin_targets.h"

namespace overseer {

namespace {

using namespace scourel;
namespace p = scourel::protocol;

bool AtOrBelow(const std::wstring& path, const std::wstring& folder) {
  return SameTextIgnoringCase(path, folder) || Below(path, folder).has_value();
}

bool HoldsAfterFirst(std::wstring_view text, std::wstring_view word) {
  const size_t at = text.find(word);
  return at != std::wstring_view::npos && at >= 1;
}

constexpr wchar_t kFirefoxProfiles[] = L"\\Mozilla\\Firefox\\Profiles\\";

// The places the worker's built-in browser steps take, as this system has
// them: a generated entry never names them again, so nothing is counted twice.
class BuiltInPlaces {
 public:
  BuiltInPlaces() {
    TaskTotals totals;
    const TaskContext context{totals, SystemCleanerIo(), nullptr, 0, Mode::kMeasure, nullptr, L"", L""};
    const std::wstring local = LocalAppData(), roaming = RoamingAppData(), firefox = FirefoxProfileName();
    const std::wstring extra = SearchesExtraChromeProfile(SystemVersion()) ? FindExtraChromeProfile(context) : L"";
    const bool firefoxUsable = IsUsableProfileName(firefox);
    for (const p::BrowserCategorySpec& spec : p::kBrowserCategories) {
      for (const BrowserStep& step : StepsOf(spec.category).steps) {
        std::wstring base;
        switch (step.base) {
          case Base::kLocal: base = local; break;
          case Base::kRoaming: base = roaming; break;
          case Base::kFirefoxLocal: base = firefoxUsable ? local + kFirefoxProfiles + firefox : L""; break;
          case Base::kFirefoxRoaming: base = firefoxUsable ? roaming + kFirefoxProfiles + firefox : L""; break;
          case Base::kChromeExtra: base = extra; break;
          default: break;
        }
        if (base.empty()) continue;
        std::wstring path = base + L"\\" + std::wstring(step.path);
        while (!path.empty() && path.back() == L'\\') path.pop_back();
        places_.push_back({std::move(path), step.treatment});
      }
    }
  }

  bool Takes(const std::wstring& path, bool folder) const {
    const std::wstring name = path.substr(path.rfind(L'\\') + 1);
    const std::wstring parent = path.substr(0, path.rfind(L'\\'));
    for (const auto& [place, treatment] : places_) {
      // A folder that holds a place the steps take would count that place again.
      const bool holds = folder && Below(place, path);
      switch (treatment) {
        case Treatment::kWholeTree:
          if (AtOrBelow(path, place) || holds) return true;
          break;
        case Treatment::kSingleFile:
          if (SameTextIgnoringCase(path, place) || holds) return true;
          break;
        case Treatment::kJournalFiles:
          if (!folder && Below(path, place) && HoldsAfterFirst(name, L"-journal")) return true;
          break;
        case Treatment::kStorageFiles:
          if (!folder && Below(path, place) && HoldsAfterFirst(name, L".localstorage")) return true;
          break;
        case Treatment::kStoragePaths:
          if (!folder && Below(path, place) && HoldsAfterFirst(path, L".localstorage")) return true;
          break;
        case Treatment::kTempFiles:
          if (!folder && SameTextIgnoringCase(parent, place) && MatchesPattern(name, L"*.tmp*")) return true;
          break;
        case Treatment::kTextFiles:
          if (!folder && SameTextIgnoringCase(parent, place) && MatchesPattern(name, L"*.txt")) return true;
          break;
        case Treatment::kIndexFiles:
        case Treatment::kIndexFilesBare:
          if (!folder && SameTextIgnoringCase(parent, place) && HoldsAfterFirst(path, L"Index")) return true;
          break;
        default: break;
      }
    }
    return false;
  }

 private:
  std::vector<std::pair<std::wstring, Treatment>> places_;
};

// The entry's text: the path below the deepest of the user's token folders.
std::optional<std::wstring> TokenForm(const std::wstring& path, const PluginFolders& folders) {
  std::optional<std::wstring> best;
  size_t bestLength = 0;
  for (size_t i = 0; i < kFolderTokenCount; ++i) {
    const std::wstring_view token = kFolderTokens[i].token;
    if (token != L"%AppData%" && token != L"%LocalAppData%" && token != L"%UserProfile%") continue;
    const auto rest = Below(path, folders.tokens[i]);
    if (rest && folders.tokens[i].size() > bestLength) {
      best = std::wstring(token) + L"\\" + *rest;
      bestLength = folders.tokens[i].size();
    }
  }
  return best;
}

// A path ending in "\\*" stands for each folder in it as it is now, but
// those of extensions, whose data is never named; any other path for itself.
std::vector<std::wstring> Spread(const std::wstring& path) {
  if (!path.ends_with(L"\\*")) return {path};
  std::vector<std::wstring> folders;
  WIN32_FIND_DATAW entry;
  const UniqueFindHandle find(::FindFirstFileW(path.c_str(), &entry));
  for (bool more = static_cast<bool>(find); more; more = ::FindNextFileW(find.get(), &entry)) {
    const std::wstring_view name = entry.cFileName;
    const bool folder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) &&
                        !(entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT);
    if (!folder || name == L"." || name == L".." || name.starts_with(L"chrome-extension_") ||
        name.starts_with(L"moz-extension")) {
      continue;
    }
    folders.push_back(path.substr(0, path.size() - 1) + std::wstring(name));
  }
  return folders;
}

// What a file name may not hold, each replaced by "_".
std::wstring FileNameOf(std::wstring name) {
  for (wchar_t& c : name) {
    if (c < 0x20 || std::wstring_view(L"\\/:*?\"<>|").find(c) != std::wstring_view::npos) c = L'_';
  }
  if (name.size() > 120) name.resize(120);
  while (!name.empty() && (name.back() == L'.' || name.back() == L' ')) name.pop_back();
  return name;
}

}  // namespace

Generation GeneratePlugins(const Discovery& found, const std::optional<std::vector<bool>>& categories) {
  Generation result;
  const BuiltInPlaces builtIn;
  const PluginFolders folders = SystemPluginFolders();
  const int bound = FamilyOf(EntryKind::kFile).bound;
  std::vector<std::wstring> titles;
  for (const BrowserProfile& profile : found.profiles) {
    std::wstring title =
        std::wstring(profile.browser->name) + (profile.displayName.empty() ? L"" : L" - " + profile.displayName);
    // Two profiles that show one name are told apart by their folders.
    for (const std::wstring& known : titles) {
      if (SameTextIgnoringCase(known, title)) title += L" (" + profile.folder.substr(profile.folder.rfind(L'\\') + 1) + L")";
    }
    titles.push_back(title);
    std::vector<std::wstring> entries;
    std::set<int> taken;
    for (const LocationRow& row : LocationsOf(profile.browser->family)) {
      const int category = static_cast<int>(row.category);
      if (categories && !(*categories)[static_cast<size_t>(category)]) continue;
      const std::wstring path =
          (row.place == Place::kCacheFolder ? profile.cacheFolder : profile.folder) + L"\\" + std::wstring(row.path);
      for (const std::wstring& one : Spread(path)) {
        if (builtIn.Takes(one, row.folder)) continue;
        const auto text = TokenForm(one, folders);
        const EntryTarget target = text ? ResolveEntry({EntryKind::kFile, 1, *text}, folders)
                                        : EntryTarget{"outside the token folders", {}, {}};
        if (!target.refusal.empty()) {
          result.notes.push_back(Utf8(title) + ": left out " + Utf8(one) + ": " + std::string(target.refusal));
          continue;
        }
        entries.push_back(*text);
        taken.insert(category);
      }
    }
    if (entries.empty()) continue;
    std::wstring what;
    for (const int category : taken) {
      what += (what.empty() ? L"" : L", ") + FromUtf8(p::kBrowserCategoryNames[category]);
    }
    // A plug-in holds as many files as the worker reads; the rest go on in "(2)", "(3)" ...
    for (size_t first = 0; first < entries.size(); first += static_cast<size_t>(bound)) {
      const size_t part = first / static_cast<size_t>(bound);
      GeneratedPlugin plugin;
      plugin.name = FileNameOf(title) + (part ? L" (" + std::to_wstring(part + 1) + L")" : L"");
      plugin.definition.hasInfo = true;
      plugin.definition.description = title + L": " + what + L" of the profile in " + profile.folder;
      for (size_t i = first; i < entries.size() && i < first + static_cast<size_t>(bound); ++i) {
        plugin.definition.entries.push_back({EntryKind::kFile, static_cast<int>(i - first) + 1, entries[i]});
      }
      result.plugins.push_back(std::move(plugin));
    }
  }
  return result;
}

std::wstring GeneratedPluginText(const PluginDefinition& definition) {
  return PluginText(definition) + std::wstring(kGeneratorKey) + L"=" + std::wstring(kGeneratorValue) + L"\r\n";
}

bool IsGeneratedPlugin(const std::wstring& pluginsFolder, const std::wstring& name) {
  std::string bytes;
  if (!ReadWholeFile(pluginsFolder + L"\\" + name + L".cv", bytes, kMaxPluginFileBytes)) return false;
  for (const IniSection& section : ParseIni(DecodeIniBytes(bytes, CP_ACP))) {
    if (!SameName(section.name, L"Info")) continue;
    for (const IniEntry& entry : section.entries) {
      if (SameName(entry.name, kGeneratorKey)) return ProfileValue(entry.value) == kGeneratorValue;
    }
  }
  return false;
}

PluginCommandResult WriteBrowserPlugins(const std::wstring& pluginsFolder,
                                        const std::optional<std::vector<bool>>& categories) {
  PluginCommandResult result;
  auto line = [&](std::string label, const std::string& text) {
    label.resize(std::max<size_t>(label.size() + 1, 10), ' ');
    result.out += label + text + "\n";
  };
  for (const std::string& running : RunningBrowsers()) {
    line("running", running + ": the worker skips the files it holds open until it is closed");
  }
  const Discovery found = DiscoverBrowsers();
  for (const BrowserProfile& profile : found.profiles) {
    line("profile", Utf8(profile.browser->name) + " \"" + Utf8(profile.displayName) + "\" in " + Utf8(profile.folder));
  }
  for (const std::string& note : found.notes) line("note", note);
  Generation generation = GeneratePlugins(found, categories);
  for (const std::string& note : generation.notes) line("note", note);

  ::CreateDirectoryW(pluginsFolder.c_str(), nullptr);
  std::vector<std::wstring> ours, foreign;
  for (const std::wstring& name : PluginNames(pluginsFolder, nullptr)) {
    (IsGeneratedPlugin(pluginsFolder, name) ? ours : foreign).push_back(name);
  }
  auto among = [](const std::vector<std::wstring>& names, const std::wstring& name) {
    for (const std::wstring& known : names) {
      if (SameTextIgnoringCase(known, name)) return true;
    }
    return false;
  };
  std::vector<std::wstring> written;
  for (GeneratedPlugin& plugin : generation.plugins) {
    // Another plug-in's name is never taken over.
    std::wstring name = plugin.name;
    for (int n = 1; among(foreign, name) || among(written, name); ++n) {
      name = plugin.name + L" (generated" + (n > 1 ? L" " + std::to_wstring(n) : L"") + L")";
    }
    const std::wstring path = pluginsFolder + L"\\" + name + L".cv";
    ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (!WriteWholeFile(path, EncodeUtf16Le(GeneratedPluginText(plugin.definition)))) {
      result.exitCode = 1;
      result.error = "cannot write " + Utf8(path);
      return result;
    }
    written.push_back(name);
    line("wrote", Utf8(name) + ".cv (files " + std::to_string(plugin.definition.entries.size()) + ")");
  }
  for (const std::wstring& name : ours) {
    if (among(written, name)) continue;
    const std::wstring path = pluginsFolder + L"\\" + name + L".cv";
    ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (::DeleteFileW(path.c_str())) line("removed", Utf8(name) + ".cv (its profile is gone or takes nothing now)");
  }
  line("done", std::to_string(found.profiles.size()) + " profiles, " + std::to_string(written.size()) +
                   " plug-in files written");
  return result;
}

}  // namespace overseer
