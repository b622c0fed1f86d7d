// What a fix command will delete, named before anything is sent: the
// categories the worker will find switched on in the settings file, as
// overseer's own options leave it.
#pragma once

#include <string>
#include <vector>

#include "overseer/command_line.h"

namespace overseer {

// Category numbers in the order the fix takes them; the file-extension fix
// has its one category.
std::vector<int> FixCategories(const Options& options, const std::wstring& settingsPath);
// "com, paths", "file extensions", or "nothing (no registry switch is on)".
std::string FixScopeText(const std::vector<int>& categories);

}  // namespace overseer
