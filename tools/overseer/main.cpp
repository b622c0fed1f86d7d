// overseer.exe: the command-line controller. Starts (or finds) the worker,
// writes the settings a command needs, sends the command and prints every
// reply until the command is complete. Every wait is bounded by --timeout.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "common/win.h"
#include "overseer/browser_rows.h"
#include "overseer/command_line.h"
#include "overseer/command_plan.h"
#include "overseer/controller_session.h"
#include "overseer/fix_scope.h"
#include "overseer/generated_plugins.h"
#include "overseer/plugin_commands.h"
#include "overseer/preview.h"
#include "overseer/preview_output.h"
#include "overseer/receipt.h"
#include "overseer/registry_backup.h"
#include "overseer/report_output.h"
#include "overseer/settings_writer.h"
#include "overseer/shred_paths.h"
#include "task/settings.h"
#include "overseer/wipe_free.h"
#include "plugins/plugin_files.h"

using namespace overseer;

namespace {

void Print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void PrintError(const std::string& text) {
  const std::string line = "overseer: " + text + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

std::wstring DefaultWorkerPath() {
  wchar_t path[MAX_PATH * 2] = {};
  ::GetModuleFileNameW(nullptr, path, MAX_PATH * 2);
  std::wstring folder = path;
  folder.resize(folder.rfind(L'\\') + 1);
  return folder + L"scourel.exe";
}

std::wstring FullPath(const std::wstring& path) {
  wchar_t full[MAX_PATH * 2] = {};
  const DWORD length = ::GetFullPathNameW(path.c_str(), MAX_PATH * 2, full, nullptr);
  return length && length < MAX_PATH * 2 ? std::wstring(full, length) : path;
}

std::string SettingsLine(const RunReport& report) {
  std::string line = "settings  " + Utf8(report.settingsPath);
  for (size_t i = 0; i < report.settingsWritten.size(); ++i) {
    line += (i ? ", " : ": ") + Utf8(report.settingsWritten[i].first) + "=" + Utf8(report.settingsWritten[i].second);
  }
  return line + "\n";
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  const ParseResult parsed = ParseCommandLine(std::vector<std::wstring>(argv + 1, argv + argc));
  if (parsed.help) {
    Print(UsageText());
    return 0;
  }
  if (!parsed.options) {
    PrintError(parsed.error);
    return 2;
  }
  const Options& options = *parsed.options;
  if (options.verb == Verb::kPlugins) {
    // Plug-in files are read and written beside the worker; none is started.
    const std::wstring worker = FullPath(options.workerPath.empty() ? DefaultWorkerPath() : options.workerPath);
    const auto root = InstallRootOf(worker);
    if (!root) {
      PrintError("cannot tell the worker's install root from \"" + Utf8(worker) + "\"");
      return 1;
    }
    const std::wstring folder = scourel::PluginsFolder(*root);
    const PluginCommandResult result = options.pluginImport     ? ImportRulesFile(options.rulesFile, folder)
                                       : options.pluginBrowsers ? WriteBrowserPlugins(folder, options.browser)
                                                                : ListPluginFiles(folder);
    Print(result.out);
    if (!result.error.empty()) PrintError(result.error);
    return result.exitCode;
  }
  if (options.verb == Verb::kShred) {
    // The worker's wipe method unless --wipe names one.
    const std::wstring worker = FullPath(options.workerPath.empty() ? DefaultWorkerPath() : options.workerPath);
    const auto root = InstallRootOf(worker);
    const unsigned method = options.wipeMethod.value_or(
        root ? scourel::SettingsFile(*root + L"\\" + kSettingsFileName).ReadWipeAlgorithm() : 0);
    const ShredRun run = ShredPaths(options.paths, method, scourel::SystemPluginFolders());
    for (const ShredLine& line : run.lines) Print(line.result + "  " + Utf8(line.path) + "\n");
    if (!run.refusal.empty()) {
      PrintError(run.refusal);
      return 2;
    }
    return run.allDone ? 0 : 1;
  }
  if (options.verb == Verb::kPreview) {
    // Runs here, from the worker's folder; no worker is started or asked.
    std::string error;
    const std::wstring worker = FullPath(options.workerPath.empty() ? DefaultWorkerPath() : options.workerPath);
    const Preview preview = RunPreview(options, worker, &error);
    if (!error.empty()) {
      PrintError(error + " from \"" + Utf8(worker) + "\"");
      return 1;
    }
    const std::string command = CommandName(options.verb, options.task);
    Print(options.json ? PreviewJson(command, preview) : PreviewTable(command, preview));
    return 0;
  }
  const unsigned timeoutMs = options.timeoutSeconds * 1000;
  const auto plan = PlanFor(options);

  RunReport report;
  report.command = CommandName(options.verb, options.task);
  std::optional<Preview> beforeClean;  // --receipt: what the clean was to take
  // Ends the run: the JSON document or the status line, and the exit code.
  auto finish = [&](ControllerSession* session, const RunOutcome& outcome) {
    if (session && !options.keepWorker) session->CloseStartedWorker();
    if (beforeClean) {
      // Written however the clean ended: what it took is known either way.
      const Receipt receipt =
          BuildReceipt(report.command, *beforeClean, RunPreview(options, report.workerPath, nullptr), outcome.status);
      if (!WriteReceipt(options.receiptPath, receipt)) PrintError("cannot write the receipt " + Utf8(options.receiptPath));
      if (!options.json) Print("receipt   " + ReceiptSummary(receipt) + " (" + Utf8(FullPath(options.receiptPath)) + ")\n");
    }
    report.status = outcome.status;
    report.error = outcome.error;
    if (!outcome.error.empty()) PrintError(outcome.error);
    Print(options.json ? JsonReport(report) : "status    " + outcome.status + "\n");
    return outcome.exitCode;
  };

  // A wipe's progress is drawn as a bar on a console, a line per 10 % elsewhere.
  DWORD consoleMode = 0;
  WipeProgressView wipeProgress(::GetConsoleMode(::GetStdHandle(STD_OUTPUT_HANDLE), &consoleMode) != 0);
  ControllerSession session([&](const DecodedReply& reply) {
    report.replies.push_back(reply);
    if (options.json) return;
    if (reply.id == scourel::protocol::kFreeSpaceProgress) {
      Print(wipeProgress.Update(static_cast<unsigned>(std::stoul(reply.fields[0].value)),
                                std::stoull(reply.fields[1].value), ::GetTickCount64()));
      return;
    }
    Print(wipeProgress.Finish() + ReplyTable(reply));
  });
  if (options.verb == Verb::kWipe) {
    const auto letter = scourel::DriveLetterOf(options.drive);
    if (const auto refusal = CheckWipeTarget(options, letter ? scourel::QueryVolume(*letter) : std::nullopt)) {
      return finish(nullptr, {"refused", refusal->text, refusal->exitCode});
    }
  }
  std::string error;
  if (plan && !session.Open(&error)) return finish(nullptr, {"failed", error, 1});

  const bool attached = plan && session.Attach();
  report.attached = attached;
  report.workerPath =
      attached ? session.workerPath() : FullPath(options.workerPath.empty() ? DefaultWorkerPath() : options.workerPath);
  report.workerPid = attached ? session.workerPid() : 0;
  if (plan && plan->needsRunningWorker && !attached) {
    return finish(nullptr, {"not running", "", 0});
  }

  // A fix names what it will delete, and deletes only when told to.
  std::vector<int> fixCategories;
  if (options.verb == Verb::kFix) {
    const auto root = InstallRootOf(report.workerPath);
    fixCategories = FixCategories(options, root ? *root + L"\\" + kSettingsFileName : L"");
    const std::string scope = FixScopeText(fixCategories);
    if (!options.yes) {
      return finish(nullptr, {"refused",
                              report.command + " deletes for good what the worker's last scan found in: " + scope +
                                  "; add --yes to go ahead",
                              2});
    }
    if (!options.json) Print("fixing    " + scope + "\n");
    if (!options.backupPath.empty() && attached) {
      return finish(nullptr, {"failed",
                              "--backup needs a worker that overseer starts, whose findings it can know: close the "
                              "running worker first",
                              1});
    }
  }

  // Settings go in before the worker starts, so nothing runs if they can't.
  report.settingsWritten = SettingsEntries(options, options.mode == L"o");
  if (!report.settingsWritten.empty() || !plan) {
    const auto root = InstallRootOf(report.workerPath);
    if (!root) {
      return finish(nullptr,
                    {"failed", "cannot tell the worker's install root from \"" + Utf8(report.workerPath) + "\"", 1});
    }
    report.settingsPath = *root + L"\\" + kSettingsFileName;
    std::wstring failedKey;
    if (!WriteSettings(report.settingsPath, report.settingsWritten, &failedKey)) {
      return finish(nullptr, {"failed", "cannot write " + Utf8(failedKey) + " to " + Utf8(report.settingsPath), 1});
    }
    if (!options.json) Print(SettingsLine(report));
  }
  if (!plan) return finish(nullptr, {"completed", "", 0});

  if (!attached && !session.Start(report.workerPath, options.mode, timeoutMs, &error)) {
    return finish(&session, {"failed", error + ": " + Utf8(report.workerPath), 1});
  }
  report.workerPid = session.workerPid();
  if (!options.json) {
    Print(std::string(attached ? "worker    attached to " : "worker    started ") + Utf8(report.workerPath) + " (pid " +
          std::to_string(report.workerPid) + ")\n");
  }
  report.browserRows = MeasureBrowserRows(options, report.workerPath);
  if (!options.json && report.browserRows) Print(BrowserRowsTable(*report.browserRows));
  report.pluginRows = MeasurePluginRows(options, report.workerPath);
  if (!options.json && report.pluginRows) Print(PluginRowsTable(*report.pluginRows));
  // Taken first, so that a receipt is written even when the scan below fails.
  if (!options.receiptPath.empty()) beforeClean = RunPreview(options, report.workerPath, nullptr);
  // The worker fixes what its own last scan found, and one just started has
  // none: for a backup or a receipt it scans first, or the fix has nothing to take.
  const bool receiptNeedsScan = options.verb == Verb::kFix && !options.receiptPath.empty() && !attached;
  if (!options.backupPath.empty() || receiptNeedsScan) {
    Options scan;
    scan.verb = Verb::kScan;
    const CommandPlan scanPlan = *PlanFor(scan);
    if (!options.json) {
      Print(std::string("command   scan, for the ") + (options.backupPath.empty() ? "receipt" : "backup") +
            " (message " + std::to_string(scanPlan.message) + ")\n");
    }
    const RunOutcome scanned = session.Run(scanPlan, timeoutMs);
    if (scanned.exitCode != 0) return finish(&session, scanned);
  }
  if (!options.backupPath.empty()) {
    // Scanned there, now here too: save what the fix may delete.
    std::size_t keys = 0;
    if (auto error = WriteFixBackup(options.backupPath, fixCategories, report.replies, &keys)) {
      return finish(&session, {"failed", *error, 1});
    }
    if (!options.json) Print("backup    " + Utf8(FullPath(options.backupPath)) + ": " + std::to_string(keys) + " keys\n");
  }
  if (!options.json) Print("command   " + report.command + " (message " + std::to_string(plan->message) + ")\n");
  return finish(&session, session.Run(*plan, timeoutMs));
}
