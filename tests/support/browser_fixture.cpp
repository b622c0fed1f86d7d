#include "support/browser_fixture.h"

#include "common/known_folders.h"
#include "common/registry_key.h"

namespace scourel::test {

namespace {

using enum protocol::Browser;
using enum protocol::BrowserCategory;
using enum Root;
using enum Group;
using protocol::BrowserCategory;

#define FF L"Mozilla\\Firefox\\Profiles\\"
#define FF_PROFILE FF L"abcd.default\\"
#define CHROME L"Google\\Chrome\\User Data\\"
#define IE_CACHE L"Microsoft\\Windows\\Temporary Internet Files\\Content.IE5\\"
#define IE_LOCAL L"Microsoft\\Internet Explorer\\"
#define IE_KEY L"Software\\Microsoft\\Internet Explorer\\"
#define SAFARI L"Apple Computer\\Safari\\"
#define OPERA_OLD L"Opera\\Opera\\"
#define OPERA_NEW L"Opera Software\\Opera Stable\\"

// A path holding "|" is a prefix and the names below it, each a row of its
// own, sized 10 bytes (or values) more than the one before.
const TraceRow kFixedRows[] = {
    {kLocal, IE_CACHE L"|index.dat|A1B2C3D4\\logo[1].png|E5F6A7B8\\", 3000, kInternetExplorer, kAlways, kCache},
    {kLocal, L"Microsoft\\Windows\\INetCookies\\decoy@example[1].txt", 90, kInternetExplorer, kAlways},
    {kRoaming, L"Microsoft\\Windows\\Cookies\\|user@example[1].txt|Low\\user@low[1].txt", 210, kInternetExplorer,
     kAlways, kCookies},
    // Neither a folder named like the mask nor a file of another kind.
    {kRoaming, L"Microsoft\\Windows\\Cookies\\|index.dat|archive.txt\\user@old[1].txt", 230, kInternetExplorer,
     kAlways},
    {kLocal, IE_LOCAL L"DOMStore\\A1B2C3D4\\example[1].xml", 250, kInternetExplorer, kAlways, kCookies},
    {kRoaming, IE_LOCAL L"UserData\\data[1].txt", 270, kInternetExplorer, kAlways, kCookies},
    {kRoaming, IE_LOCAL L"|brndlog.txt|UserData\\index.dat", 280, kInternetExplorer, kAlways},
    {kLocal, IE_LOCAL L"Recovery\\|Last Active\\{A}.dat|High\\Last Active\\{C}.dat|Low\\Last Active\\{D}.dat", 310,
     kInternetExplorer, kAlways, kHistory},
    {kLocal, IE_LOCAL L"Recovery\\Active\\{B}.dat", 320, kInternetExplorer, kHeld, kHistory},
    {kLocal, IE_LOCAL L"Recovery\\|Low\\Active\\{E}.dat|High\\Active\\", 350, kInternetExplorer, kAlways},
    {kKey, IE_KEY L"IntelliForms\\Storage2", 12, kInternetExplorer, kAlways, kAutocomplete},
    {kKey, IE_KEY L"|TypedURLs|TypedURLsTime", 25, kInternetExplorer, kAlways, kAddressBar},
    {kKey, IE_KEY L"|IntelliForms\\Storage1|TypedURLsCanary", 3, kInternetExplorer, kAlways},
    {kWindows, L"Downloaded Program Files\\||ieatgpc.inf|CONFLICT.1\\control.ocx", 410, kInternetExplorer, kAlways,
     kProgramFiles},
    {kWindows, L"Downloaded Installations\\keep.msi", 430, kInternetExplorer, kAlways},
    {kRoaming, L"Microsoft\\Windows\\|IETldCache\\index.dat|PrivacIE\\Low\\index.dat|IECompatCache\\index.dat", 510,
     kInternetExplorer, kAlways, kIndex},
    {kRoaming, L"Microsoft\\Windows\\IEDownloadHistory\\index.dat", 530, kInternetExplorer, kAlways},

    {kLocal, FF_PROFILE L"|Cache\\_CACHE_MAP_|Cache\\0\\1A\\2B3C4D01|jumpListCache\\Yz9x.ico", 4096, kFirefox, kAlways,
     kCache},
    {kLocal, FF L"|abcd.default\\startupCache\\startupCache.8.little|abcd.default\\OfflineCache\\0\\1A\\entry|"
             L"wxyz.other\\Cache\\_CACHE_MAP_", 600, kFirefox, kAlways},
    {kRoaming, FF_PROFILE L"cookies.sqlite", 610, kFirefox, kAlways, kCookies},
    {kLocal, FF_PROFILE L"OfflineCache\\index.sqlite", 630, kFirefox, kAlways, kCookies},
    {kLocal, FF_PROFILE L"thumbnails\\a1b2.png", 650, kFirefox, kAlways, kHistory},
    {kRoaming, FF_PROFILE L"places.sqlite", 660, kFirefox, kHeld, kHistory},
    {kRoaming, FF_PROFILE L"cert8.db", 670, kFirefox, kAlways, kHistory},
    // Taken by saved logins, counted in history.
    {kRoaming, FF_PROFILE L"key3.db", 690, kFirefox, kAlways, kAutocomplete, 1, {}, kHistory},
    {kRoaming, FF_PROFILE L"signons.sqlite", 700, kFirefox, kAlways, kAutocomplete},
    {kRoaming, FF_PROFILE L"|sessionstore.bak|sessionstore.js|content-prefs.sqlite", 720, kFirefox, kAlways, kSession},
    {kRoaming, FF_PROFILE L"downloads.sqlite", 760, kFirefox, kAlways, kDownloadHistory},
    {kRoaming, FF L"|abcd.default\\permissions.sqlite|abcd.default\\cert9.db|abcd.default\\logins.json|"
             L"abcd.default\\sessionstore-backups\\recovery.js|wxyz.other\\places.sqlite", 620, kFirefox, kAlways},

    {kLocal, CHROME L"Default\\|Cache\\data_1|Cache\\f_000001|Cache\\empty\\|Cookies-journal|Media Cache\\f_000010|"
             L"download.tmp", 3100, kChrome, kAlways, kCache},
    {kLocal, CHROME L"Default\\Cache\\held.bin", 250, kChrome, kHeld, kCache},
    // The caches' two journal walks reach it, and the cookies' storage walk.
    {kLocal, CHROME L"Default\\Local Storage\\https_example.com_0.localstorage-journal", 600, kChrome, kAlways, kCache,
     2, kCookies},
    {kLocal, CHROME L"|stale.tmp|Safe Browsing Cookies-journal", 800, kChrome, kAlways, kCache},
    {kLocal, CHROME L"Default\\History Index 2013-05", 330, kChrome, kAlways, kHistory},
    // "Cookies" beyond "Default" is looked for with a closing backslash.
    {kLocal, CHROME L"Default\\Cookies", 1000, kChrome, kAlways, kCookies},
    {kLocal, CHROME L"Profile 1\\Cookies", 1001, kChrome, kProfiles},
    {kDrive, L"Cookies", 1002, kChrome, kDriveRoot},
    {kLocal, CHROME L"|Safe Browsing Cookies|Default\\-journal|Default\\history index|Default\\Web Data|"
             L"Default\\Local Storage\\.localstorage", 450, kChrome, kAlways},
    {kLocal, CHROME L"Profile 1\\Cache\\data_0", 2500, kChrome, kProfiles, kCache},
    // The extra profile's Index walk lists "Profile 1*.*" in User Data: the
    // profile's own files are not listed, and what is does not open.
    {kLocal, CHROME L"|Profile 2\\Cache\\data_0|Profile 1\\History Index 2013-05|Profile 1 Index", 2600, kChrome,
     kProfiles},
    {kDrive, L"History Index", 380, kChrome, kDriveRootHere, kHistory},
    {kDrive, L"Cache\\|data_0|sub\\f_000001", 2000, kChrome, kDriveRoot, kCache},
    {kDrive, L"Local Storage\\plain.txt", 390, kChrome, kDriveRoot},

    {kLocal, SAFARI L"Cache.db", 6000, kSafari, kSafariGate, kCache},
    {kLocal, SAFARI L"|WebpageIcons.db|LocalStorage\\StorageTracker.db", 700, kSafari, kAlways},
    {kRoaming, SAFARI L"Cookies\\Cookies.binarycookies", 810, kSafari, kSafariRoaming, kCookies},
    // The full path holds the word, not always the name.
    {kLocal, SAFARI L"LocalStorage\\|http_example.com_0.localstorage|x.localstorage\\nested.db", 820, kSafari,
     kSafariLocal, kCookies},
    {kRoaming, SAFARI L"|History.plist|TopSites.plist|LastSession.plist|Downloads.plist", 850, kSafari, kSafariRoaming,
     kHistory},
    {kRoaming, SAFARI L"Bookmarks.plist", 890, kSafari, kSafariRoaming},
    {kLocal, SAFARI L"|History\\a.db|Webpage Previews\\b.jpg", 900, kSafari, kSafariLocal, kHistory},
    {kLocal, SAFARI L"History\\held.db", 910, kSafari, kHeld, kHistory},

    {kLocal, OPERA_OLD L"|cache\\g_0000\\opr00001.tmp|opcache\\g_0001\\opr00002", 1100, kOpera, kOldOpera, kCache},
    // In the caches and, for a scan, in the icons folder too.
    {kLocal, OPERA_OLD L"icons\\cache\\site.ico", 1400, kOpera, kOldOpera, kCache, 1, kIcons},
    {kLocal, OPERA_OLD L"icons\\site2.ico", 1130, kOpera, kOldOpera, kIcons},
    {kRoaming, OPERA_OLD L"cookies4.dat", 600, kOpera, kOldOpera, kCookies},
    {kLocal, OPERA_OLD L"pstorage\\00\\0A\\data.dat", 1010, kOpera, kOldOpera, kCookies},
    {kLocal, OPERA_OLD L"vps\\0000\\md.dat", 1030, kOpera, kOldOpera, kHistory},
    {kRoaming, OPERA_OLD L"global_history.dat", 1050, kOpera, kHeld, kHistory},
    {kRoaming, OPERA_OLD L"|download.dat|vlink4.dat", 1060, kOpera, kOldOpera, kHistory},
    {kRoaming, OPERA_OLD L"wand.dat", 1080, kOpera, kOldOpera, kAutocomplete},
    {kRoaming, OPERA_OLD L"sessions\\|autosave.win|autosave.win.bak", 1090, kOpera, kOldOpera, kSession},
    {kRoaming, OPERA_OLD L"typed_history.xml", 1120, kOpera, kOldOpera, kAddressBar},
    {kLocal, OPERA_OLD L"|pstorage\\01\\data.dat|vps\\0001\\md.dat", 1020, kOpera, kOldOpera},
    {kRoaming, OPERA_OLD L"sessions\\other.win", 1110, kOpera, kOldOpera},
    {kLocal, OPERA_NEW L"|cache\\f_000001|icons\\cache\\b.ico", 1600, kOpera, kNewOpera, kCache},
    {kRoaming, OPERA_NEW L"|GPUCache\\data_0|Cookies-journal", 1700, kOpera, kNewOpera, kCache},
    {kRoaming, OPERA_NEW L"Cookies", 2000, kOpera, kNewOpera, kCookies},
    {kLocal, OPERA_NEW L"pstorage\\00\\data.dat", 1210, kOpera, kNewOpera, kCookies},
    {kLocal, OPERA_NEW L"vps\\0000\\md.dat", 1220, kOpera, kNewOpera, kHistory},
    {kRoaming, OPERA_NEW L"|Archived History|Visited Links|History Provider Cache|History Index 2014-01", 1230, kOpera,
     kNewOpera, kHistory},
    {kRoaming, OPERA_NEW L"|Login Data|wand.dat", 1270, kOpera, kNewOpera, kAutocomplete},
    {kRoaming, OPERA_NEW L"|sessions\\autosave.win|sessions\\autosave.win.bak|session.db|session.dbak", 1290, kOpera,
     kNewOpera, kSession},
    // Looked for whatever the old layout says.
    {kRoaming, OPERA_NEW L"typed_history.xml", 1330, kOpera, kNewOperaAny, kAddressBar},
    {kRoaming, OPERA_NEW L"|Jump List Icons\\a.ico|Jump List IconsOld\\b.ico", 1340, kOpera, kNewOpera, kIcons},
    {kRoaming, OPERA_NEW L"Jump List\\c.ico", 1360, kOpera, kNewOpera},
};

// Files every Chrome profile holds, planted in "Default", in "Profile 1" and
// at the root of C:, where the extra profile's steps land without one.
const struct {
  const wchar_t* names;
  std::uint32_t size;
  BrowserCategory category;
} kProfileFiles[] = {
    {L"Local Storage\\https_example.com_0.localstorage|databases\\Databases.db", 4000, kCookies},
    {L"Archived History|Visited Links|Current Tabs|Last Tabs|Top Sites|History Provider Cache|"
     L"Network Action Predictor|JumpListIcons\\a.ico|JumpListIconsOld\\b.ico", 1500, kHistory},
    {L"Login Data", 2400, kAutocomplete},
    {L"Current Session|Last Session", 2500, kSession},
    {L"History", 2700, kDownloadHistory},  // the browsing history database as well
};

const std::vector<TraceRow>& Rows() {
  static const std::vector<TraceRow> rows = [] {
    std::vector<TraceRow> listed(std::begin(kFixedRows), std::end(kFixedRows));
    for (const auto& file : kProfileFiles) {
      const std::wstring names = std::wstring(L"|") + file.names;
      listed.push_back({kLocal, CHROME L"Default\\" + names, file.size, kChrome, kAlways, file.category});
      listed.push_back({kLocal, CHROME L"Profile 1\\" + names, file.size + 1, kChrome, kProfiles, file.category});
      listed.push_back({kDrive, names, file.size + 2, kChrome, kDriveRoot, file.category});
    }
    std::vector<TraceRow> all;
    for (const TraceRow& row : listed) {
      const size_t bar = row.path.find(L'|');
      if (bar == std::wstring::npos) all.push_back(row);
      std::uint32_t size = row.size;
      for (size_t at = bar; at != std::wstring::npos; at = row.path.find(L'|', at + 1), size += 10) {
        TraceRow one = row;
        one.path = row.path.substr(0, bar) + row.path.substr(at + 1, row.path.find(L'|', at + 1) - at - 1);
        one.size = size;
        all.push_back(std::move(one));
      }
    }
    return all;
  }();
  return rows;
}

// Every folder and key the rows plant in, and the files planted in folders
// Wine has of its own, so that nothing is left behind.
const std::pair<Root, const wchar_t*> kOwned[] = {
    {kLocal, L"Microsoft\\Windows\\Temporary Internet Files"},
    {kLocal, L"Microsoft\\Windows\\INetCookies\\decoy@example[1].txt"}, {kLocal, L"Microsoft\\Internet Explorer"},
    {kRoaming, L"Microsoft\\Internet Explorer"}, {kRoaming, L"Microsoft\\Windows\\Cookies"},
    {kRoaming, L"Microsoft\\Windows\\IETldCache"}, {kRoaming, L"Microsoft\\Windows\\PrivacIE"},
    {kRoaming, L"Microsoft\\Windows\\IECompatCache"}, {kRoaming, L"Microsoft\\Windows\\IEDownloadHistory"},
    {kWindows, L"Downloaded Program Files"}, {kWindows, L"Downloaded Installations"}, {kLocal, L"Mozilla"},
    {kLocal, L"Google"}, {kLocal, L"Apple Computer"}, {kLocal, L"Opera"}, {kLocal, L"Opera Software"},
    {kRoaming, L"Mozilla"}, {kRoaming, L"Apple Computer"}, {kRoaming, L"Opera"}, {kRoaming, L"Opera Software"},
};

const wchar_t kGateDirectory[] = L"C:\\scourel-tests\\browser-cwd";
const std::wstring kAppDefaults = L"Software\\Wine\\AppDefaults\\";

std::wstring Under(Root root, const std::wstring& path) {
  switch (root) {
    case kLocal: return ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\" + path;
    case kRoaming: return ShellFolderPath(CSIDL_APPDATA) + L"\\" + path;
    case kWindows: return WindowsDirectoryWithBackslash() + path;
    case kDrive: return L"C:\\" + path;
    case kKey: return path;
  }
  return path;
}

std::wstring PathOf(const TraceRow& row) { return Under(row.root, row.path); }

bool Plants(const BrowserScenario& scenario, const TraceRow& row) {
  switch (row.group) {
    case kOldOpera: return scenario.operaOld;
    case kNewOpera:
    case kNewOperaAny: return scenario.operaNew;
    case kProfiles: return scenario.profiles;
    case kSafariRoaming: return scenario.safari;
    default: return true;
  }
}

bool IsFolderRow(const TraceRow& row) { return row.path.ends_with(L'\\'); }

std::string BytesOf(const TraceRow& row) {
  return std::string(row.size, static_cast<char>('a' + (&row - Rows().data()) % 26));
}

bool Covers(const Run& run, BrowserCategory category) {
  return run.only ? category == *run.only : run.mode == Mode::kErase || category != kProgramFiles;
}

// How many times the run counts the row in `column`. A clean takes it in
// the first category that reaches it; a scan counts it in every one.
int Times(const TraceRow& row, BrowserCategory column, const Run& run) {
  const bool reached = Covers(run, *row.category);
  const int first = reached && row.column.value_or(*row.category) == column
                        ? (run.mode == Mode::kMeasure ? row.scanCount : 1)
                        : 0;
  if (run.mode == Mode::kErase && reached) return first;
  return first + (row.alsoScanned == column && Covers(run, column) ? 1 : 0);
}

bool ReachedBy(const TraceRow& row, const Run& run) {
  return Covers(run, *row.category) || (row.alsoScanned && Covers(run, *row.alsoScanned));
}

DWORD ValueCount(const std::wstring& key) {
  const OpenedKey opened = OpenRegKey(HKEY_CURRENT_USER, key, KEY_READ);
  return opened ? CountsOf(opened.get()).values : MAXDWORD;
}

void Plant(const TraceRow& row) {
  const std::wstring path = PathOf(row);
  if (row.root != kKey) {
    MakeDirs(path.substr(0, path.rfind(L'\\')));
    if (!IsFolderRow(row)) WriteFileBytes(path, BytesOf(row));
    return;
  }
  for (std::uint32_t i = 1; i <= row.size; ++i) {  // the key comes with its first value
    const std::wstring name = L"url" + std::to_wstring(i), url = L"http://example.com/" + name;
    ::RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), REG_SZ, url.c_str(),
                      static_cast<DWORD>((url.size() + 1) * sizeof(wchar_t)));
  }
}

// Empty when the row is as a run that takes it (or not) leaves it.
std::wstring RowDamage(const TraceRow& row, bool taken, Mode mode) {
  const std::wstring path = PathOf(row);
  const bool gone = row.root == kKey ? ValueCount(path) == MAXDWORD : !PathExists(path);
  // A scan leaves files and keys but removes the folders that are empty.
  if (taken && (mode == Mode::kErase || IsFolderRow(row))) return gone ? L"" : L"still there: " + path;
  if (row.root == kKey) return ValueCount(path) == row.size ? L"" : L"missing or changed: " + path;
  if (IsFolderRow(row) || row.group == kHeld) return gone ? L"missing: " + path : L"";
  return ReadFileBytes(path) == BytesOf(row) ? L"" : L"missing or changed: " + path;
}

std::wstring TopOf(const TraceRow& row) { return Under(row.root, row.path.substr(0, row.path.find(L'\\'))); }

}  // namespace

std::wstring ReadOnlyTracePath() { return PathOf(Rows()[0]); }

void PlantBrowserTraces(const BrowserScenario& scenario) {
  for (const TraceRow& row : Rows()) {
    if (row.root == kDrive || !Plants(scenario, row)) continue;
    Plant(row);
    if (&row == Rows().data()) ::SetFileAttributesW(PathOf(row).c_str(), FILE_ATTRIBUTE_READONLY);
  }
  const std::wstring name = scenario.profilePath;
  WriteFileBytes(Under(kRoaming, L"Mozilla\\Firefox\\profiles.ini"),
                 "[General]\r\nStartWithLastProfile=1\r\n\r\n[Profile0]\r\nName=default\r\nIsRelative=1\r\nPath=" +
                     std::string(name.begin(), name.end()) + "\r\n");
}

void RemoveBrowserRoots() {
  for (const auto& [root, path] : kOwned) RemoveTree(Under(root, path));
  for (const TraceRow& row : Rows()) {
    if (row.root == kKey) ::RegDeleteTreeW(HKEY_CURRENT_USER, row.path.c_str());
  }
  // Only once empty: what Wine keeps there stays.
  ::RegDeleteKeyW(HKEY_CURRENT_USER, IE_KEY L"IntelliForms");
}

void PlantDriveRootTraces() {
  RemoveDriveRootTraces();
  for (const TraceRow& row : Rows()) {
    if (row.root == kDrive) Plant(row);
  }
}

std::wstring DriveRootDamage() {
  for (const TraceRow& row : Rows()) {
    if (row.root != kDrive) continue;
    if (std::wstring damage = RowDamage(row, false, Mode::kMeasure); !damage.empty()) return damage;
  }
  return L"";
}

void RemoveDriveRootTraces() {
  for (const TraceRow& row : Rows()) {
    if (row.root == kDrive) RemoveTree(TopOf(row));
  }
}

BrowserFixture::BrowserFixture(const BrowserScenario& scenario) : scenario_(scenario) {
  RemoveBrowserRoots();
  PlantBrowserTraces(scenario_);
  for (const TraceRow& row : Rows()) {
    if (row.group == kHeld && scenario_.held) {
      held_.emplace_back(::CreateFileW(PathOf(row).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    }
  }
  wchar_t current[MAX_PATH] = {};
  ::GetCurrentDirectoryW(MAX_PATH, current);
  previousDirectory_ = current;
  if (scenario_.safariGate) {
    MakeDirs(std::wstring(kGateDirectory) + L"\\abcd.default");
    ::SetCurrentDirectoryW(kGateDirectory);
  }
}

BrowserFixture::~BrowserFixture() {
  ::SetCurrentDirectoryW(previousDirectory_.c_str());
  held_.clear();
  RemoveBrowserRoots();
  RemoveTree(kGateDirectory);
}

bool BrowserFixture::Takes(const TraceRow& row) const {
  if (!row.category || !Plants(scenario_, row)) return false;
  const bool noProfile = scenario_.extraProfile && !scenario_.profiles;
  switch (row.group) {
    case kHeld: return !scenario_.held;
    case kNewOpera: return !scenario_.operaOld;
    case kProfiles: return scenario_.extraProfile;
    case kSafariGate: return scenario_.safariGate;
    case kSafariLocal: return scenario_.safari;
    case kDriveRoot: return noProfile;
    case kDriveRootHere: return noProfile && !scenario_.safariGate;
    default: return true;
  }
}

std::vector<std::wstring> BrowserFixture::TakenFiles() const {
  std::vector<std::wstring> files;
  for (const TraceRow& row : Rows()) {
    if (row.root != kKey && row.root != kDrive && !IsFolderRow(row) && Takes(row)) files.push_back(PathOf(row));
  }
  return files;
}

Expected BrowserFixture::Of(std::optional<protocol::Browser> browser, BrowserCategory category, const Run& run) const {
  Expected sum;
  for (const TraceRow& row : Rows()) {
    if ((browser && row.browser != *browser) || IsFolderRow(row) || !Takes(row)) continue;
    const int times = Times(row, category, run);
    // A key counts its values and no bytes.
    sum.count += times * static_cast<int>(row.root == kKey ? row.size : 1);
    if (row.root != kKey) sum.bytes += static_cast<float>(row.size) * static_cast<float>(times);
  }
  return sum;
}

std::wstring BrowserFixture::Damage(const Run& run) const {
  for (const TraceRow& row : Rows()) {
    if (!Plants(scenario_, row)) continue;
    if (std::wstring damage = RowDamage(row, Takes(row) && ReachedBy(row, run), run.mode); !damage.empty()) {
      return damage;
    }
  }
  return L"";
}

WineVersionOf::WineVersionOf(const std::wstring& program, const std::wstring& version)
    : Cleanup([key = kAppDefaults + program] { ::RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str()); }) {
  const auto bytes = static_cast<DWORD>((version.size() + 1) * sizeof(wchar_t));
  ::RegSetKeyValueW(HKEY_CURRENT_USER, (kAppDefaults + program).c_str(), L"Version", REG_SZ, version.c_str(), bytes);
}

}  // namespace scourel::test
