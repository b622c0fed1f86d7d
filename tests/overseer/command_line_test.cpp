#include "overseer/command_line.h"

#include <gtest/gtest.h>

#include <sstream>

namespace overseer {
namespace {

std::vector<std::wstring> Words(const std::wstring& line) {
  std::wistringstream in(line);
  std::vector<std::wstring> words;
  for (std::wstring word; in >> word;) words.push_back(word);
  return words;
}

struct ValidCase {
  const wchar_t* line;
  Verb verb;
  Target target;
  bool secondSet;
};

TEST(OverseerCommandLineTest, AcceptsEveryCommand) {
  const ValidCase cases[] = {
      {L"scan", Verb::kScan, Target::kNone, false},
      {L"clean junk", Verb::kClean, Target::kJunk, false},
      {L"clean shortcuts --second-set", Verb::kClean, Target::kShortcuts, true},
      {L"--second-set clean recycle", Verb::kClean, Target::kRecycle, true},
      {L"clean browser", Verb::kClean, Target::kBrowser, false},
      {L"clean pc", Verb::kClean, Target::kPc, false},
      {L"clean plugins", Verb::kClean, Target::kPlugins, false},
      {L"fix registry", Verb::kFix, Target::kRegistry, false},
      {L"fix extensions --second-set", Verb::kFix, Target::kExtensions, true},
      {L"stop browser", Verb::kStop, Target::kBrowser, false},
      {L"stop registry", Verb::kStop, Target::kRegistry, false},
      {L"stop scan", Verb::kStop, Target::kScan, false},
      {L"close", Verb::kClose, Target::kNone, false},
      {L"settings --wipe 3", Verb::kSettings, Target::kNone, false},
  };
  for (const ValidCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.line);
    const ParseResult result = ParseCommandLine(Words(c.line));
    ASSERT_TRUE(result.options) << result.error;
    EXPECT_EQ(result.options->verb, c.verb);
    EXPECT_EQ(result.options->target, c.target);
    EXPECT_EQ(result.options->secondSet, c.secondSet);
  }
}

TEST(OverseerCommandLineTest, ReadsOptionValues) {
  const ParseResult result = ParseCommandLine(
      {L"--worker", L"C:\\x\\bin\\scourel.exe", L"--mode=o", L"--timeout", L"7", L"--json", L"--keep-worker", L"--wipe",
       L"Gutmann", L"--browser", L"cache,Address-Bar", L"--pc=none", L"--registry", L"all", L"clean", L"browser"});
  ASSERT_TRUE(result.options) << result.error;
  const Options& o = *result.options;
  EXPECT_EQ(o.workerPath, L"C:\\x\\bin\\scourel.exe");
  EXPECT_EQ(o.mode, L"o");
  EXPECT_EQ(o.timeoutSeconds, 7u);
  EXPECT_TRUE(o.json);
  EXPECT_TRUE(o.keepWorker);
  EXPECT_EQ(o.wipeMethod, 7u);
  EXPECT_EQ(*o.browser, (std::vector<bool>{true, false, false, false, false, false, true, false, false, false}));
  EXPECT_EQ(*o.pc, std::vector<bool>(6, false));
  EXPECT_EQ(*o.registry, std::vector<bool>(12, true));
}

TEST(OverseerCommandLineTest, DefaultsLeaveSettingsAlone) {
  const ParseResult result = ParseCommandLine({L"scan"});
  ASSERT_TRUE(result.options);
  EXPECT_FALSE(result.options->wipeMethod);
  EXPECT_FALSE(result.options->browser);
  EXPECT_FALSE(result.options->pc);
  EXPECT_FALSE(result.options->registry);
  EXPECT_EQ(result.options->timeoutSeconds, kDefaultTimeoutSeconds);
  EXPECT_TRUE(result.options->workerPath.empty());
}

TEST(OverseerCommandLineTest, WipeMethodsByNumberAndName) {
  for (unsigned i = 0; i < kWipeNames.size(); ++i) {
    EXPECT_EQ(ParseWipeMethod(std::string(1, static_cast<char>('0' + i))), i);
    EXPECT_EQ(ParseWipeMethod(kWipeNames[i]), i);
  }
  EXPECT_EQ(ParseWipeMethod("GUTMANN-DOD"), 8u);
  EXPECT_EQ(ParseWipeMethod("gutmann_dod"), 8u);
  for (const char* bad : {"9", "08", "-1", "", " 3", "zeros", "3.0"}) {
    EXPECT_FALSE(ParseWipeMethod(bad)) << bad;
  }
}

TEST(OverseerCommandLineTest, SwitchLists) {
  EXPECT_EQ(*ParseSwitchList("index, icons", kBrowserNames),
            (std::vector<bool>{false, false, false, false, false, false, false, false, true, true}));
  EXPECT_EQ(ParseSwitchList("DEEP_SCAN", kRegistryNames)->back(), true);
  for (const char* bad : {"", ",", "cache,,cookies", "all,cache", "cache,", "cash"}) {
    EXPECT_FALSE(ParseSwitchList(bad, kBrowserNames)) << bad;
  }
}

struct RefusedCase {
  const wchar_t* line;
  const char* message;  // must appear in the refusal
};

TEST(OverseerCommandLineTest, RefusesWithTheValidValues) {
  const RefusedCase cases[] = {
      {L"", "no command given: valid commands are scan, clean, fix, stop, close, settings"},
      {L"wipe", "unknown command \"wipe\": valid commands are scan, clean, fix, stop, close, settings"},
      {L"clean", "clean needs a target: valid targets are junk, shortcuts, recycle, browser, pc, plugins"},
      {L"clean registry",
       "invalid target \"registry\" for clean: valid targets are junk, shortcuts, recycle, "
       "browser, pc, plugins"},
      {L"fix junk", "valid targets are registry, extensions"},
      {L"stop extensions", "valid targets are junk, shortcuts, recycle, browser, pc, plugins, registry, scan"},
      {L"scan now", "unexpected argument \"now\" after scan"},
      {L"--wipe 9 scan",
       "invalid --wipe value \"9\": valid values are 0-8 or zero, random, dod3, pairs3, dod7, "
       "vsitr, pattern7, gutmann, gutmann-dod"},
      {L"--browser cash clean browser",
       "invalid --browser value \"cash\": valid values are all, none, or a comma-separated list of cache, "
       "cookies, history, autocomplete, session, download_history, address_bar, program_files, index, icons"},
      {L"--pc docs clean pc", "list of documents, run_history, find_files, network, scan_disk_files, registry_traces"},
      {L"--registry x fix registry",
       "list of current_user, com, fonts, association, types, paths, dll, empty, "
       "sound, help, software, deep_scan"},
      {L"--mode x scan", "invalid --mode value \"x\": valid values are o"},
      {L"--timeout 0 scan", "invalid --timeout value \"0\": valid values are whole seconds from 1 to 86400"},
      {L"--timeout 5s scan", "whole seconds"},
      {L"--timeout", "--timeout needs a value"},
      {L"--verbose scan", "unknown option --verbose"},
      {L"--json=yes scan", "--json takes no value"},
      {L"--second-set scan", "--second-set does not apply to the full scan"},
  };
  for (const RefusedCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.line);
    const ParseResult result = ParseCommandLine(Words(c.line));
    EXPECT_FALSE(result.options);
    EXPECT_NE(result.error.find(c.message), std::string::npos) << result.error;
  }
}

TEST(OverseerCommandLineTest, HelpWinsAndNamesEveryOption) {
  EXPECT_TRUE(ParseCommandLine({L"clean", L"--help"}).help);
  const std::string usage = UsageText();
  for (const char* option : {"--worker", "--mode", "--second-set", "--timeout", "--json", "--wipe", "--browser", "--pc",
                             "--registry", "--keep-worker"}) {
    EXPECT_NE(usage.find(option), std::string::npos) << option;
  }
}

}  // namespace
}  // namespace overseer
