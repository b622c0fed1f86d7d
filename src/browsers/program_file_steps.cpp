#include "browsers/browser_steps.h"

namespace scourel {

namespace {

using enum protocol::Browser;
using enum Gate;
using enum Base;
using enum Treatment;

// The controls Internet Explorer downloaded and installed.
constexpr BrowserStep kProgramFileSteps[] = {
    {kInternetExplorer, kAlways, kWindows, L"Downloaded Program Files", kWholeTree},
};

}  // namespace

std::span<const BrowserStep> ProgramFileSteps() { return kProgramFileSteps; }

}  // namespace scourel
