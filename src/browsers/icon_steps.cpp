#include "browsers/step_table.h"

namespace scourel {

namespace {

using namespace step_table;

// Opera's jump-list icons, counted in the icons counter as well. The old
// layout's folder holds its icon cache too.
constexpr BrowserStep kIconSteps[] = {
    {kOpera, kOperaOld, kLocal, L"Opera\\Opera\\icons", kWholeTree, {}, kIconsCounter},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable\\Jump List Icons", kWholeTree, {}, kIconsCounter},
    {kOpera, kOperaNew, kRoaming, L"Opera Software\\Opera Stable\\Jump List IconsOld", kWholeTree, {}, kIconsCounter},
};

}  // namespace

std::span<const BrowserStep> IconSteps() { return kIconSteps; }

}  // namespace scourel
