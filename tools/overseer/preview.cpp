#include "overseer/preview.h"

#include <map>

#include "browsers/browser_steps.h"
#include "browsers/browser_traces.h"
#include "overseer/current_directory.h"
#include "overseer/fix_scope.h"
#include "overseer/report_output.h"
#include "overseer/settings_writer.h"
#include "plugins/plugin_definitions.h"
#include "plugins/plugin_files.h"
#include "plugins/plugin_targets.h"
#include "registry_cleaner/registry_fix.h"
#include "registry_cleaner/registry_issues.h"
#include "registry_cleaner/registry_scan.h"
#include "task/settings.h"
#include "windows_traces/dead_shortcuts.h"
#include "windows_traces/junk_files.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/recycle_bin.h"

namespace overseer {

namespace {

namespace p = scourel::protocol;
using scourel::TaskContext;
using scourel::TaskTotals;

// One run: the recording io, the totals the erasing form adds to, and the
// switches as the worker would read them once the command line's were written.
class PreviewRun {
 public:
  PreviewRun(const Options& options, const std::wstring& root, Preview& preview)
      : options_(options),
        settings_(root + L"\\" + kSettingsFileName),
        family_(options.secondSet ? scourel::FamilyForSecondSet(options.mode) : scourel::KeyFamily::kFirstSet),
        context_{totals_, io_, nullptr, 0, scourel::Mode::kErase, nullptr, root, settings_.path()},
        preview_(preview) {}

  void Area(const p::TaskSpec& spec) {
    switch (spec.task) {
      case p::Task::kJunkFiles: Junk(); break;
      case p::Task::kShortcuts: Shortcuts(); break;
      case p::Task::kRecycleBin: Recycle(); break;
      case p::Task::kBrowser: Browser(); break;
      case p::Task::kPcTraces: Pc(); break;
      case p::Task::kPluginClean: Plugins(); break;
      case p::Task::kRegistryFix: Registry(); break;
      case p::Task::kExtensionFix: Extensions(); break;
      case p::Task::kFullScan:
      case p::Task::kFreeSpaceWipe: break;
    }
  }

  void Finish() { preview_.changes = io_.TakeChanges(); }

 private:
  PreviewGroup& Group(std::string area, std::string category = {}, std::string owner = {}) {
    preview_.groups.push_back({std::move(area), std::move(category), std::move(owner), {}, 0, false, {}});
    io_.SetGroup(static_cast<std::uint32_t>(preview_.groups.size() - 1));
    return preview_.groups.back();
  }

  bool Switch(const std::optional<std::vector<bool>>& given, std::size_t index, std::wstring_view suffix,
              unsigned chars) const {
    return given ? (*given)[index] : settings_.Switch(family_, suffix, chars);
  }

  void Junk() {
    scourel::ResetForJunkFileScan(totals_);
    PreviewGroup& group = Group("junk");
    scourel::JunkFiles(context_);
    group.counts = {{"temporary_files", totals_.junkFirst.get()}, {"other_files", totals_.junkSecond.get()}};
    group.bytes = totals_.byteTotal.get();
    group.hasBytes = true;
    group.note = "crash dumps are counted and kept; the scan counts a file two walks find once";
  }

  void Shortcuts() {
    totals_.junkSecond.set(0);
    totals_.byteTotal.set(0);
    PreviewGroup& group = Group("shortcuts");
    scourel::DeadShortcuts(context_);
    group.counts = {{"dead_shortcuts", totals_.junkSecond.get()}};
    group.bytes = totals_.byteTotal.get();
    group.hasBytes = true;
  }

  void Recycle() {
    totals_.recycleBinItems.set(0);
    totals_.recycleBinBytes.set(0);
    PreviewGroup& group = Group("recycle");
    scourel::RecycleBins(context_);
    group.counts = {{"recycle_bin_items", totals_.recycleBinItems.get()}};
    group.note = "the shell empties every bin at once; its items are counted, not listed";
  }

  // One group per category and browser: each step names its browser as it
  // begins, and what it takes is filed there.
  void Browser() {
    scourel::ResetBrowserTotals(totals_);
    const scourel::OsVersion version = scourel::SystemVersion();
    struct Cell {
      int browser;
      std::size_t category, group;
    };
    std::vector<Cell> cells;
    for (std::size_t c = 0; c < p::kBrowserCategoryCount; ++c) {
      const p::BrowserCategorySpec& spec = p::kBrowserCategories[c];
      if (!Switch(options_.browser, c, spec.keySuffix, scourel::kBrowserChars)) continue;
      std::map<int, std::size_t> groups;  // browser -> group index
      for (const scourel::BrowserStep& step : scourel::StepsOf(spec.category).steps) {
        const int browser = static_cast<int>(step.browser);
        if (groups.count(browser)) continue;
        Group("browser", std::string(spec.name), std::string(p::kBrowserNames[browser]));
        groups[browser] = preview_.groups.size() - 1;
      }
      io_.OnBrowserStep([&](p::Browser browser) {
        io_.SetGroup(static_cast<std::uint32_t>(groups[static_cast<int>(browser)]));
      });
      scourel::BrowserCategoryStep(context_, spec.category, version);
      io_.OnBrowserStep(nullptr);
      for (const auto& [browser, index] : groups) cells.push_back({browser, c, index});
    }
    // A step may count in another category's column: the counts are read
    // once every category has run, and items stay where they were taken.
    for (const Cell& cell : cells) {
      PreviewGroup& group = preview_.groups[cell.group];
      const scourel::CountAndBytes& totals = totals_.browser.cells[cell.browser][cell.category];
      group.counts = {{group.category, totals.count.get()}};
      group.bytes = totals.bytes.get();
      group.hasBytes = true;
    }
    PreviewGroup& also = Group("browser", "also_counted");
    also.counts = {{"ie_cookie_entries", totals_.browser.ieCookieEntries.get()},
                   {"firefox_offline_cache", totals_.browser.firefoxOfflineCache.get()},
                   {"icons", totals_.browser.icons.get()}};
    also.note = "counters kept beside the totals; their items are listed in their categories";
  }

  void Pc() {
    for (auto& counter : totals_.pcTraces) counter.set(0);
    totals_.byteTotal.set(0);
    std::size_t switchIndex = 0;
    for (const p::PcStepSpec& step : p::kPcSteps) {
      const bool hasSwitch = !step.keySuffix.empty();
      const bool on = !hasSwitch || Switch(options_.pc, switchIndex, step.keySuffix,
                                           options_.secondSet ? scourel::kPcTracesSecondSetChars
                                                              : scourel::kPcTracesFirstSetChars);
      if (hasSwitch) ++switchIndex;
      if (!on) continue;
      PreviewGroup& group = Group("pc", std::string(step.name));
      const float before = totals_.byteTotal.get();
      scourel::kPcStepFunctions[static_cast<int>(step.step)](context_);
      group.counts = {{std::string(step.name), totals_.pcTraces[p::CounterOf(step.step)].get()}};
      group.bytes = totals_.byteTotal.get() - before;
      group.hasBytes = true;
      if (step.step == p::PcStep::kRunHistory || step.step == p::PcStep::kFindFiles) {
        group.note = "a list's first value is listed, the rest go with its key";
      }
    }
  }

  void Plugins() {
    const std::wstring folder = scourel::PluginsFolder(context_.installRoot);
    for (const std::wstring& name : scourel::PluginNames(folder, &io_)) {
      const scourel::LoadedPlugin plugin = scourel::LoadPlugin(folder, name);
      PreviewGroup& group = Group("plugins", {}, Utf8(name));
      const std::int32_t items = totals_.pluginItems.get();
      const float bytes = totals_.pluginBytes.get();
      if (plugin.status == scourel::LoadStatus::kRead) {
        for (const scourel::PluginEntry& entry : plugin.definition.entries) {
          const std::string_view refusal = scourel::ResolveEntry(entry, folders_).refusal;
          if (refusal.empty()) continue;
          Change refused = Made(ChangeKind::kRefused, entry.value);
          refused.reason = std::string(refusal);
          io_.Note(std::move(refused));
        }
        scourel::RunPlugin(context_, plugin.definition);
      }
      group.counts = {{"plugin_items", totals_.pluginItems.get() - items}};
      group.bytes = totals_.pluginBytes.get() - bytes;
      group.hasBytes = true;
      if (plugin.status != scourel::LoadStatus::kRead) group.note = "not read: the worker skips it";
    }
  }

  // The fix takes what the worker's last full scan found; the preview scans
  // now and fixes what that finds, category by category.
  void Registry() {
    scourel::RunRegistryScan(context_.With(scourel::Mode::kMeasure));
    Options fix = options_;
    fix.task = &p::SpecOf(p::Task::kRegistryFix);
    for (int category : FixCategories(fix, settings_.path())) {
      for (auto& flag : scourel::g_registry.fixFlags) flag.set(0);
      scourel::g_registry.fixFlags[category].set(1);
      PreviewGroup& group = Group("registry", std::string(p::RegistryCategoryName(category)));
      group.counts = {{std::string(p::RegistryCategoryName(category)), scourel::g_registry.found.Count(category)}};
      scourel::FixSelected(context_);
      group.note = "a value alone in its key takes the key";
    }
    for (auto& flag : scourel::g_registry.fixFlags) flag.set(0);
  }

  void Extensions() {
    PreviewGroup& group = Group("extensions", "file_extensions");
    const int found = scourel::RunFileExtensionScan(context_.With(scourel::Mode::kMeasure));
    group.counts = {{"file_extensions", found}};
    scourel::FixFileExtensions(context_);
  }

  const Options& options_;
  const scourel::PluginFolders folders_ = scourel::SystemPluginFolders();
  const scourel::SettingsFile settings_;
  const scourel::KeyFamily family_;
  TaskTotals totals_;
  RecordingIo io_;
  TaskContext context_;
  Preview& preview_;
};

}  // namespace

std::vector<const p::TaskSpec*> PreviewAreas(const Options& options) {
  std::vector<const p::TaskSpec*> areas;
  for (const p::TaskSpec& spec : p::kTasks) {
    if (spec.command != "clean" && spec.command != "fix") continue;
    if (!options.task || options.task == &spec) areas.push_back(&spec);
  }
  return areas;
}

Preview RunPreview(const Options& options, const std::wstring& workerPath, std::string* error) {
  Preview preview;
  const auto root = InstallRootOf(workerPath);
  if (!root) {
    if (error) *error = "cannot tell the worker's install root";
    return preview;
  }
  preview.currentDirectory = workerPath.substr(0, workerPath.rfind(L'\\') + 1);
  const CurrentDirectory inWorkerFolder(preview.currentDirectory);
  PreviewRun run(options, *root, preview);
  for (const p::TaskSpec* area : PreviewAreas(options)) run.Area(*area);
  run.Finish();
  return preview;
}

}  // namespace overseer
