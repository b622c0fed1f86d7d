// Stored network credentials: the files of "Microsoft\Credentials" under the
// roaming and the local application data folders.
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

// Visits "<base>\Microsoft\Credentials\*.*": each entry that opens for
// reading and writing is counted with its size and, when erasing, shredded.
void VisitCredentialFiles(const TaskContext& context, const std::wstring& baseFolder);

}  // namespace scourel
