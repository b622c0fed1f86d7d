#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

#define OPERA_NEW L"Opera Software\\Opera Stable\\"

constexpr ChromeProfileName kChromeSessionNames[] = {{L"Current Session", kSingleFile}, {L"Last Session", kSingleFile}};

// The open tabs and windows each browser restores on its next start.
constexpr auto kSessionSteps = Joined(
    std::to_array<BrowserStep>({
        {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"sessionstore.bak", kSingleFile},
        {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"sessionstore.js", kSingleFile},
        {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"content-prefs.sqlite", kSingleFile},
    }),
    ChromeDefaultSteps(kChromeSessionNames), ChromeExtraSteps(kChromeSessionNames),
    std::to_array<BrowserStep>({
        {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\sessions\\autosave.win", kSingleFile},
        {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\sessions\\autosave.win.bak", kSingleFile},
        {kOpera, kOperaNew, kRoaming, OPERA_NEW L"sessions\\autosave.win", kSingleFile},
        {kOpera, kOperaNew, kRoaming, OPERA_NEW L"sessions\\autosave.win.bak", kSingleFile},
        {kOpera, kOperaNew, kRoaming, OPERA_NEW L"session.db", kSingleFile},
        {kOpera, kOperaNew, kRoaming, OPERA_NEW L"session.dbak", kSingleFile},
    }));

}  // namespace

std::span<const BrowserStep> SessionSteps() { return kSessionSteps; }

}  // namespace scourel
