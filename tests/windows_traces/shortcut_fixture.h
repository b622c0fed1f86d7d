// Planting shortcut files for the shortcut walk's tests.
#pragma once

#include <string>

#include "common/win.h"

namespace scourel::test {

// Saves a shell link at `linkPath` whose target is `target`; false on failure.
bool CreateShortcut(const std::wstring& linkPath, const std::wstring& target);
// The target GetPath (flag 2) reads back from a shortcut file; empty on failure.
std::wstring ShortcutTarget(const std::wstring& linkPath);

std::wstring ProfileDir();
std::wstring PublicDesktopDir();
std::wstring CommonStartMenuDir();
std::wstring WindowsDir();

// The second counter that a first clean leaves at, so that Wine's own dead
// shortcuts do not enter a test's expected numbers: cleans until stable.
void CleanAwayExistingDeadShortcuts();

}  // namespace scourel::test
