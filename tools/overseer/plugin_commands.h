// overseer plugins list / import: the plug-in files in the worker's install
// root, read and written without a worker.
#pragma once

#include <string>

namespace overseer {

struct PluginCommandResult {
  int exitCode = 0;
  std::string out;    // for standard output
  std::string error;  // for standard error, when it failed
};

// Each plug-in found: description, entries of each kind, and every entry the
// worker refuses on this system, by plug-in and entry name.
PluginCommandResult ListPluginFiles(const std::wstring& pluginsFolder);

// Converts a rules file in the winapp2.ini format into plug-ins in the
// folder (created when missing), one or more per section, and lists what
// each section left out and why.
PluginCommandResult ImportRulesFile(const std::wstring& rulesFile, const std::wstring& pluginsFolder);

}  // namespace overseer
