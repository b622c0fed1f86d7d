#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

// Saved passwords and form entries. Firefox's key database is counted in
// Firefox's history total, as it always was.
constexpr BrowserStep kLoginSteps[] = {
    {kInternetExplorer, kAlways, kCurrentUser, L"Software\\Microsoft\\Internet Explorer\\IntelliForms\\Storage2",
     kKeyValues},
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"signons.sqlite", kSingleFile},
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"key3.db", kSingleFile, protocol::BrowserCategory::kHistory},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Default\\Login Data", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"Login Data", kSingleFile},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\wand.dat", kSingleFile},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable\\Login Data", kSingleFile},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable\\wand.dat", kSingleFile},
};

}  // namespace

std::span<const BrowserStep> LoginSteps() { return kLoginSteps; }

}  // namespace scourel
