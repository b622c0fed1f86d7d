// Community cleaning rules in the winapp2.ini format turned into plug-ins:
// one plug-in per section, split where a section holds more entries than a
// plug-in may. Only what a plug-in does exactly the same way is converted;
// everything else is listed with the reason it was left out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugins/plugin_format.h"
#include "plugins/plugin_targets.h"

namespace scourel {

struct SkippedRule {
  std::wstring key;  // the section's entry, such as "FileKey3"
  std::string reason;
};

struct ImportedPlugin {
  std::wstring fileName;  // without ".cv"; unique among all sections, case ignored
  PluginDefinition definition;
};

struct ImportedSection {
  std::wstring name;
  std::vector<ImportedPlugin> plugins;  // none when nothing could be converted
  std::vector<SkippedRule> skipped;
};

// `folders` are the system's: an entry the worker would refuse on this
// system is left out with the refusal as its reason.
std::vector<ImportedSection> ImportRules(std::wstring_view text, const PluginFolders& folders);

}  // namespace scourel
