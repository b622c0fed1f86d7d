#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

#define IE_RECOVERY L"Microsoft\\Internet Explorer\\Recovery\\"
#define SAFARI L"Apple Computer\\Safari\\"
#define OPERA_NEW L"Opera Software\\Opera Stable\\"

constexpr ChromeProfileName kChromeHistoryNames[] = {
    {L"Archived History", kSingleFile},     {L"Visited Links", kSingleFile},
    {L"Current Tabs", kSingleFile},         {L"Last Tabs", kSingleFile},
    {L"Top Sites", kSingleFile},            {L"History Provider Cache", kSingleFile},
    {L"Network Action Predictor", kSingleFile}, {L"JumpListIcons", kWholeTree},
    {L"JumpListIconsOld", kWholeTree},
};

// Browsing history and crash-recovery data. Chrome's own "History" database
// belongs to download history. The extra Chrome profile's Index files are
// looked for beside the profile folder, as its path stands without a
// closing backslash: what that finds does not open. Safari's local folders
// depend on its roaming one.
constexpr auto kHistorySteps = Joined(
    std::to_array<BrowserStep>({
        {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"Last Active", kWholeTree},
        {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"Active", kWholeTree},
        {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"High\\Last Active", kWholeTree},
        {kInternetExplorer, kAlways, kLocal, IE_RECOVERY L"Low\\Last Active", kWholeTree},
        {kFirefox, kFirefoxProfile, kFirefoxLocal, L"thumbnails", kWholeTree},
        {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"places.sqlite", kSingleFile},
        {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"cert8.db", kSingleFile},
    }),
    ChromeDefaultSteps(kChromeHistoryNames),
    std::to_array<BrowserStep>({{kChrome, kChromeDefault, kChromeDefaultProfile, L"", kIndexFiles}}),
    ChromeExtraSteps(kChromeHistoryNames),
    std::to_array<BrowserStep>({
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
    }));

}  // namespace

std::span<const BrowserStep> HistorySteps() { return kHistorySteps; }

}  // namespace scourel
