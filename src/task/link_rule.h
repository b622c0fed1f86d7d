// The one rule for links on the way to what a cleaner visits. A location (a
// folder or file) is visited only when no folder after its base folder (an
// application-data folder, the Windows folder, Temp, a profile, a plug-in's
// token folder), down to the location itself, is a reparse point, and the
// path its opened handle reaches is the base's own followed by the rest of
// the path built; otherwise it is skipped as if missing. The base itself may
// be reached through a link (a relocated profile is the user's choice).
#pragma once

#include <string>

#include "task/cleaner_io.h"

namespace scourel {

// True when `location`, at or below `base`, exists and is reached without a
// link. A base that is empty or not a prefix of `location` leaves the whole
// path under the rule. The final paths are asked through `io`.
bool ReachedWithoutLinks(CleanerIo& io, const std::wstring& base, const std::wstring& location);

}  // namespace scourel
