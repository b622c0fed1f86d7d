#include "overseer/browser_discovery.h"

#include "browsers/browser_profiles.h"
#include "common/known_folders.h"
#include "common/text.h"
#include "common/unique_handle.h"
#include "overseer/local_state.h"
#include "overseer/report_output.h"
#include "overseer/whole_file.h"
#include "plugins/plugin_files.h"
#include "plugins/plugin_format.h"
#include "plugins/plugin_targets.h"

namespace overseer {

namespace {

using enum BrowserFamily;

constexpr BrowserInstall kInstalls[] = {
    {L"Chrome", kChromium, false, L"Google\\Chrome\\User Data", L"chrome.exe"},
    {L"Edge", kChromium, false, L"Microsoft\\Edge\\User Data", L"msedge.exe"},
    {L"Brave", kChromium, false, L"BraveSoftware\\Brave-Browser\\User Data", L"brave.exe"},
    {L"Vivaldi", kChromium, false, L"Vivaldi\\User Data", L"vivaldi.exe"},
    {L"Chromium", kChromium, false, L"Chromium\\User Data", L"chrome.exe"},
    // Opera keeps its profile in roaming and its caches in the local twin.
    {L"Opera", kChromium, true, L"Opera Software\\Opera Stable", L"opera.exe"},
    {L"Opera GX", kChromium, true, L"Opera Software\\Opera GX Stable", L"opera.exe"},
    {L"Firefox", kFirefox, true, L"Mozilla\\Firefox", L"firefox.exe"},
    {L"LibreWolf", kFirefox, true, L"librewolf", L"librewolf.exe"},
    {L"Waterfox", kFirefox, true, L"Waterfox", L"waterfox.exe"},
};

// A profile list is read whole; real ones are a few hundred KiB at most.
constexpr std::uint64_t kMaxListBytes = 16u << 20;

enum class Kind { kMissing, kFile, kFolder, kLink };
Kind KindOf(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return Kind::kMissing;
  if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) return Kind::kLink;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) ? Kind::kFolder : Kind::kFile;
}

// One name inside a folder: no separator, no climbing, nothing Windows
// would read another way.
bool IsPlainName(std::wstring_view name) {
  if (name.empty() || name == L"." || name == L".." || name.back() == L'.' || name.back() == L' ') return false;
  for (const wchar_t c : name) {
    if (c < 0x20 || std::wstring_view(L"\\/:*?\"<>|").find(c) != std::wstring_view::npos) return false;
  }
  return !scourel::IsDeviceName(name);
}

std::vector<std::wstring> PathParts(std::wstring_view path) {
  std::vector<std::wstring> parts;
  size_t start = 0;
  for (size_t i = 0; i <= path.size(); ++i) {
    if (i == path.size() || path[i] == L'\\' || path[i] == L'/') {
      parts.emplace_back(path.substr(start, i - start));
      start = i + 1;
    }
  }
  return parts;
}

bool IsDrivePath(std::wstring_view path) {
  return path.size() >= 3 && ((path[0] | 0x20) >= L'a' && (path[0] | 0x20) <= L'z') && path[1] == L':' &&
         (path[2] == L'\\' || path[2] == L'/');
}

class Finder {
 public:
  Finder() : local_(scourel::LocalAppData()), roaming_(scourel::RoamingAppData()) {
    userFolders_ = {roaming_, local_, scourel::ShellFolderPath(CSIDL_PROFILE)};
    const scourel::PluginFolders system = scourel::SystemPluginFolders();
    systemFolders_ = system.special;
    systemFolders_.insert(systemFolders_.end(), system.tokens.begin(), system.tokens.end());
    systemFolders_.push_back(system.profile);
  }

  Discovery Run() {
    for (const BrowserInstall& browser : kInstalls) {
      const std::wstring& base = browser.roaming ? roaming_ : local_;
      if (base.empty() || local_.empty()) continue;
      const std::wstring folder = base + L"\\" + std::wstring(browser.folder);
      const std::wstring twin = local_ + L"\\" + std::wstring(browser.folder);
      if (KindOf(folder) == Kind::kLink) {
        Note(browser, "its folder is a link: refused");
        continue;
      }
      if (KindOf(folder) != Kind::kFolder) continue;
      browser.family == kFirefox ? Firefox(browser, folder, twin) : Chromium(browser, folder, twin);
    }
    return std::move(found_);
  }

 private:
  void Note(const BrowserInstall& browser, const std::string& text) {
    found_.notes.push_back(Utf8(browser.name) + ": " + text);
  }

  void Add(const BrowserInstall& browser, std::wstring name, std::wstring folder, std::wstring cache,
           const std::string& source) {
    for (const BrowserProfile& known : found_.profiles) {
      if (known.browser == &browser && scourel::SameTextIgnoringCase(known.folder, folder)) return;
    }
    for (const std::wstring& system : systemFolders_) {
      if (!system.empty() && scourel::SameTextIgnoringCase(system, folder)) {
        Note(browser, source + " names \"" + Utf8(folder) + "\", a folder of the system's own: refused");
        return;
      }
    }
    switch (KindOf(folder)) {
      case Kind::kLink: Note(browser, source + " names a link: refused"); return;
      case Kind::kMissing: Note(browser, source + " names \"" + Utf8(folder) + "\", which is missing"); return;
      case Kind::kFile: Note(browser, source + " names a file, not a folder: refused"); return;
      case Kind::kFolder: break;
    }
    found_.profiles.push_back({&browser, std::move(name), std::move(folder), std::move(cache)});
  }

  void Chromium(const BrowserInstall& browser, const std::wstring& folder, const std::wstring& twin) {
    std::optional<std::vector<ListedProfile>> listed;
    std::string bytes;
    std::string source = "\"Local State\"";
    if (ReadWholeFile(folder + L"\\Local State", bytes, kMaxListBytes)) {
      listed = ParseLocalState(bytes);
      if (!listed) Note(browser, "\"Local State\" holds no profile list it can read: looking for profile folders");
    }
    if (!listed) {
      source = "a profile folder";
      listed.emplace();
      WIN32_FIND_DATAW entry;
      const scourel::UniqueFindHandle find(::FindFirstFileW((folder + L"\\*").c_str(), &entry));
      for (bool more = static_cast<bool>(find); more; more = ::FindNextFileW(find.get(), &entry)) {
        const std::wstring name = entry.cFileName;
        const bool profileLike = name == L"Default" || name.rfind(L"Profile ", 0) == 0;
        if (profileLike && KindOf(folder + L"\\" + name + L"\\Preferences") == Kind::kFile) {
          listed->push_back({name, {}});
        }
      }
    }
    const size_t before = found_.profiles.size();
    for (const ListedProfile& profile : *listed) {
      if (!IsPlainName(profile.folder)) {
        Note(browser, source + " names \"" + Utf8(profile.folder) + "\", which is not a folder name: refused");
        continue;
      }
      Add(browser, profile.displayName.empty() ? profile.folder : profile.displayName,
          folder + L"\\" + profile.folder, twin + L"\\" + profile.folder, source);
    }
    // Opera keeps its one profile in the folder itself.
    if (found_.profiles.size() == before && KindOf(folder + L"\\Preferences") == Kind::kFile) {
      Add(browser, L"", folder, twin, "the browser's folder");
    }
  }

  void Firefox(const BrowserInstall& browser, const std::wstring& folder, const std::wstring& twin) {
    std::string bytes;
    if (!ReadWholeFile(folder + L"\\profiles.ini", bytes, kMaxListBytes)) return;
    bool any = false;
    const std::vector<scourel::IniSection> sections = scourel::ParseIni(scourel::DecodeIniBytes(bytes, CP_UTF8));
    // The profiles first, so that a profile an install entry names too keeps its own name.
    for (const bool profile : {true, false}) {
      for (const scourel::IniSection& section : sections) {
        any = FirefoxEntry(browser, section, profile, folder, twin) || any;
      }
    }
    if (!any) Note(browser, "profiles.ini lists no profile");
  }

  // A "[ProfileN]" or "[Install...]" section: whether it is one.
  bool FirefoxEntry(const BrowserInstall& browser, const scourel::IniSection& section, bool profile,
                    const std::wstring& folder, const std::wstring& twin) {
    const std::wstring_view prefix = profile ? L"Profile" : L"Install";
    if (section.name.size() <= prefix.size() || !scourel::SameName(section.name.substr(0, prefix.size()), prefix)) {
      return false;
    }
    auto value = [&](std::wstring_view key) {
      for (const scourel::IniEntry& entry : section.entries) {
        if (scourel::SameName(entry.name, key)) return scourel::ProfileValue(entry.value);
      }
      return std::wstring();
    };
    // Appended, not prefixed: GCC 12's -Wrestrict misreads an insert at 0 under -O3.
    std::string source = "[";
    source.append(Utf8(section.name)).append("]");
    const std::wstring path = value(profile ? L"Path" : L"Default");
    if (path.empty()) {
      if (profile) Note(browser, source + " has no Path: passed over");
      return true;
    }
    const bool relative = profile ? value(L"IsRelative") != L"0" : !IsDrivePath(path);
    std::wstring resolved, cache;
    if (const std::string refusal = Resolve(path, relative, folder, twin, resolved, cache); !refusal.empty()) {
      Note(browser, source + " path \"" + Utf8(path) + "\": " + refusal + ": refused");
      return true;
    }
    const std::wstring name = profile ? value(L"Name") : L"";
    Add(browser, name.empty() ? resolved.substr(resolved.rfind(L'\\') + 1) : name, resolved, cache, source);
    return true;
  }

  // Why the path is refused, or empty with the profile's two folders.
  std::string Resolve(const std::wstring& path, bool relative, const std::wstring& folder, const std::wstring& twin,
                      std::wstring& resolved, std::wstring& cache) const {
    if (relative && (IsDrivePath(path) || path[0] == L'\\' || path[0] == L'/')) return "not a relative path";
    if (!relative && !IsDrivePath(path)) return "not a full path on a drive";
    std::wstring joined;
    for (const std::wstring& part : PathParts(std::wstring_view(path).substr(relative ? 0 : 3))) {
      if (part == L"..") return "it climbs with \"..\"";
      if (!IsPlainName(part)) return "a part no folder name may be";
      joined += L"\\" + part;
    }
    if (relative) {
      resolved = folder + joined;
      cache = twin + joined;
      return {};
    }
    resolved = path.substr(0, 2) + joined;
    for (const std::wstring& user : userFolders_) {
      if (!Below(resolved, user)) continue;
      // Below roaming the caches go to the local twin, as Firefox keeps them.
      const auto inRoaming = Below(resolved, roaming_);
      cache = inRoaming ? local_ + L"\\" + *inRoaming : resolved;
      return {};
    }
    return "outside the user's folders";
  }

  std::wstring local_, roaming_;
  std::vector<std::wstring> userFolders_;
  std::vector<std::wstring> systemFolders_;  // never a profile, whatever a list says
  Discovery found_;
};

}  // namespace

std::optional<std::wstring> Below(const std::wstring& path, const std::wstring& folder) {
  if (folder.empty() || path.size() <= folder.size() + 1 || path[folder.size()] != L'\\' ||
      !scourel::SameTextIgnoringCase(std::wstring_view(path).substr(0, folder.size()), folder)) {
    return std::nullopt;
  }
  return path.substr(folder.size() + 1);
}

std::span<const BrowserInstall> BrowserInstalls() { return kInstalls; }

Discovery DiscoverBrowsers() { return Finder().Run(); }

}  // namespace overseer
