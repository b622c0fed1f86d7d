// Scans of the places that name programs: App Paths and the compatibility
// flags kept per program. A reference is judged only when it is a drive path
// (see NamesMissingFile), so relative names and variables are never recorded.
//
// | Scan                | Looks at                           | Records                                      |
// |---------------------|------------------------------------|----------------------------------------------|
// | App Paths           | each subkey                        | the key, when its default value names a      |
// |                     |                                    | missing program; else its "Path" value, when |
// |                     |                                    | that names a missing folder                  |
// | compatibility flags | the value names (program paths)    | the value, when the program is missing       |
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

void AppPathsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void CompatibilityFlagsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);

}  // namespace scourel
