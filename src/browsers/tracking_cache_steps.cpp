#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

// Internet Explorer's tracking caches.
constexpr BrowserStep kTrackingCacheSteps[] = {
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\IETldCache", kWholeTree},
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\PrivacIE", kWholeTree},
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\IECompatCache", kWholeTree},
};

}  // namespace

std::span<const BrowserStep> TrackingCacheSteps() { return kTrackingCacheSteps; }

}  // namespace scourel
