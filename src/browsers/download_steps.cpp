#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

// Download lists. Chrome keeps its downloads in its browsing history
// database, so the whole of it goes here.
constexpr BrowserStep kDownloadSteps[] = {
    {kFirefox, kFirefoxProfile, kFirefoxRoaming, L"downloads.sqlite", kSingleFile},
    {kChrome, kChromeDefault, kLocal, L"Google\\Chrome\\User Data\\Default\\History", kSingleFile},
    {kChrome, kExtraChromeProfile, kChromeExtra, L"History", kSingleFile},
};

}  // namespace

std::span<const BrowserStep> DownloadSteps() { return kDownloadSteps; }

}  // namespace scourel
