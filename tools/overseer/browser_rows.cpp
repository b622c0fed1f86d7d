#include "overseer/browser_rows.h"

#include "browsers/browser_traces.h"
#include "overseer/current_directory.h"
#include "overseer/report_output.h"
#include "overseer/settings_writer.h"
#include "protocol/size_text.h"
#include "task/settings.h"

namespace overseer {

namespace {

namespace p = scourel::protocol;

scourel::KeyFamily FamilyOf(const Options& options) {
  if (!options.secondSet) return scourel::KeyFamily::kFirstSet;
  return scourel::FamilyForSecondSet(options.mode);
}

std::string Cell(std::int32_t count, float bytes) {
  return std::to_string(count) + " " + Utf8(scourel::SizeText(bytes));
}

std::string Padded(std::string text, size_t width) {
  if (text.size() < width) text.append(width - text.size(), ' ');
  return text;
}

std::string Line(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text + "\n";
}

}  // namespace

std::optional<BrowserRows> MeasureBrowserRows(const Options& options, const std::wstring& workerPath) {
  const bool scan = options.verb == Verb::kScan;
  const bool cleanBrowser = options.verb == Verb::kClean && options.task && options.task->task == p::Task::kBrowser;
  const auto root = InstallRootOf(workerPath);
  if ((!scan && !cleanBrowser) || !root) return std::nullopt;

  BrowserRows rows;
  rows.currentDirectory = workerPath.substr(0, workerPath.rfind(L'\\') + 1);
  const scourel::SettingsFile settings(*root + L"\\" + kSettingsFileName);
  for (const p::BrowserCategorySpec& spec : p::kBrowserCategories) {
    const bool measured = scan ? scourel::HasScan(spec.category)
                               : settings.Switch(FamilyOf(options), spec.keySuffix, scourel::kBrowserChars);
    if (measured) rows.categories.push_back(spec.category);
  }

  scourel::TaskTotals totals;
  const scourel::TaskContext context{totals, scourel::SystemCleanerIo(), nullptr, 0, scourel::Mode::kMeasure,
                                     nullptr, *root, settings.path()};
  {
    const CurrentDirectory inWorkerFolder(rows.currentDirectory);
    for (p::BrowserCategory category : rows.categories) scourel::BrowserCategoryStep(context, category);
  }
  for (int b = 0; b < p::kBrowserCount; ++b) {
    for (int c = 0; c < p::kBrowserCategoryCount; ++c) {
      const scourel::CountAndBytes& cell = totals.browser.cells[b][c];
      rows.counts[b][c] = cell.count.get();
      rows.bytes[b][c] = cell.bytes.get();
    }
  }
  rows.ieCookieEntries = totals.browser.ieCookieEntries.get();
  rows.firefoxOfflineCache = totals.browser.firefoxOfflineCache.get();
  rows.icons = totals.browser.icons.get();
  return rows;
}

std::string BrowserRowsTable(const BrowserRows& rows) {
  std::string out = "rows      per browser, measured by overseer from " + Utf8(rows.currentDirectory) +
                    " before the command (the worker reports totals only)\n";
  std::string header = Padded("", 10) + Padded("browser", 20);
  for (p::BrowserCategory category : rows.categories) {
    header += Padded(std::string(p::kBrowserCategoryNames[static_cast<int>(category)]), 18);
  }
  out += Line(header);
  for (int b = 0; b < p::kBrowserCount; ++b) {
    std::string line = Padded("", 10) + Padded(std::string(p::kBrowserNames[b]), 20);
    for (p::BrowserCategory category : rows.categories) {
      const int c = static_cast<int>(category);
      line += Padded(Cell(rows.counts[b][c], rows.bytes[b][c]), 18);
    }
    out += Line(line);
  }
  return out + Padded("", 10) + "also counted: ie_cookie_entries " + std::to_string(rows.ieCookieEntries) +
         ", firefox_offline_cache " + std::to_string(rows.firefoxOfflineCache) + ", icons " +
         std::to_string(rows.icons) + "\n";
}

std::string BrowserRowsJson(const BrowserRows& rows) {
  std::string out = "{\"measured_by\": \"overseer\", \"current_directory\": " + JsonString(rows.currentDirectory) +
                    ", \"browsers\": {";
  for (int b = 0; b < p::kBrowserCount; ++b) {
    out += std::string(b ? ", " : "") + "\"" + std::string(p::kBrowserNames[b]) + "\": {";
    for (size_t i = 0; i < rows.categories.size(); ++i) {
      const int c = static_cast<int>(rows.categories[i]);
      const std::string name(p::kBrowserCategoryNames[c]);
      out += std::string(i ? ", " : "") + "\"" + name + "\": " + std::to_string(rows.counts[b][c]) + ", \"" + name +
             "_size\": " + JsonString(scourel::SizeText(rows.bytes[b][c]));
    }
    out += "}";
  }
  return out + "}, \"also_counted\": {\"ie_cookie_entries\": " + std::to_string(rows.ieCookieEntries) +
         ", \"firefox_offline_cache\": " + std::to_string(rows.firefoxOfflineCache) +
         ", \"icons\": " + std::to_string(rows.icons) + "}}";
}

}  // namespace overseer
