#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

#define CHROME_DEFAULT L"Google\\Chrome\\User Data\\Default\\"

// Cookies and the pages' own storage. IE's URL-cache entries come first; the
// extra Chrome profile's "Cookies\" ends in a backslash and so never opens.
constexpr BrowserStep kCookieSteps[] = {
    {kInternetExplorer, kAlways, kUrlCache, L"cookie:", kUrlCacheCookies},
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\Cookies", kTextFiles},
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\Cookies\\Low", kTextFiles},
    {kInternetExplorer, kAlways, kLocal, L"Microsoft\\Internet Explorer\\DOMStore", kWholeTree},
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Internet Explorer\\UserData", kTextFiles},
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"cookies.sqlite", kSingleFile},
    {kFirefox, kFirefoxProfile, kFirefoxLocal, L"OfflineCache\\index.sqlite", kSingleFile, {},
     kFirefoxOfflineCacheCounter},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"Cookies", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"Local Storage", kStorageFiles},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"databases", kWholeTree},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Cookies\\", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Local Storage", kStorageFiles},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"databases", kWholeTree},
    {kSafari, kSafariCookies, kRoaming, L"Apple Computer\\Safari\\Cookies\\Cookies.binarycookies", kSingleFile},
    {kSafari, kSafariCookies, kLocal, L"Apple Computer\\Safari\\LocalStorage", kStoragePaths},
    {kOpera, kOperaOld, kLocal, L"Opera\\Opera\\pstorage\\00", kWholeTree},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\cookies4.dat", kSingleFile},
    {kOpera, kOperaNew, kLocal, L"Opera Software\\Opera Stable\\pstorage\\00", kWholeTree},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable\\cookies", kSingleFile},
};

}  // namespace

std::span<const BrowserStep> CookieSteps() { return kCookieSteps; }

}  // namespace scourel
