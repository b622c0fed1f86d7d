#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

// The controls Internet Explorer downloaded and installed.
constexpr BrowserStep kProgramFileSteps[] = {
    {kInternetExplorer, kAlways, kWindows, L"Downloaded Program Files", kWholeTree},
};

}  // namespace

std::span<const BrowserStep> ProgramFileSteps() { return kProgramFileSteps; }

}  // namespace scourel
