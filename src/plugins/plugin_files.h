// Finding and reading the plug-in files of an install root, and the
// system's folders the plug-in rules are judged against.
#pragma once

#include <string>
#include <vector>

#include "plugins/plugin_format.h"
#include "plugins/plugin_targets.h"
#include "task/cleaner_io.h"

namespace scourel {

// <installRoot>\plugins
std::wstring PluginsFolder(const std::wstring& installRoot);

// The names (without ".cv") of the "*.cv" files in the folder, in listing
// order. Folders and links are no plug-ins. With `clearReadOnly`, every entry
// found loses its read-only attribute through it, as the worker's walks leave them.
std::vector<std::wstring> PluginNames(const std::wstring& folder, CleanerIo* clearReadOnly);

enum class LoadStatus { kRead, kUnreadable, kTooLarge };

struct LoadedPlugin {
  LoadStatus status = LoadStatus::kUnreadable;
  PluginDefinition definition;
};

// <folder>\<name>.cv read whole; one larger than kMaxPluginFileBytes is not read.
LoadedPlugin LoadPlugin(const std::wstring& folder, const std::wstring& name);

// The token folders and protected folders of this system, from the shell.
PluginFolders SystemPluginFolders();

}  // namespace scourel
