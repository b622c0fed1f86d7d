// The COM references scan: the class, type library and interface keys of
// HKEY_CLASSES_ROOT and their 32-bit twins, through every subkey. Each value
// (those named "URL" or "CodeBase" aside) goes through these rules in order;
// a value may be recorded by several of them, one row each.
//
// | Rule             | Looks at                          | Records the value when                         |
// |------------------|-----------------------------------|------------------------------------------------|
// | library          | data with ".dll"/".DLL" past its  | no ":\" and it ends in "\" and one character   |
// |                  | first character                   | (then the next value); a part behind the last  |
// |                  |                                   | "\" under four characters ends the value here  |
// | application id   | the value "AppID"                 | no "{" and neither empty nor "%APPID%" (then   |
// |                  |                                   | the next value); else AppID\<data> is missing  |
// |                  |                                   | from both views, and the rules go on           |
// | clsid, typelib   | keys so named, any case           | data with "{", 3 or more characters, missing   |
// |                  |                                   | from CLSID\ (TypeLib\) in both views; other    |
// |                  |                                   | data ends the value here                       |
// | ProxyStubClsid32 | keys so named, any case           | CLSID\<data> is missing from both views        |
// | file             | data with ":\"                    | it starts with a drive A-K or M-P (either case)|
// |                  |                                   | and the file reference test fails              |
//
// A key that exists but cannot be opened counts as present.
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

// 1 when the key opened, 0 otherwise. Records in the COM category.
int ScanComKey(const TaskContext& context, HKEY root, const std::wstring& path);

}  // namespace scourel
