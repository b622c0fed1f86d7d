#include "browsers/browser_steps.h"

namespace scourel {

namespace {

using enum protocol::Browser;
using enum Gate;
using enum Base;
using enum Treatment;

#define CHROME_DEFAULT L"Google\\Chrome\\User Data\\Default\\"
#define OPERA_NEW L"Opera Software\\Opera Stable\\"

// The open tabs and windows each browser restores on its next start.
constexpr BrowserStep kSessionSteps[] = {
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"sessionstore.bak", kSingleFile},
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"sessionstore.js", kSingleFile},
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"content-prefs.sqlite", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"Current Session", kSingleFile},
    {kChrome, kChromeDefault, kLocal, CHROME_DEFAULT L"Last Session", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Current Session", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Last Session", kSingleFile},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\sessions\\autosave.win", kSingleFile},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\sessions\\autosave.win.bak", kSingleFile},
    {kOpera, kOperaNew, kRoaming, OPERA_NEW L"sessions\\autosave.win", kSingleFile},
    {kOpera, kOperaNew, kRoaming, OPERA_NEW L"sessions\\autosave.win.bak", kSingleFile},
    {kOpera, kOperaNew, kRoaming, OPERA_NEW L"session.db", kSingleFile},
    {kOpera, kOperaNew, kRoaming, OPERA_NEW L"session.dbak", kSingleFile},
};

}  // namespace

std::span<const BrowserStep> SessionSteps() { return kSessionSteps; }

}  // namespace scourel
