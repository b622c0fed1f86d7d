#include "overseer/command_line.h"

#include <algorithm>
#include <cstdlib>

#include "common/text.h"

namespace overseer {

namespace {

using scourel::Narrow;
using scourel::Trimmed;

// Case-insensitive, with '-' and '_' alike, so "Address-Bar" names address_bar.
std::string Normalised(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c == '-') c = '_';
  }
  return out;
}

std::string Joined(std::span<const std::string_view> names) {
  std::string out;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i) out += ", ";
    out += names[i];
  }
  return out;
}

namespace p = scourel::protocol;

// The tasks a verb can name, in the table's order: clean and fix take the
// tasks that command starts, stop every task that has a stop command.
std::vector<const p::TaskSpec*> TargetsOf(Verb verb) {
  std::vector<const p::TaskSpec*> targets;
  for (const p::TaskSpec& spec : p::kTasks) {
    const bool wanted = verb == Verb::kStop      ? spec.sets[p::kFirstSet].stop != 0
                        : verb == Verb::kClean   ? spec.command == "clean"
                        : verb == Verb::kWipe    ? spec.command == "wipe"
                        : verb == Verb::kPreview ? spec.command == "clean" || spec.command == "fix"
                                                 : spec.command == "fix";
    if (wanted) targets.push_back(&spec);
  }
  return targets;
}

std::string TargetList(Verb verb) {
  std::string out;
  for (const p::TaskSpec* spec : TargetsOf(verb)) out += (out.empty() ? "" : ", ") + std::string(spec->name);
  return out;
}

std::string SwitchListHelp(std::span<const std::string_view> names) {
  return "all, none, or a comma-separated list of " + Joined(names);
}

std::string WipeHelp() { return "0-8 or " + Joined(kWipeNames); }

}  // namespace

std::optional<unsigned> ParseWipeMethod(std::string_view value) {
  if (value.size() == 1 && value[0] >= '0' && value[0] <= '8') return static_cast<unsigned>(value[0] - '0');
  const std::string wanted = Normalised(value);
  for (size_t i = 0; i < kWipeNames.size(); ++i) {
    if (Normalised(kWipeNames[i]) == wanted) return static_cast<unsigned>(i);
  }
  return std::nullopt;
}

std::optional<std::vector<bool>> ParseSwitchList(std::string_view value, std::span<const std::string_view> names) {
  const std::string list = Normalised(Trimmed(value));
  if (list == "all") return std::vector<bool>(names.size(), true);
  if (list == "none") return std::vector<bool>(names.size(), false);
  std::vector<bool> on(names.size(), false);
  std::string_view rest = list;
  for (;;) {
    const size_t comma = rest.find(',');
    const std::string_view item = Trimmed(rest.substr(0, comma));
    const auto found = std::find(names.begin(), names.end(), item);
    if (item.empty() || found == names.end()) return std::nullopt;
    on[static_cast<size_t>(found - names.begin())] = true;
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  return on;
}

std::string CommandName(Verb verb, const p::TaskSpec* task) {
  std::string verbName;
  switch (verb) {
    case Verb::kScan:
      return "scan";
    case Verb::kClose:
      return "close";
    case Verb::kSettings:
      return "settings";
    case Verb::kPlugins:
      return "plugins";
    case Verb::kShred:
      return "shred";
    case Verb::kWipe:
      verbName = "wipe";
      break;
    case Verb::kClean:
      verbName = "clean";
      break;
    case Verb::kFix:
      verbName = "fix";
      break;
    case Verb::kStop:
      verbName = "stop";
      break;
    case Verb::kPreview:
      return task ? "preview " + std::string(task->name) : "preview all";
  }
  return task ? verbName + " " + std::string(task->name) : verbName;
}

ParseResult ParseCommandLine(const std::vector<std::wstring>& args) {
  ParseResult result;
  Options options;
  std::vector<std::string> words;
  std::vector<std::wstring> wideWords;  // file names keep every character
  auto refuse = [&result](std::string message) {
    result.error = std::move(message);
    return result;
  };

  for (size_t i = 0; i < args.size(); ++i) {
    const std::string arg = Narrow(args[i]);
    if (arg.rfind("--", 0) != 0) {
      words.push_back(arg);
      wideWords.push_back(args[i]);
      continue;
    }
    std::string name = arg;
    std::optional<std::wstring> inlineValue;
    if (const size_t eq = arg.find('='); eq != std::string::npos) {
      name = arg.substr(0, eq);
      inlineValue = args[i].substr(eq + 1);
    }
    if (name == "--help") {
      result.help = true;
      return result;
    }
    if (name == "--json" || name == "--second-set" || name == "--keep-worker" || name == "--yes") {
      if (inlineValue) return refuse(name + " takes no value");
      if (name == "--json") options.json = true;
      if (name == "--second-set") options.secondSet = true;
      if (name == "--keep-worker") options.keepWorker = true;
      if (name == "--yes") options.yes = true;
      continue;
    }
    static constexpr std::string_view kValued[] = {"--worker", "--mode",     "--timeout", "--wipe",
                                                   "--browser", "--pc",      "--registry", "--backup", "--receipt"};
    if (std::find(std::begin(kValued), std::end(kValued), name) == std::end(kValued)) {
      return refuse("unknown option " + name + " (overseer --help lists the options)");
    }
    std::wstring wideValue;
    if (inlineValue) {
      wideValue = *inlineValue;
    } else if (i + 1 < args.size()) {
      wideValue = args[++i];
    } else {
      return refuse(name + " needs a value");
    }
    const std::string value = Narrow(wideValue);
    const std::string invalid = "invalid " + name + " value \"" + value + "\": valid values are ";

    if (name == "--worker") {
      if (wideValue.empty()) return refuse(invalid + "a path to scourel.exe");
      options.workerPath = wideValue;
    } else if (name == "--backup") {
      if (wideValue.empty()) return refuse(invalid + "a path for the .reg file");
      options.backupPath = wideValue;
    } else if (name == "--receipt") {
      if (wideValue.empty()) return refuse(invalid + "a path for the receipt's JSON file");
      options.receiptPath = wideValue;
    } else if (name == "--mode") {
      if (value != "o") return refuse(invalid + "o");
      options.mode = L"o";
    } else if (name == "--timeout") {
      char* end = nullptr;
      const unsigned long seconds = value.empty() ? 0 : std::strtoul(value.c_str(), &end, 10);
      if (value.empty() || *end != '\0' || value[0] == '-' || seconds < 1 || seconds > 86400) {
        return refuse(invalid + "whole seconds from 1 to 86400");
      }
      options.timeoutSeconds = static_cast<unsigned>(seconds);
    } else if (name == "--wipe") {
      options.wipeMethod = ParseWipeMethod(value);
      if (!options.wipeMethod) return refuse(invalid + WipeHelp());
    } else if (name == "--browser") {
      options.browser = ParseSwitchList(value, kBrowserNames);
      if (!options.browser) return refuse(invalid + SwitchListHelp(kBrowserNames));
    } else if (name == "--pc") {
      options.pc = ParseSwitchList(value, kPcNames);
      if (!options.pc) return refuse(invalid + SwitchListHelp(kPcNames));
    } else if (name == "--registry") {
      options.registry = ParseSwitchList(value, kRegistryNames);
      if (!options.registry) return refuse(invalid + SwitchListHelp(kRegistryNames));
    }
  }

  constexpr std::string_view kCommands =
      "valid commands are scan, clean, fix, preview, stop, close, settings, plugins, wipe, shred";
  if (words.empty()) return refuse("no command given: " + std::string(kCommands));
  const std::string& verb = words[0];
  auto needTarget = [&](Verb v) -> std::optional<std::string> {
    options.verb = v;
    if (words.size() < 2) return verb + " needs a target: valid targets are " + TargetList(v);
    for (const p::TaskSpec* spec : TargetsOf(v)) {
      if (spec->name == words[1]) {
        options.task = spec;
        return std::nullopt;
      }
    }
    return "invalid target \"" + words[1] + "\" for " + verb + ": valid targets are " + TargetList(v);
  };
  size_t used = 1;
  std::optional<std::string> targetError;
  if (verb == "scan") {
    options.verb = Verb::kScan;
  } else if (verb == "close") {
    options.verb = Verb::kClose;
  } else if (verb == "settings") {
    options.verb = Verb::kSettings;
  } else if (verb == "plugins") {
    options.verb = Verb::kPlugins;
    options.pluginImport = words.size() > 1 && words[1] == "import";
    options.pluginBrowsers = words.size() > 1 && words[1] == "browsers";
    used = options.pluginImport ? 3 : 2;
    if (words.size() < 2 || (words[1] != "list" && !options.pluginImport && !options.pluginBrowsers)) {
      return refuse("plugins needs list, import FILE.ini or browsers");
    }
    if (options.pluginImport && words.size() < 3) return refuse("plugins import needs a rules file");
    if (options.pluginImport) options.rulesFile = wideWords[2];
  } else if (verb == "wipe") {
    targetError = needTarget(Verb::kWipe);
    if (!targetError && words.size() < 3) targetError = "wipe free needs a drive, such as D:";
    if (!targetError) options.drive = wideWords[2];
    used = 3;
  } else if (verb == "shred") {
    options.verb = Verb::kShred;
    if (words.size() < 2) return refuse("shred needs at least one file or folder");
    options.paths.assign(wideWords.begin() + 1, wideWords.end());
    used = words.size();
  } else if (verb == "clean") {
    targetError = needTarget(Verb::kClean);
    used = 2;
  } else if (verb == "fix") {
    targetError = needTarget(Verb::kFix);
    used = 2;
  } else if (verb == "preview") {
    options.verb = Verb::kPreview;
    used = 2;
    if (words.size() < 2 || words[1] != "all") targetError = needTarget(Verb::kPreview);
    if (targetError) *targetError += ", all";
  } else if (verb == "stop") {
    targetError = needTarget(Verb::kStop);
    used = 2;
  } else {
    return refuse("unknown command \"" + verb + "\": " + std::string(kCommands));
  }
  if (targetError) return refuse(*targetError);
  if (words.size() > used)
    return refuse("unexpected argument \"" + words[used] + "\" after " + CommandName(options.verb, options.task));
  if (!options.backupPath.empty() && options.verb != Verb::kFix) return refuse("--backup applies to fix only");
  if (options.secondSet && (options.verb == Verb::kWipe || options.verb == Verb::kShred)) {
    return refuse("--second-set does not apply to " + CommandName(options.verb, nullptr));
  }
  if (!options.receiptPath.empty() && options.verb != Verb::kFix && options.verb != Verb::kClean) {
    return refuse("--receipt applies to clean and fix only");
  }
  if (options.secondSet &&
      (options.verb == Verb::kScan || (options.verb == Verb::kStop && options.task->task == p::Task::kFullScan))) {
    return refuse("--second-set does not apply to the full scan, which has one command only");
  }
  result.options = std::move(options);
  return result;
}

std::string UsageText() {
  return "usage: overseer [options] COMMAND [TARGET]\n"
         "\n"
         "Drives the scourel.exe worker through its window messages and prints its replies.\n"
         "\n"
         "Commands:\n"
         "  scan                       full scan; waits for all nine results\n"
         "  clean TARGET               TARGET: " +
         TargetList(Verb::kClean) +
         "\n"
         "  fix TARGET                 TARGET: " +
         TargetList(Verb::kFix) +
         "; names what it will fix and deletes\n"
         "                             only with --yes\n"
         "  preview TARGET|all         lists every item a clean or fix would take; changes\n"
         "                             nothing and starts no worker\n"
         "  stop TARGET                stops a task of the running worker; TARGET: " +
         TargetList(Verb::kStop) +
         "\n"
         "  close                      ends the running worker\n"
         "  settings                   writes the settings options only; sends nothing\n"
         "  plugins list               lists the worker's plug-ins and the entries it refuses\n"
         "  plugins import FILE.ini    converts winapp2.ini-format rules into plug-ins\n"
         "  plugins browsers           writes plug-ins for every profile of today's browsers\n"
         "                             (--browser LIST: the categories they take)\n"
         "  wipe free DRIVE            fills the drive's free space with --wipe's passes, then removes\n"
         "                             the fill; --yes for more than three passes over 64 GiB\n"
         "  shred PATH...              shreds files, and folders with all they hold, with --wipe's passes\n"
         "\n"
         "Options:\n"
         "  --worker PATH      scourel.exe to start (default: beside overseer.exe); a running\n"
         "                     worker is used instead when there is one\n"
         "  --mode o           start the worker with mode argument o (second set reads IDS_O keys)\n"
         "  --second-set       use the second command set (plain or IDS_O settings keys)\n"
         "  --timeout SECONDS  longest wait for the worker and between replies (default 300)\n"
         "  --keep-worker      leave a worker that overseer started running\n"
         "  --json             print one JSON document instead of the table\n"
         "  --yes              let a fix delete what the worker's scan found, or a long wipe run\n"
         "  --backup FILE      fix: start a worker of our own, scan, and write every key the fix\n"
         "                     may delete to FILE (for reg import) before fixing\n"
         "  --receipt FILE     clean, fix: preview, clean, preview again and write per item\n"
         "                     what was taken or left, and why, to FILE (JSON)\n"
         "  --wipe METHOD      " +
         WipeHelp() +
         "\n"
         "  --browser LIST     " +
         SwitchListHelp(kBrowserNames) +
         "\n"
         "  --pc LIST          " +
         SwitchListHelp(kPcNames) +
         "\n"
         "  --registry LIST    " +
         SwitchListHelp(kRegistryNames) +
         "\n"
         "\n"
         "A LIST switches on the categories named and off the others of that area.\n"
         "Exit codes: 0 done, 1 worker failed or timed out, 2 invalid command line, 3 task stopped.\n";
}

}  // namespace overseer
