// overseer plugins browsers over today's browsers planted in the sandbox
// profile, and the worker's full scan and plug-in clean over what it wrote.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "common/known_folders.h"
#include "overseer/local_state.h"
#include "overseer/plugin_rows.h"
#include "overseer/report_output.h"
#include "overseer_runner.h"
#include "plugins/plugin_files.h"
#include "protocol/size_text.h"
#include "support/fixtures.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

TEST(LocalStateTest, ListsTheProfilesOfValidJsonAndRefusesAnythingElse) {
  const std::string valid = R"({"profile": {"info_cache": {"Default": {"name": "Caf\u00e9"}, "Profile 1": 7}}})";
  const auto listed = overseer::ParseLocalState(valid);
  ASSERT_TRUE(listed && listed->size() == 2);
  EXPECT_EQ((*listed)[0].displayName, L"Caf\u00e9");
  EXPECT_EQ((*listed)[1].folder + (*listed)[1].displayName, L"Profile 1");
  for (const std::string& bad : {valid.substr(0, valid.size() - 1), std::string("\xFF\xFE{}"), std::string(),
                                 std::string(R"({"profile": {"info_cache": []}})"), std::string("[1, 2]"),
                                 std::string(200000, '[') + std::string(200000, ']')}) {
    EXPECT_FALSE(overseer::ParseLocalState(bad)) << bad.substr(0, 40);
  }
}

enum class Fate { kGenerated, kBuiltIn, kKept };
struct Planted {
  bool roaming;
  std::wstring path;
  Fate fate;
};

#define EDGE L"Microsoft\\Edge\\User Data\\"
#define BRAVE L"BraveSoftware\\Brave-Browser\\User Data\\"
#define CHROME L"Google\\Chrome\\User Data\\"
#define OPERA L"Opera Software\\Opera Stable\\"
#define FF L"Mozilla\\Firefox\\Profiles\\"

// Generated with logins and form data off: Login Data and logins.json stay.
const Planted kPlanted[] = {
    {false, EDGE L"Default\\Network\\Cookies", Fate::kGenerated},
    {false, EDGE L"Default\\Cache\\Cache_Data\\data_0", Fate::kGenerated},
    {false, EDGE L"Profile 1\\History", Fate::kGenerated},
    {false, EDGE L"Profile 1\\Sessions\\Session_1", Fate::kGenerated},
    {false, EDGE L"Profile 1\\Local Storage\\leveldb\\000003.log", Fate::kGenerated},
    {false, EDGE L"Profile 1\\Bookmarks", Fate::kKept},
    {false, EDGE L"Profile 1\\Preferences", Fate::kKept},
    {false, EDGE L"Profile 1\\Extensions\\abc\\1.0\\manifest.json", Fate::kKept},
    {false, EDGE L"Profile 1\\Login Data", Fate::kKept},
    {false, EDGE L"Profile 1\\IndexedDB\\chrome-extension_abc_0.indexeddb.leveldb\\000001.log", Fate::kKept},
    {false, L"Microsoft\\Edge Beta\\User Data\\Default\\Network\\Cookies", Fate::kKept},
    {false, BRAVE L"Default\\Preferences", Fate::kKept},
    {false, BRAVE L"Default\\Code Cache\\js\\a1", Fate::kGenerated},
    {false, BRAVE L"Profile 3\\Preferences", Fate::kKept},
    {false, BRAVE L"Profile 3\\IndexedDB\\https_x_0.indexeddb.leveldb\\000001.log", Fate::kGenerated},
    {false, BRAVE L"Profile 9\\History", Fate::kKept},  // no Preferences: no profile
    {false, L"Vivaldi\\User Data\\Default\\Preferences", Fate::kKept},
    {false, L"Vivaldi\\User Data\\Default\\GPUCache\\data_1", Fate::kGenerated},
    {false, CHROME L"Default\\History", Fate::kBuiltIn},
    {false, CHROME L"Default\\Cache\\f_000001", Fate::kBuiltIn},
    {false, CHROME L"Default\\Network\\Cookies-journal", Fate::kBuiltIn},
    {false, CHROME L"Default\\Network\\Cookies", Fate::kGenerated},
    {false, CHROME L"Default\\Sessions\\Tabs_1", Fate::kGenerated},
    {false, CHROME L"Profile 2\\Network\\Cookies", Fate::kGenerated},
    {false, CHROME L"Profile 2\\Cache\\Cache_Data\\f_1", Fate::kGenerated},
    {false, CHROME L"Profile 2\\Web Data", Fate::kKept},
    // Opera's one profile is its folder in roaming; its caches are in local.
    {true, OPERA L"Preferences", Fate::kKept},
    {true, OPERA L"Network\\Cookies", Fate::kGenerated},
    {true, OPERA L"Visited Links", Fate::kBuiltIn},
    {false, OPERA L"Cache\\Cache_Data\\f_2", Fate::kBuiltIn},
    {false, OPERA L"Code Cache\\js\\b2", Fate::kGenerated},
    {true, FF L"first.default\\places.sqlite", Fate::kBuiltIn},
    {false, FF L"first.default\\Cache\\0\\A0", Fate::kBuiltIn},
    {false, FF L"first.default\\cache2\\entries\\A1", Fate::kGenerated},
    {true, FF L"first.default\\sessionstore-backups\\recovery.jsonlz4", Fate::kGenerated},
    {true, FF L"first.default\\logins.json", Fate::kKept},
    {true, FF L"first.default\\bookmarkbackups\\b.jsonlz4", Fate::kKept},
    {true, FF L"first.default\\prefs.js", Fate::kKept},
    {true, FF L"second.dev\\cookies.sqlite", Fate::kGenerated},
    {false, FF L"second.dev\\cache2\\entries\\B2", Fate::kGenerated},
    {true, FF L"second.dev\\extensions\\x.xpi", Fate::kKept},
    {true, FF L"second.dev\\storage\\default\\https+++example.com\\ls\\data.sqlite", Fate::kGenerated},
    {true, FF L"second.dev\\storage\\default\\moz-extension+++abc\\idb\\x.sqlite", Fate::kKept},
    {false, L"FirefoxElsewhere\\third\\places.sqlite", Fate::kGenerated},
    {false, L"FirefoxElsewhere\\third\\cache2\\entries\\C3", Fate::kGenerated},
    {false, L"FirefoxElsewhere\\third\\key4.db", Fate::kKept},
};

std::set<std::wstring> PluginSet(const std::wstring& folder) {
  const std::vector<std::wstring> names = PluginNames(folder, nullptr);
  return {names.begin(), names.end()};
}

TEST(BrowserPluginsTest, GeneratedPluginsTakeEveryProfileOnceAndRerunsRemoveOnlyTheirOwn) {
  WorkerHarness worker(L"browser-plugins");
  ASSERT_TRUE(worker.Started());
  const std::wstring local = ShellFolderPath(CSIDL_LOCAL_APPDATA), roaming = ShellFolderPath(CSIDL_APPDATA);
  const std::wstring plugins = PluginsFolder(worker.root());
  ScratchDir outside(L"ff-outside");
  CanaryTree canary(outside / L"canary");
  const std::wstring link = local + L"\\" EDGE L"Profile 1\\Sessions\\link";
  std::vector<std::wstring> roots = {local + L"\\FirefoxElsewhere", local + L"\\Microsoft\\Edge",
                                     local + L"\\Microsoft\\Edge Beta"};
  for (const wchar_t* vendor : {L"BraveSoftware", L"Vivaldi", L"Google", L"Mozilla", L"Opera Software"}) {
    roots.insert(roots.end(), {local + L"\\" + vendor, roaming + L"\\" + vendor});
  }
  for (const std::wstring& root : roots) RemoveTree(root);
  const Cleanup planted = RemovedAtEnd(roots);  // the link to the canary goes as a link

  std::int32_t count = 0;
  float bytes = 0;
  for (size_t i = 0; i < std::size(kPlanted); ++i) {
    const std::wstring path = (kPlanted[i].roaming ? roaming : local) + L"\\" + kPlanted[i].path;
    WriteFileBytes(path, std::string(100 + 10 * i, static_cast<char>('a' + i)));
    if (kPlanted[i].fate == Fate::kGenerated) count += 1, bytes += static_cast<float>(100 + 10 * i);
  }
  ASSERT_TRUE(MakeUnixSymlink(canary.root(), link));
  WriteFileBytes(local + L"\\" EDGE L"Local State",
                 R"({"profile": {"info_cache": {"Default": {"name": "Personal"}, "Profile 1": {"name": "Work"}}}})");
  WriteFileBytes(local + L"\\" BRAVE L"Local State", R"({"profile": {"info_cache": {"Default": {"na)");
  // Vivaldi has no Local State: its profile folders are found all the same.
  WriteFileBytes(local + L"\\" CHROME L"Local State",
                 R"({"profile": {"info_cache": {"Default": {"name": "Person 1"}, "Profile 2": {"name": "Holiday"},)"
                 R"( "..\\..\\Edge": {"name": "Climber"}}}})");
  const std::wstring desktop = ShellFolderPath(CSIDL_DESKTOPDIRECTORY);
  const std::string third = overseer::Utf8(local) + "\\FirefoxElsewhere\\third";
  WriteFileBytes(roaming + L"\\Mozilla\\Firefox\\profiles.ini",
                 "[Install4F96D1932A9F858E]\r\nDefault=Profiles/second.dev\r\n"
                 "[Profile0]\r\nName=default\r\nIsRelative=1\r\nPath=Profiles/first.default\r\n"
                 "[Profile1]\r\nName=dev\r\nIsRelative=1\r\nPath=Profiles/second.dev\r\n"
                 "[Profile2]\r\nName=elsewhere\r\nIsRelative=0\r\nPath=" + third + "\r\n"
                 "[Profile3]\r\nName=climber\r\nIsRelative=1\r\nPath=Profiles/../../../escape\r\n"
                 "[Profile4]\r\nName=outside\r\nIsRelative=0\r\nPath=" + overseer::Utf8(canary.root()) + "\r\n" +
                 "[Profile5]\r\nName=desk\r\nIsRelative=0\r\nPath=" + overseer::Utf8(desktop) + "\r\n");
  const std::string mine = "[Info]\r\nDescription=Mine\r\nDeleteFile1=%LocalAppData%\\Vivaldi\\absent.log\r\n";
  WriteFileBytes(plugins + L"\\Mine.cv", mine);

  // The browser and plug-in totals of one full scan.
  const auto scan = [&] {
    worker.Send(2087);
    const auto browsers = worker.WaitForCopyData(105), plugged = worker.WaitForCopyData(106);
    return std::pair{browsers ? browsers->text : L"no reply", plugged ? plugged->text : L"no reply"};
  };
  const auto [builtIn, none] = scan();
  EXPECT_EQ(none, L"0\\pss0.00 KB");
  const std::wstring generate = L"--worker " + worker.root() +
                                L"\\bin\\scourel.exe plugins browsers --browser "
                                L"cache,cookies,history,session,download_history,address_bar";
  // Any program under a browser's executable name is that browser running.
  ASSERT_TRUE(::CopyFileW((ProgramDir() + L"\\scourel.exe").c_str(), (outside / L"msedge.exe").c_str(), FALSE));
  UniqueHandleKernel edge = StartProgram(L"\"" + (outside / L"msedge.exe") + L"\"");
  OverseerRun run = RunOverseer(generate);
  WaitAndEnd(edge.get(), 0);
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  for (const std::string& line :
       {std::string("running   Edge (msedge.exe)"),
        std::string("Chrome: \"Local State\" names \"..\\..\\Edge\", which is not a folder name: refused"),
        std::string("Brave: \"Local State\" holds no profile list it can read"),
        std::string("[Profile3] path \"Profiles/../../../escape\": it climbs with \"..\": refused"),
        "[Profile4] path \"" + overseer::Utf8(canary.root()) + "\": outside the user's folders: refused",
        "[Profile5] names \"" + overseer::Utf8(desktop) + "\", a folder of the system's own: refused"}) {
    EXPECT_THAT(run.out, testing::HasSubstr(line));
  }
  // Past 30 files a profile's plug-in goes on in a second one.
  const std::set<std::wstring> generated = {
      L"Edge - Personal", L"Edge - Personal (2)", L"Edge - Work", L"Edge - Work (2)", L"Brave - Default",
      L"Brave - Default (2)", L"Brave - Profile 3", L"Brave - Profile 3 (2)", L"Vivaldi - Default",
      L"Vivaldi - Default (2)", L"Chrome - Person 1", L"Chrome - Holiday", L"Chrome - Holiday (2)",
      L"Firefox - default", L"Firefox - dev", L"Firefox - elsewhere", L"Opera", L"Mine"};
  EXPECT_EQ(PluginSet(plugins), generated);

  // overseer's rows, one per plug-in, add up to what the worker will count.
  const auto rows = overseer::MeasurePluginRows({}, worker.root() + L"\\bin\\scourel.exe");
  ASSERT_TRUE(rows && rows->size() == generated.size());
  std::int32_t rowCount = 0;
  for (const overseer::PluginRow& row : *rows) rowCount += row.count;
  EXPECT_EQ(rowCount, count);

  // What the built-in steps take is neither counted again nor changed.
  EXPECT_EQ(scan(), std::pair(builtIn, std::to_wstring(count) + L"\\pss" + SizeText(bytes)));
  worker.Send(2055);
  ASSERT_TRUE(worker.WaitFor(2056));
  for (size_t i = 0; i < std::size(kPlanted); ++i) {
    const std::wstring path = (kPlanted[i].roaming ? roaming : local) + L"\\" + kPlanted[i].path;
    if (kPlanted[i].fate == Fate::kGenerated) {
      EXPECT_FALSE(PathExists(path)) << path;
    } else {
      EXPECT_EQ(ReadFileBytes(path), std::string(100 + 10 * i, static_cast<char>('a' + i))) << path;
    }
  }
  EXPECT_EQ(canary.Damage(), L"");

  // A profile gone takes its plug-in with it, and nothing else.
  RemoveTree(local + L"\\" EDGE L"Profile 1");
  run = RunOverseer(generate);
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, testing::AllOf(testing::HasSubstr("removed   Edge - Work.cv"),
                                      testing::HasSubstr("removed   Edge - Work (2).cv")));
  std::set<std::wstring> remaining = generated;
  std::erase_if(remaining, [](const std::wstring& name) { return name.starts_with(L"Edge - Work"); });
  EXPECT_EQ(PluginSet(plugins), remaining);
  EXPECT_EQ(ReadFileBytes(plugins + L"\\Mine.cv"), mine);
}

}  // namespace
}  // namespace scourel::test
