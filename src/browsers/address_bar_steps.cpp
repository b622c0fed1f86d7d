#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

// Addresses typed into the address bar. Each Opera layout is looked for on
// its own here: with both present, both lists go.
constexpr BrowserStep kAddressBarSteps[] = {
    {kInternetExplorer, kAlways, kCurrentUser, L"Software\\Microsoft\\Internet Explorer\\TypedURLs", kKeyValues},
    {kInternetExplorer, kAlways, kCurrentUser, L"Software\\Microsoft\\Internet Explorer\\TypedURLsTime", kKeyValues},
    {kOpera, kOperaOld, kRoaming, L"Opera\\Opera\\typed_history.xml", kSingleFile},
    {kOpera, kOperaNewFolder, kRoaming, L"Opera Software\\Opera Stable\\typed_history.xml", kSingleFile},
};

}  // namespace

std::span<const BrowserStep> AddressBarSteps() { return kAddressBarSteps; }

}  // namespace scourel
