// The file-extension pass: extension keys of HKEY_CLASSES_ROOT and of each
// user's Explorer "FileExts" list. The fix of this category deletes whole
// keys, so only keys that are useless as a whole are recorded.
//
// | Looks at                         | Records                                                 |
// |----------------------------------|---------------------------------------------------------|
// | each ".ext" key                  | the key, when it holds no values and no subkeys         |
// | its "OpenWithProgids" subkey     | that subkey, when it has no subkeys, holds named values |
// |                                  | and every name is a ProgID HKCR lacks                   |
// | ProfileList                      | nothing itself: each user SID beginning "S-1-5-21" has  |
// |                                  | its FileExts under HKEY_USERS scanned as above          |
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

void ExtensionKeysScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void ProfileExtensionsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);

}  // namespace scourel
