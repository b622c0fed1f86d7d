#include "support/browser_fixture.h"

#include "common/known_folders.h"

namespace scourel::test {

namespace {

using enum protocol::Browser;
using enum Root;
using enum Group;
constexpr auto kCookies = protocol::BrowserCategory::kCookies;

#define FF L"Mozilla\\Firefox\\Profiles\\"
#define CHROME L"Google\\Chrome\\User Data\\"
#define IE_CACHE L"Microsoft\\Windows\\Temporary Internet Files\\Content.IE5\\"
#define OPERA_NEW L"Opera Software\\Opera Stable\\"

const TraceRow kRows[] = {
    {kLocal, IE_CACHE L"index.dat", 3000, kInternetExplorer, kCore},
    {kLocal, IE_CACHE L"A1B2C3D4\\logo[1].png", 1500, kInternetExplorer, kCore},
    {kLocal, IE_CACHE L"E5F6A7B8\\", 0, kInternetExplorer, kCore},
    {kLocal, L"Microsoft\\Windows\\INetCookies\\decoy@example[1].txt", 90, kInternetExplorer, kDecoy},
    {kLocal, FF L"abcd.default\\Cache\\_CACHE_MAP_", 4096, kFirefox, kCore},
    {kLocal, FF L"abcd.default\\Cache\\0\\1A\\2B3C4D01", 700, kFirefox, kCore},
    {kLocal, FF L"abcd.default\\jumpListCache\\Yz9x.ico", 950, kFirefox, kCore},
    {kLocal, FF L"abcd.default\\startupCache\\startupCache.8.little", 600, kFirefox, kDecoy},
    {kLocal, FF L"wxyz.other\\Cache\\_CACHE_MAP_", 800, kFirefox, kDecoy},
    {kLocal, CHROME L"Default\\Cache\\data_1", 8192, kChrome, kCore},
    {kLocal, CHROME L"Default\\Cache\\f_000001", 3100, kChrome, kCore},
    {kLocal, CHROME L"Default\\Cache\\held.bin", 250, kChrome, kHeld},
    {kLocal, CHROME L"Default\\Cache\\empty\\", 0, kChrome, kCore},
    {kLocal, CHROME L"Default\\Local Storage\\https_example.com_0.localstorage", 4000, kChrome, kDecoy, 1, kCookies},
    // Both the Local Storage walk and the profile walk of a scan reach it.
    {kLocal, CHROME L"Default\\Local Storage\\https_example.com_0.localstorage-journal", 600, kChrome, kCore, 2},
    {kLocal, CHROME L"Default\\Cookies-journal", 300, kChrome, kCore},
    {kLocal, CHROME L"Default\\-journal", 50, kChrome, kDecoy},
    {kLocal, CHROME L"Default\\Cookies", 1000, kChrome, kDecoy, 1, kCookies},
    {kLocal, CHROME L"Default\\Media Cache\\f_000010", 5000, kChrome, kCore},
    {kLocal, CHROME L"Default\\download.tmp", 1200, kChrome, kCore},
    {kLocal, CHROME L"stale.tmp", 800, kChrome, kCore},
    {kLocal, CHROME L"Safe Browsing Cookies-journal", 400, kChrome, kCore},
    {kLocal, CHROME L"Safe Browsing Cookies", 450, kChrome, kDecoy},
    {kLocal, CHROME L"Profile 1\\Cache\\data_0", 2500, kChrome, kProfile1},
    {kLocal, CHROME L"Profile 2\\Cache\\data_0", 2600, kChrome, kProfile2},
    {kLocal, L"Apple Computer\\Safari\\Cache.db", 6000, kSafari, kSafariGate},
    {kLocal, L"Apple Computer\\Safari\\WebpageIcons.db", 700, kSafari, kDecoy},
    {kLocal, L"Opera\\Opera\\cache\\g_0000\\opr00001.tmp", 1100, kOpera, kOldOpera},
    {kLocal, L"Opera\\Opera\\opcache\\g_0001\\opr00002", 1300, kOpera, kOldOpera},
    {kLocal, L"Opera\\Opera\\icons\\cache\\site.ico", 1400, kOpera, kOldOpera},
    {kRoaming, L"Opera\\Opera\\cookies4.dat", 600, kOpera, kDecoy},
    {kLocal, OPERA_NEW L"cache\\f_000001", 1600, kOpera, kNewOpera},
    {kRoaming, OPERA_NEW L"GPUCache\\data_0", 1700, kOpera, kNewOpera},
    {kLocal, OPERA_NEW L"icons\\cache\\b.ico", 1800, kOpera, kNewOpera},
    {kRoaming, OPERA_NEW L"Cookies-journal", 1900, kOpera, kNewOpera},
    {kRoaming, OPERA_NEW L"Cookies", 2000, kOpera, kDecoy},
};

// Every folder the rows plant in, and the one file planted in a folder Wine
// has of its own, so that nothing is left behind.
const std::pair<Root, const wchar_t*> kOwned[] = {
    {kLocal, L"Microsoft\\Windows\\Temporary Internet Files"},
    {kLocal, L"Microsoft\\Windows\\INetCookies\\decoy@example[1].txt"},
    {kLocal, L"Mozilla"}, {kLocal, L"Google"}, {kLocal, L"Apple Computer"}, {kLocal, L"Opera"},
    {kLocal, L"Opera Software"}, {kRoaming, L"Mozilla"}, {kRoaming, L"Opera"}, {kRoaming, L"Opera Software"},
};

const wchar_t kGateDirectory[] = L"C:\\scourel-tests\\browser-cwd";
const wchar_t kCanary[] = L"C:\\scourel-tests\\browser-canary";

std::wstring Under(Root root, const std::wstring& path) {
  return ShellFolderPath(root == kLocal ? CSIDL_LOCAL_APPDATA : CSIDL_APPDATA) + L"\\" + path;
}

bool IsFolderRow(const TraceRow& row) { return std::wstring_view(row.path).ends_with(L'\\'); }

std::string BytesOf(const TraceRow& row) { return std::string(row.size, static_cast<char>('a' + (&row - kRows) % 26)); }

}  // namespace

std::span<const TraceRow> BrowserTraceRows() { return kRows; }

std::wstring PathOf(const TraceRow& row) { return Under(row.root, row.path); }

bool Plants(const BrowserScenario& scenario, const TraceRow& row) {
  switch (row.group) {
    case kOldOpera: return scenario.operaOld;
    case kNewOpera: return scenario.operaNew;
    case kProfile1:
    case kProfile2: return scenario.profiles;
    default: return true;
  }
}

void PlantBrowserTraces(const BrowserScenario& scenario) {
  for (const TraceRow& row : kRows) {
    if (!Plants(scenario, row)) continue;
    const std::wstring path = PathOf(row);
    MakeDirs(path.substr(0, path.rfind(L'\\')));
    if (IsFolderRow(row)) continue;
    WriteFileBytes(path, BytesOf(row));
    if (&row == kRows) ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
  }
  const std::wstring name = scenario.profilePath;
  MakeDirs(Under(kRoaming, L"Mozilla\\Firefox"));
  WriteFileBytes(Under(kRoaming, L"Mozilla\\Firefox\\profiles.ini"),
                 "[General]\r\nStartWithLastProfile=1\r\n\r\n[Profile0]\r\nName=default\r\nIsRelative=1\r\nPath=" +
                     std::string(name.begin(), name.end()) + "\r\n");
}

void RemoveBrowserRoots() {
  for (const auto& [root, path] : kOwned) RemoveTree(Under(root, path));
}

BrowserFixture::BrowserFixture(const BrowserScenario& scenario) : scenario_(scenario), canary_(kCanary) {
  RemoveBrowserRoots();
  PlantBrowserTraces(scenario_);
  for (const TraceRow& row : kRows) {
    if (row.group == kHeld) {
      held_.reset(::CreateFileW(PathOf(row).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    }
  }
  link_ = Under(kLocal, CHROME L"Default\\Cache\\linked");
  MakeUnixSymlink(kCanary, link_);
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
  held_.reset();
  RemoveUnixLink(link_);
  RemoveBrowserRoots();
  RemoveTree(kGateDirectory);
  RemoveTree(kCanary);
}

bool BrowserFixture::Takes(const TraceRow& row, protocol::BrowserCategory category) const {
  if (row.category != category || !Plants(scenario_, row)) return false;
  switch (row.group) {
    case kCore:
    case kOldOpera: return true;
    case kNewOpera: return !scenario_.operaOld;
    case kProfile1: return scenario_.extraProfile;
    case kSafariGate: return scenario_.safariGate;
    default: return false;
  }
}

Expected BrowserFixture::Of(protocol::Browser browser, protocol::BrowserCategory category, Mode mode) const {
  Expected sum;
  for (const TraceRow& row : kRows) {
    if (row.browser != browser || !Takes(row, category) || IsFolderRow(row)) continue;
    const int times = mode == Mode::kMeasure ? row.scanCount : 1;
    sum.count += times;
    sum.bytes += static_cast<float>(row.size) * static_cast<float>(times);
  }
  // Without a "Profile" folder the extra-profile step lands in the drive root's Cache.
  if (browser == kChrome && category == protocol::BrowserCategory::kCache && scenario_.extraProfile &&
      !scenario_.profiles) {
    sum.count += kRootCacheFiles.count;
    sum.bytes += kRootCacheFiles.bytes;
  }
  return sum;
}

Expected BrowserFixture::Total(protocol::BrowserCategory category, Mode mode) const {
  Expected total;
  for (int b = 0; b < protocol::kBrowserCount; ++b) {
    const Expected cell = Of(static_cast<protocol::Browser>(b), category, mode);
    total.count += cell.count;
    total.bytes += cell.bytes;
  }
  return total;
}

std::wstring BrowserFixture::Damage(protocol::BrowserCategory category, Mode mode) const {
  for (const TraceRow& row : kRows) {
    if (!Plants(scenario_, row)) continue;
    const std::wstring path = PathOf(row);
    // A scan leaves files but removes the folders that are empty.
    if (Takes(row, category) && (mode == Mode::kErase || IsFolderRow(row))) {
      if (PathExists(path)) return L"still there: " + path;
    } else if (IsFolderRow(row) || row.group == kHeld ? !PathExists(path) : ReadFileBytes(path) != BytesOf(row)) {
      return L"missing or changed: " + path;
    }
  }
  return canary_.Damage();
}

WineVersionOf::WineVersionOf(const std::wstring& program, const std::wstring& version)
    : key_(L"Software\\Wine\\AppDefaults\\" + program) {
  const auto bytes = static_cast<DWORD>((version.size() + 1) * sizeof(wchar_t));
  ::RegSetKeyValueW(HKEY_CURRENT_USER, key_.c_str(), L"Version", REG_SZ, version.c_str(), bytes);
}

WineVersionOf::~WineVersionOf() { ::RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str()); }

}  // namespace scourel::test
