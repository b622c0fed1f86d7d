// Scans of the current user's own keys: sound events, software vendors and
// the MUI cache.
//
// | Scan              | Looks at                              | Records                                   |
// |-------------------|---------------------------------------|-------------------------------------------|
// | empty AppEvents   | Schemes\Apps\<app>, its <event> keys, | the key, when it holds no values and no   |
// |                   | and EventLabels\<label>               | subkeys (the folders above are left)      |
// | sounds            | each EventLabels\<label>'s values     | the value, when it is a drive path to a   |
// |                   |                                       | missing file                              |
// | per-user software | each Software\<vendor> key, except    | the key, when it holds no values and no   |
// |                   | Classes, Microsoft, Policies and      | subkeys                                   |
// |                   | Wow6432Node                           |                                           |
// | MUI cache         | value names: a program's path, maybe  | the value, when the program is missing    |
// |                   | with ".FriendlyAppName" or            |                                           |
// |                   | ".ApplicationCompany" behind it       |                                           |
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

void EmptyAppEventsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void SoundLabelScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void UserSoftwareScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void MuiCacheScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);

}  // namespace scourel
