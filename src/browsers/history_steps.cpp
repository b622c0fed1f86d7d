#include "browsers/browser_steps.h"

namespace scourel {

namespace {

using enum protocol::Browser;
using enum Gate;
using enum Base;
using enum Treatment;

#define IE_RECOVERY L"Microsoft\\Internet Explorer\\Recovery\\"
#define CHROME_DEFAULT L"Google\\Chrome\\User Data\\Default"
#define SAFARI L"Apple Computer\\Safari\\"
#define OPERA_NEW L"Opera Software\\Opera Stable\\"

// Browsing history and crash-recovery data. Chrome's own "History" database
// belongs to download history. The extra Chrome profile's Index files are
// looked for beside the profile folder, as its path stands without a
// closing backslash: what that finds does not open. Safari's local folders
// depend on its roaming one.
constexpr BrowserStep kHistorySteps[] = {
    {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"Last Active", kWholeTree},
    {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"Active", kWholeTree},
    {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"High\\Last Active", kWholeTree},
    {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"Low\\Last Active", kWholeTree},
    {kFirefox, kFirefoxProfile, kFirefoxLocal, L"thumbnails", kWholeTree},
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"places.sqlite", kSingleFile},
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"cert8.db", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\Archived History", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\Visited Links", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\Current Tabs", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\Last Tabs", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\Top Sites", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\History Provider Cache", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\Network Action Predictor", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\JumpListIcons", kWholeTree},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"\\JumpListIconsOld", kWholeTree},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT, kIndexFiles},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Archived History", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Visited Links", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Current Tabs", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Last Tabs", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Top Sites", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"History Provider Cache", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Network Action Predictor", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"JumpListIcons", kWholeTree},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"JumpListIconsOld", kWholeTree},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"", kIndexFilesBare},
    {kSafari, kSafariRoaming, kRoaming, SAFARI L"History.plist", kSingleFile},
    {kSafari, kSafariRoaming, kRoaming, SAFARI L"TopSites.plist", kSingleFile},
    {kSafari, kSafariRoaming, kRoaming, SAFARI L"LastSession.plist", kSingleFile},
    {kSafari, kSafariRoaming, kRoaming, SAFARI L"Downloads.plist", kSingleFile},
    {kSafari, kSafariRoaming, kLocal, SAFARI L"History", kWholeTree},
    {kSafari, kSafariRoaming, kLocal, SAFARI L"Webpage Previews", kWholeTree},
    {kOpera, kOperaOld, kLocal, L"Opera\\Opera\\vps\\0000", kWholeTree},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\global_history.dat", kSingleFile},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\download.dat", kSingleFile},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\vlink4.dat", kSingleFile},
    {kOpera, kOperaNew, kLocal, OPERA_NEW L"vps\\0000", kWholeTree},
    {kOpera, kOperaNew, kRoaming, OPERA_NEW L"Archived History", kSingleFile},
    {kOpera, kOperaNew, kRoaming, OPERA_NEW L"Visited Links", kSingleFile},
    {kOpera, kOperaNew, kRoaming, OPERA_NEW L"History Provider Cache", kSingleFile},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable", kIndexFiles},
};

}  // namespace

std::span<const BrowserStep> HistorySteps() { return kHistorySteps; }

}  // namespace scourel
