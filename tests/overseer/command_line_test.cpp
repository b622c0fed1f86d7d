#include "overseer/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "overseer/command_plan.h"

namespace overseer {
namespace {

ParseResult Parse(const std::wstring& line) {
  std::wistringstream in(line);
  std::vector<std::wstring> words;
  for (std::wstring word; in >> word;) words.push_back(word);
  return ParseCommandLine(words);
}

namespace p = scourel::protocol;

std::vector<ReplyKey> Keys(const p::Reply& reply) {
  return reply.exists() ? std::vector{ReplyKey{reply.id, reply.kind}} : std::vector<ReplyKey>{};
}

// Each command line drives one command of one set of the task table (its
// ids are pinned by the worker's protocol test): a start waits for the
// task's end or its stop's reply, a stop for the stop's reply alone.
TEST(OverseerCommandLineTest, EachCommandsMessageAndCompletion) {
  enum Does { kStart, kStop };
  const struct {
    const wchar_t* line;
    p::Task task;
    int set;
    Does does;
  } cases[] = {
      {L"clean junk", p::Task::kJunkFiles, p::kFirstSet, kStart},
      {L"--second-set clean junk", p::Task::kJunkFiles, p::kSecondSet, kStart},
      {L"clean shortcuts", p::Task::kShortcuts, p::kFirstSet, kStart},
      {L"clean recycle --second-set", p::Task::kRecycleBin, p::kSecondSet, kStart},
      {L"clean browser", p::Task::kBrowser, p::kFirstSet, kStart},
      {L"clean browser --second-set", p::Task::kBrowser, p::kSecondSet, kStart},
      {L"clean pc", p::Task::kPcTraces, p::kFirstSet, kStart},
      {L"clean plugins", p::Task::kPluginClean, p::kFirstSet, kStart},
      {L"fix registry --second-set", p::Task::kRegistryFix, p::kSecondSet, kStart},
      {L"fix extensions", p::Task::kExtensionFix, p::kFirstSet, kStart},
      {L"--wipe dod7 wipe free e:", p::Task::kFreeSpaceWipe, p::kFirstSet, kStart},
      {L"stop junk", p::Task::kJunkFiles, p::kFirstSet, kStop},
      {L"stop browser", p::Task::kBrowser, p::kFirstSet, kStop},
      {L"stop pc --second-set", p::Task::kPcTraces, p::kSecondSet, kStop},
      {L"stop registry --second-set", p::Task::kRegistryFix, p::kSecondSet, kStop},
      {L"stop scan", p::Task::kFullScan, p::kFirstSet, kStop},
      {L"stop free", p::Task::kFreeSpaceWipe, p::kFirstSet, kStop},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.line);
    const ParseResult result = Parse(c.line);
    ASSERT_TRUE(result.options) << result.error;
    const auto plan = PlanFor(*result.options);
    ASSERT_TRUE(plan);
    const p::CommandSet& set = p::SpecOf(c.task).sets[c.set];
    EXPECT_EQ(plan->message, c.does == kStart ? set.start : set.stop);
    EXPECT_EQ(plan->end, c.does == kStart ? EndOn::kAwaitedReplies : EndOn::kSendReturns);
    EXPECT_EQ(plan->awaited, Keys(c.does == kStart ? set.done : set.stopped));
    EXPECT_EQ(plan->stoppedBy, Keys(c.does == kStart ? set.stopped : p::Reply{}));
    EXPECT_EQ(plan->needsRunningWorker, c.does == kStop);
  }
  // The scan waits for every record of the full scan; close for the worker's end.
  const auto scan = PlanFor(*Parse(L"scan").options);
  EXPECT_EQ(scan->message, p::SpecOf(p::Task::kFullScan).sets[p::kFirstSet].start);
  std::vector<ReplyKey> records;
  for (unsigned kind : p::kFullScanReplies) records.push_back({p::kCopyDataMessage, kind});
  EXPECT_EQ(scan->awaited, records);
  const auto close = PlanFor(*Parse(L"close").options);
  EXPECT_EQ(std::tuple(close->message, close->end, close->needsRunningWorker),
            std::tuple(16u, EndOn::kProcessExit, true));  // WM_CLOSE
  EXPECT_FALSE(PlanFor(*Parse(L"settings --wipe 3").options));  // sends nothing
  EXPECT_EQ(PlanFor(*Parse(L"wipe free e:").options)->wParam, std::uintptr_t{L'E'});  // the drive travels in wParam
  EXPECT_TRUE(Parse(L"clean --help").help);
}

TEST(OverseerCommandLineTest, ReadsOptionValuesAndDefaults) {
  const ParseResult result = Parse(
      L"--worker C:\\x\\bin\\scourel.exe --mode=o --timeout 7 --json --keep-worker --wipe Gutmann "
      L"--browser cache,Address-Bar --pc=none --registry all --yes --backup C:\\b.reg fix registry");
  ASSERT_TRUE(result.options) << result.error;
  const Options& o = *result.options;
  EXPECT_EQ(o.workerPath + L"|" + o.mode + L"|" + o.backupPath, L"C:\\x\\bin\\scourel.exe|o|C:\\b.reg");
  EXPECT_TRUE(o.json && o.keepWorker && o.yes);
  EXPECT_EQ(std::pair(o.timeoutSeconds, *o.wipeMethod), std::pair(7u, 7u));
  EXPECT_EQ(*o.browser, (std::vector<bool>{1, 0, 0, 0, 0, 0, 1, 0, 0, 0}));
  EXPECT_EQ(*o.pc, std::vector<bool>(6, false));
  EXPECT_EQ(*o.registry, std::vector<bool>(12, true));

  const Options d = *Parse(L"scan").options;
  EXPECT_FALSE(d.wipeMethod || d.browser || d.pc || d.registry || d.json || d.keepWorker || d.yes);
  EXPECT_TRUE(d.backupPath.empty() && d.workerPath.empty() && d.mode.empty());
  EXPECT_EQ(d.timeoutSeconds, 300u);
}

TEST(OverseerCommandLineTest, ValueParsers) {
  EXPECT_TRUE(ParseWipeMethod("0") == 0u && ParseWipeMethod("dod7") == 4u && ParseWipeMethod("GUTMANN-DOD") == 8u &&
              ParseWipeMethod("gutmann_dod") == 8u);
  for (const char* bad : {"9", "08", "-1", "", " 3", "zeros", "3.0"}) EXPECT_FALSE(ParseWipeMethod(bad)) << bad;
  EXPECT_EQ(*ParseSwitchList("index, icons", kBrowserNames), (std::vector<bool>{0, 0, 0, 0, 0, 0, 0, 0, 1, 1}));
  EXPECT_EQ(*ParseSwitchList("DEEP_SCAN", kRegistryNames), (std::vector<bool>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  for (const char* bad : {"", ",", "cache,,cookies", "all,cache", "cache,", "cash"}) {
    EXPECT_FALSE(ParseSwitchList(bad, kBrowserNames)) << bad;
  }
}

TEST(OverseerCommandLineTest, RefusesWithTheValidValues) {
  const std::pair<const wchar_t*, const char*> cases[] = {  // line, part of the refusal
      {L"", "no command given: valid commands are scan, clean, fix, preview, stop, close, settings, plugins, wipe, shred"},
      {L"erase", "unknown command \"erase\": valid commands are scan"},
      {L"wipe", "wipe needs a target: valid targets are free"},
      {L"wipe free", "wipe free needs a drive, such as D:"},
      {L"wipe free d: e:", "unexpected argument \"e:\" after wipe free"},
      {L"--second-set wipe free d:", "--second-set does not apply to wipe"},
      {L"shred", "shred needs at least one file or folder"},
      {L"preview scan",
       "invalid target \"scan\" for preview: valid targets are junk, shortcuts, recycle, browser, pc, plugins, "
       "registry, extensions, all"},
      {L"clean", "clean needs a target: valid targets are junk, shortcuts, recycle, browser, pc, plugins"},
      {L"clean registry",
       "invalid target \"registry\" for clean: valid targets are junk, shortcuts, recycle, browser, pc, plugins"},
      {L"fix junk", "valid targets are registry, extensions"},
      {L"stop extensions", "valid targets are junk, shortcuts, recycle, browser, pc, plugins, registry, scan, free"},
      {L"scan now", "unexpected argument \"now\" after scan"},
      {L"plugins show", "plugins needs list, import FILE.ini or browsers"},
      {L"plugins import", "plugins import needs a rules file"},
      {L"--wipe 9 scan",
       "invalid --wipe value \"9\": valid values are 0-8 or zero, random, dod3, pairs3, dod7, "
       "vsitr, pattern7, gutmann, gutmann-dod"},
      {L"--browser cash clean browser",
       "invalid --browser value \"cash\": valid values are all, none, or a comma-separated list of cache, "
       "cookies, history, autocomplete, session, download_history, address_bar, program_files, index, icons"},
      {L"--pc docs clean pc", "list of documents, run_history, find_files, network, scan_disk_files, registry_traces"},
      {L"--registry x fix registry",
       "list of current_user, com, fonts, association, types, paths, dll, empty, sound, help, software, deep_scan"},
      {L"--mode x scan", "invalid --mode value \"x\": valid values are o"},
      {L"--timeout 0 scan", "invalid --timeout value \"0\": valid values are whole seconds from 1 to 86400"},
      {L"--timeout 5s scan", "whole seconds"},
      {L"--timeout", "--timeout needs a value"},
      {L"--verbose scan", "unknown option --verbose"},
      {L"--json=yes scan", "--json takes no value"},
      {L"--second-set scan", "--second-set does not apply to the full scan"},
      {L"--backup b.reg clean junk", "--backup applies to fix only"},
      {L"--receipt r.json preview junk", "--receipt applies to clean and fix only"},
  };
  for (const auto& [line, message] : cases) {
    const ParseResult result = Parse(line);
    EXPECT_FALSE(result.options) << line;
    EXPECT_THAT(result.error, testing::HasSubstr(message)) << line;
  }
}

}  // namespace
}  // namespace overseer
