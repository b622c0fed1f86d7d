// overseer.exe as people and scripts use it: against the real worker, a
// worker that is not there, and one that never answers; its plug-in commands
// on a worker's install root.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <regex>

#include "protocol/messages.h"
#include "overseer_runner.h"
#include "sandbox_snapshot.h"
#include "support/browser_fixture.h"
#include "support/fixtures.h"
#include "support/worker_harness.h"
#include "support/registry_seed.h"

namespace scourel::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

bool WorkerWindow() { return ::FindWindowW(L"SCOUREL_CLASS", nullptr) != nullptr; }

// The full scan with overseer's own per-browser rows (the worker sends one
// total per category; exit code 0 says every reply came), then a browser
// clean: the rows as a scan counts them before the worker acts, and what the
// worker erased, which it reads from the settings overseer wrote.
TEST(OverseerExeTest, ScanThenBrowserCleanWithPerBrowserRows) {
  const WineVersionOf overseerTold(L"overseer.exe", L"win7"), workerTold(L"scourel.exe", L"win7");
  // Both look up the Firefox profile's name from the worker's folder: no Safari.
  BrowserFixture fixture({.extraProfile = false, .safariGate = false});
  Installed worker(L"overseer-browser-rows");
  const auto cache = protocol::BrowserCategory::kCache;
  const std::string chrome = std::to_string(fixture.Of(protocol::Browser::kChrome, cache, ScanRun()).count);
  const auto icons = fixture.Of(protocol::Browser::kOpera, protocol::BrowserCategory::kIcons, ScanRun()).count;

  OverseerRun run = RunOverseer(worker.Worker(L"--json --timeout 60 scan"));
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("\"browser_rows\": {\"measured_by\": \"overseer\""),
                             HasSubstr("\"chrome\": {\"cache\": " + chrome + ", "),
                             HasSubstr("\"firefox_offline_cache\": 1, \"icons\": " + std::to_string(icons) + "}")));
  EXPECT_FALSE(WorkerWindow());  // the worker overseer started is closed again

  run = RunOverseer(worker.Worker(L"--timeout 60 --wipe gutmann --browser cache clean browser"));
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_TRUE(std::regex_search(run.out, std::regex("\n {10}chrome +" + chrome + " "))) << run.out;
  EXPECT_EQ(fixture.Damage(CleanRun(cache)), L"");
}

TEST(OverseerExeTest, AttachesToARunningWorkerStopsAndClosesIt) {
  Installed worker(L"overseer-attach");
  ASSERT_EQ(RunOverseer(worker.Worker(L"--keep-worker --timeout 60 clean junk")).exitCode, 0);
  ASSERT_TRUE(WorkerWindow());
  OverseerRun run = RunOverseer(L"--timeout 30 stop junk");
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("worker    attached to "), HasSubstr("status    not running")));  // the clean had ended
  run = RunOverseer(L"--timeout 30 close");
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_FALSE(WorkerWindow());
  // With no worker running, stop starts none.
  run = RunOverseer(L"--worker C:\\nowhere\\bin\\scourel.exe stop junk");
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("status    not running"));
}

// Refusals change nothing. A registry fix names what it deletes and waits
// for --yes; with --backup it scans in a worker of its own first, and reg
// import of the backup then puts back everything the fix deleted.
TEST(OverseerExeTest, RefusalsChangeNothingAndAFixBackupRestores) {
  SeededRegistry seed;
  const Snapshot before = TakeSnapshot({}, seed.Keys());
  Installed worker(L"overseer-fix");
  const std::pair<const wchar_t*, const char*> refusals[] = {
      {L"--wipe 9 --browser all clean browser", "invalid --wipe value \"9\": valid values are 0-8 or zero, random"},
      {L"--registry com,paths fix registry",
       "fix registry deletes for good what the worker's last scan found in: com, paths; add --yes"}};
  for (const auto& [arguments, error] : refusals) {
    const OverseerRun run = RunOverseer(worker.Worker(arguments));
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr(error));
    EXPECT_FALSE(PathExists(worker / L"Settings.INI"));
    EXPECT_FALSE(WorkerWindow());
  }

  const std::wstring backup = worker / L"backup.reg";
  const OverseerRun run = RunOverseer(worker.Worker(L"--timeout 120 --registry all --yes --backup \"" + backup + L"\" fix registry"));
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, HasSubstr("fixing    com, paths, empty, association, types, fonts, help, dll, software, "
                                 "sound, deep_scan, current_user"));
  EXPECT_EQ(seed.Damage({0, 1, 2, 3, 5, 6, 7, 8, 10, 11, 13, 14}), L"");
  EXPECT_EQ(RunAndWait(L"reg.exe import \"" + backup + L"\""), 0);
  EXPECT_THAT(TakeSnapshot({}, seed.Keys()), testing::ContainerEq(before));
}

TEST(OverseerExeTest, FailuresEndWithinTheTimeout) {
  // overseer.exe itself installed as the worker ends at once on "no command".
  Installed notAWorker(L"overseer-not-a-worker", L"overseer.exe");
  const struct {
    int silentHangMs;  // a worker window that takes every command, over this long, and replies to none; -1: none
    std::wstring arguments;
    const char* error;
    unsigned maxMs;
  } cases[] = {
      {-1, L"--timeout 5 --worker C:\\scourel-tests\\absent\\bin\\scourel.exe scan", "cannot start the worker", 5000},
      {-1, notAWorker.Worker(L"--timeout 20 scan"),
       "the worker ended (exit code 2) before its command window appeared", 60000},
      {0, L"--json --timeout 2 scan", "no reply from the worker within 2 s (still waiting for copy-data kind 101, ",
       15000},
      {8000, L"--timeout 2 clean junk", "the worker did not accept message 2034 within 2 s", 8000},
  };
  // Set once overseer has given up, so that a hung stand-in returns at once.
  const UniqueHandleKernel released(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.arguments);
    ::ResetEvent(released.get());
    std::optional<WindowThread> silent;
    if (c.silentHangMs >= 0) {
      silent.emplace(protocol::kWorkerClass, protocol::kWorkerWindowTitle,
                     [&](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
                       if (message < 2034 || message > 2088) return std::nullopt;
                       ::WaitForSingleObject(released.get(), c.silentHangMs);
                       return 0;
                     });
    }
    const OverseerRun run = RunOverseer(c.arguments, 60000);
    ::SetEvent(released.get());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr(c.error));
    EXPECT_THAT(run.out, HasSubstr("failed"));  // the status line or JSON status
    EXPECT_LT(run.elapsedMs, c.maxMs);
  }
}

TEST(OverseerPluginsTest, ImportsRulesThenListsThePluginsAndTheirRefusals) {
  ScratchDir root(L"overseer-plugins");
  WriteFileBytes(root / L"rules.ini",
                 "\xEF\xBB\xBF[Caf\xC3\xA9 *]\r\nDetect=HKCU\\Software\\Cafe\r\nFileKey1=%AppData%\\Cafe|*.log\r\n"
                 "RegKey1=HKLM\\Software\\Cafe\r\n");
  const std::wstring worker = L"--worker " + (root / L"bin\\scourel.exe") + L" ";
  OverseerRun run = RunOverseer(worker + L"plugins import " + (root / L"rules.ini"));
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("section   Caf\xC3\xA9 *"), HasSubstr("wrote     Caf\xC3\xA9.cv (keys 0, values 0, files 1)"),
                             HasSubstr("skipped   RegKey1: the root HKLM is out of a plug-in's reach"),
                             HasSubstr("1 plug-in files written")));
  WriteFileBytes(root / L"plugins\\mine.cv", "[Info]\r\nDescription=Mine\r\nDeleteFile4=%AppData%\r\nDelRegKey2=x\\y");
  run = RunOverseer(worker + L"plugins list");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("plugin    Caf\xC3\xA9: \"Caf\xC3\xA9 *\" (keys 0, values 0, files 1)"),
                             HasSubstr("plugin    mine: \"Mine\" (keys 1, values 0, files 1)"),
                             HasSubstr("refused   mine DeleteFile4: a whole special folder"), HasSubstr("found     2 plug-ins")));
  EXPECT_EQ(RunOverseer(worker + L"plugins import " + (root / L"absent.ini")).exitCode, 1);
}

}  // namespace
}  // namespace scourel::test
