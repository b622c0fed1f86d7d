#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

// The disk caches, in the order they are visited. The journal walks take
// every "-journal" file of the whole Chrome profile and of the new Opera
// folder, the journals of their history and cookie databases included.
constexpr BrowserStep kCacheSteps[] = {
    {kInternetExplorer, kAlways, kLocal, L"Microsoft\\Windows\\Temporary Internet Files", kWholeTree},
    {kFirefox, kFirefoxData, kFirefoxLocal, L"Cache", kWholeTree},
    {kFirefox, kFirefoxData, kFirefoxLocal, L"jumpListCache", kWholeTree},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Default\\Cache", kWholeTree},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Default\\Local Storage", kJournalFiles},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Default", kJournalFiles},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Default\\Media Cache", kWholeTree},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Default", kTempFiles},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data", kTempFiles},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Safe Browsing Cookies-journal", kSingleFile},
    {kSafari, kSafariNamedProfile, kLocal, L"Apple Computer\\Safari\\Cache.db", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Cache", kWholeTree},
    {kOpera, kOperaOld, kLocal, L"Opera\\Opera\\cache", kWholeTree},
    {kOpera, kOperaOld, kLocal, L"Opera\\Opera\\opcache", kWholeTree},
    {kOpera, kOperaOld, kLocal, L"Opera\\Opera\\icons\\cache", kWholeTree},
    {kOpera, kOperaNew, kLocal, L"Opera Software\\Opera Stable\\cache", kWholeTree},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable\\GPUCache", kWholeTree},
    {kOpera, kOperaNew, kLocal, L"Opera Software\\Opera Stable\\icons\\cache", kWholeTree},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable", kJournalFiles},
};

}  // namespace

std::span<const BrowserStep> CacheSteps() { return kCacheSteps; }

}  // namespace scourel
