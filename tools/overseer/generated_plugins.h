// overseer plugins browsers: a plug-in per browser profile that names what
// the location table of its family holds, for the categories switched on,
// less what the worker's built-in browser steps already take.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "overseer/browser_discovery.h"
#include "overseer/plugin_commands.h"
#include "plugins/plugin_format.h"

namespace overseer {

// The "Info" key that marks a plug-in as generated here: reruns replace and
// remove only the plug-ins that carry it.
inline constexpr std::wstring_view kGeneratorKey = L"Generator";
inline constexpr std::wstring_view kGeneratorValue = L"overseer plugins browsers";

struct GeneratedPlugin {
  std::wstring name;  // "Edge - Work", "Edge - Work (2)": without ".cv"
  scourel::PluginDefinition definition;
};

struct Generation {
  std::vector<GeneratedPlugin> plugins;
  std::vector<std::string> notes;  // entries left out, and why
};

// categories: in the order of the browser switches; nullopt takes them all.
Generation GeneratePlugins(const Discovery& found, const std::optional<std::vector<bool>>& categories);

// The text of a generated plug-in file, marker included.
std::wstring GeneratedPluginText(const scourel::PluginDefinition& definition);
bool IsGeneratedPlugin(const std::wstring& pluginsFolder, const std::wstring& name);

// Says which browsers run, writes the plug-ins (a name another plug-in
// already has gets a suffix), and removes this command's earlier plug-ins
// that are not written again.
PluginCommandResult WriteBrowserPlugins(const std::wstring& pluginsFolder,
                                        const std::optional<std::vector<bool>>& categories);

}  // namespace overseer
