// Scans of HKEY_CLASSES_ROOT outside the COM scan: empty class entries,
// file types, associations, ProgIDs, and the approved shell extensions.
//
// | Scan                      | Looks at                         | Records                                 |
// |---------------------------|----------------------------------|-----------------------------------------|
// | empty keys                | each subkey of the starting key  | the subkey, when it holds no values and |
// |                           |                                  | no subkeys                              |
// | file types (FileType)     | subkeys named as class ids       | the subkey, when the class is           |
// |                           |                                  | registered in neither view              |
// | associations (root)       | ".ext" keys                      | the default value, when it names a      |
// |                           |                                  | ProgID HKCR lacks and deleting it takes |
// |                           |                                  | nothing else (no subkeys, or the key    |
// |                           |                                  | holds other values too)                 |
// | types (root)              | the other keys (ProgIDs)         | "<ProgID>\CLSID"'s default, when it is  |
// |                           |                                  | a class registered in neither view;     |
// |                           |                                  | "<ProgID>\shell\<verb>", when its       |
// |                           |                                  | command names a missing program         |
// | approved shell extensions | value names (class ids)          | the value, when the class is registered |
// |                           |                                  | in neither view                         |
//
// The class, type library and interface folders are left to the COM scan
// (the exclusion test keeps the root scans out of them).
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

void EmptyChildKeysScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void FileTypeScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void AssociationScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void ProgIdScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void ApprovedExtensionScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);

}  // namespace scourel
