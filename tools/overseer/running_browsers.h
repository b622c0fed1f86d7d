// Which of the browsers overseer writes plug-ins for are running now: a
// running browser holds its databases open, and the worker skips those.
#pragma once

#include <string>
#include <vector>

namespace overseer {

// "Edge (msedge.exe)" for each browser with a process, in table order.
std::vector<std::string> RunningBrowsers();

}  // namespace overseer
