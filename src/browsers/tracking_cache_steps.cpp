#include "browsers/browser_steps.h"

namespace scourel {

namespace {

using enum protocol::Browser;
using enum Gate;
using enum Base;
using enum Treatment;

// Internet Explorer's tracking caches.
constexpr BrowserStep kTrackingCacheSteps[] = {
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\IETldCache", kWholeTree},
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\PrivacIE", kWholeTree},
    {kInternetExplorer, kAlways, kRoaming, L"Microsoft\\Windows\\IECompatCache", kWholeTree},
};

}  // namespace

std::span<const BrowserStep> TrackingCacheSteps() { return kTrackingCacheSteps; }

}  // namespace scourel
