#include "overseer/plugin_commands.h"

#include "common/unique_handle.h"
#include "overseer/report_output.h"
#include "overseer/whole_file.h"
#include "plugins/plugin_files.h"
#include "plugins/rules_import.h"

namespace overseer {

namespace {

using namespace scourel;

std::string Counts(const PluginDefinition& plugin) {
  int counts[std::size(kEntryFamilies)] = {};
  for (const PluginEntry& entry : plugin.entries) ++counts[static_cast<int>(entry.kind)];
  return "keys " + std::to_string(counts[0]) + ", values " + std::to_string(counts[1]) + ", files " +
         std::to_string(counts[2]);
}

std::string Line(std::string_view label, const std::string& text) {
  std::string line(label);
  line.resize(std::max<size_t>(line.size() + 1, 10), ' ');
  return line + text + "\n";
}

}  // namespace

PluginCommandResult ListPluginFiles(const std::wstring& pluginsFolder) {
  PluginCommandResult result;
  result.out = Line("plugins", Utf8(pluginsFolder));
  const std::vector<std::wstring> names = PluginNames(pluginsFolder, nullptr);
  const PluginFolders folders = SystemPluginFolders();
  for (const std::wstring& name : names) {
    const LoadedPlugin plugin = LoadPlugin(pluginsFolder, name);
    const std::string shown = Utf8(name);
    if (plugin.status != LoadStatus::kRead) {
      result.out += Line("plugin", shown + ": not read (" +
                                       (plugin.status == LoadStatus::kTooLarge
                                            ? "larger than " + std::to_string(kMaxPluginFileBytes >> 10) + " KiB)"
                                            : std::string("cannot be opened)")));
      continue;
    }
    const PluginDefinition& definition = plugin.definition;
    if (!definition.hasInfo) {
      result.out += Line("plugin", shown + ": no Info section, nothing to do");
      continue;
    }
    result.out += Line("plugin", shown + ": " + JsonString(definition.description) + " (" + Counts(definition) + ")");
    for (const PluginEntry& entry : definition.entries) {
      const EntryTarget target = ResolveEntry(entry, folders);
      if (!target.refusal.empty()) {
        result.out += Line("refused", shown + " " + Utf8(entry.name()) + ": " + std::string(target.refusal));
      }
    }
  }
  result.out += Line("found", std::to_string(names.size()) + " plug-in" + (names.size() == 1 ? "" : "s"));
  return result;
}

PluginCommandResult ImportRulesFile(const std::wstring& rulesFile, const std::wstring& pluginsFolder) {
  PluginCommandResult result;
  std::string bytes;
  // Rules files run to a few MiB; anything past 64 MiB is not one.
  if (!ReadWholeFile(rulesFile, bytes, 64u << 20)) return {1, "", "cannot read " + Utf8(rulesFile)};
  ::CreateDirectoryW(pluginsFolder.c_str(), nullptr);
  result.out = Line("import", Utf8(rulesFile) + " -> " + Utf8(pluginsFolder));
  // Rules files are UTF-8 when they carry no byte-order mark.
  const auto sections = ImportRules(DecodeIniBytes(bytes, CP_UTF8), SystemPluginFolders());
  size_t written = 0;
  for (const ImportedSection& section : sections) {
    result.out += Line("section", Utf8(section.name));
    for (const ImportedPlugin& plugin : section.plugins) {
      const std::wstring path = pluginsFolder + L"\\" + plugin.fileName + L".cv";
      if (!WriteWholeFile(path, EncodeUtf16Le(PluginText(plugin.definition)))) {
        return {1, result.out, "cannot write " + Utf8(path)};
      }
      ++written;
      result.out += Line("wrote", Utf8(plugin.fileName) + ".cv (" + Counts(plugin.definition) + ")");
    }
    for (const SkippedRule& skipped : section.skipped) {
      result.out += Line("skipped", Utf8(skipped.key) + ": " + skipped.reason);
    }
  }
  result.out += Line("done", std::to_string(sections.size()) + " sections, " + std::to_string(written) +
                                 " plug-in files written");
  return result;
}

}  // namespace overseer
