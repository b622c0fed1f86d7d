// The one decision the registry scans share: does the file or folder that a
// registry value's text names exist? Lenient by design: whatever cannot be
// read as a path on a drive A to T counts as valid, so that an entry whose
// reference is not understood is never deleted.
#pragma once

#include <optional>
#include <string>

namespace scourel {

// Cuts the path to test out of a value's text; no file-system access.
// Empty result: the text is valid without a test (no drive letter A to T at
// its start). windowsDir is the Windows directory with a trailing backslash;
// it replaces "%SYSTEMROOT%".
std::optional<std::wstring> ReduceFileReference(std::wstring text, const std::wstring& windowsDir);

// Nonzero when the reference is valid or was not tested, zero when the path
// it names does not exist. Relative names are tested against the current
// directory.
int IsFileReferenceValid(std::wstring text);

}  // namespace scourel
