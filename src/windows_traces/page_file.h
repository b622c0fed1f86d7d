// The system's setting for clearing the page file at shutdown.
#pragma once

#include <string>

#include "common/win.h"
#include "task/cleaner_io.h"

namespace scourel {

inline constexpr wchar_t kMemoryManagementKey[] =
    L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";
inline constexpr wchar_t kClearPageFileValue[] = L"ClearPageFileAtShutdown";

// Writes the value under root\path when the key opens with all access;
// otherwise writes nothing and says nothing.
void SetClearPageFileAt(CleanerIo& io, HKEY root, const std::wstring& path);

}  // namespace scourel
