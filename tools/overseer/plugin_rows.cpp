#include "overseer/plugin_rows.h"

#include "overseer/report_output.h"
#include "overseer/settings_writer.h"
#include "plugins/plugin_definitions.h"
#include "plugins/plugin_files.h"
#include "protocol/size_text.h"

namespace overseer {

std::optional<std::vector<PluginRow>> MeasurePluginRows(const Options& options, const std::wstring& workerPath) {
  const auto root = InstallRootOf(workerPath);
  if (options.verb != Verb::kScan || !root) return std::nullopt;
  const std::wstring folder = scourel::PluginsFolder(*root);
  std::vector<PluginRow> rows;
  for (const std::wstring& name : scourel::PluginNames(folder, nullptr)) {
    const scourel::LoadedPlugin plugin = scourel::LoadPlugin(folder, name);
    scourel::TaskTotals totals;
    if (plugin.status == scourel::LoadStatus::kRead) {
      const scourel::TaskContext context{totals, scourel::SystemCleanerIo(), nullptr, 0, scourel::Mode::kMeasure,
                                         nullptr, *root, L""};
      scourel::RunPlugin(context, plugin.definition);
    }
    rows.push_back({name, totals.pluginItems.get(), totals.pluginBytes.get()});
  }
  return rows;
}

std::string PluginRowsTable(const std::vector<PluginRow>& rows) {
  std::string out = "plug-ins  per plug-in, measured by overseer before the command (the worker reports a total)\n";
  for (const PluginRow& row : rows) {
    std::string name = Utf8(row.name);
    name.resize(std::max<size_t>(name.size() + 1, 40), ' ');
    out += "          " + name + std::to_string(row.count) + " " + Utf8(scourel::SizeText(row.bytes)) + "\n";
  }
  return rows.empty() ? out + "          none\n" : out;
}

std::string PluginRowsJson(const std::vector<PluginRow>& rows) {
  std::string out = "[";
  for (size_t i = 0; i < rows.size(); ++i) {
    out += std::string(i ? ", " : "") + "{\"plugin\": " + JsonString(rows[i].name) +
           ", \"items\": " + std::to_string(rows[i].count) +
           ", \"size\": " + JsonString(scourel::SizeText(rows[i].bytes)) + "}";
  }
  return out + "]";
}

}  // namespace overseer
