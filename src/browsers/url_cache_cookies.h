// Internet Explorer's cookie entries in the WinINet URL cache.
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

// Enumerates the URL cache's entries for `pattern` ("cookie:"). The first
// entry is counted and sized but left in place. Every later one is deleted
// when erasing, then counted and sized by its local file (read afterwards,
// so an erased entry adds nothing); one whose name begins with "Cookie:" is
// deleted, counted and sized a second time. Errors end the enumeration.
void TakeUrlCacheCookies(const TaskContext& context, const std::wstring& pattern, Tally tally);

}  // namespace scourel
