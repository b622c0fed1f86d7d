// Process-wide state of the worker: where its settings live, how it was
// started, and its command window.
#pragma once

#include <string>

#include "common/win.h"

namespace scourel {

extern std::wstring g_settingsDir;   // install root: two folders above the exe
extern std::wstring g_settingsPath;  // g_settingsDir + "\Settings.INI"
extern std::wstring g_modeArgument;  // argv[1] verbatim; only "o" means anything
extern HWND g_commandWindow;

// Sets g_settingsDir and g_settingsPath from the executable's full path.
void LocateSettings(const std::wstring& exePath);

}  // namespace scourel
