// overseer.exe as people and scripts use it: against the real worker, a
// worker that is not there, and one that never answers.
#include <gtest/gtest.h>

#include <regex>

#include "host/settings.h"
#include "overseer_runner.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

// A copy of scourel.exe at <root>\bin\scourel.exe, so it reads <root>\Settings.INI.
class InstalledWorker {
 public:
  explicit InstalledWorker(const std::wstring& name) : root_(L"C:\\scourel-tests\\" + name) {
    CloseRunningWorkers();
    RemoveTree(root_);
    MakeDirs(root_ + L"\\bin");
    ::CopyFileW((ProgramDir() + L"\\scourel.exe").c_str(), exe().c_str(), FALSE);
  }
  ~InstalledWorker() {
    CloseRunningWorkers();
    RemoveTree(root_);
  }
  std::wstring exe() const { return root_ + L"\\bin\\scourel.exe"; }
  std::wstring ini() const { return root_ + L"\\Settings.INI"; }
  std::wstring WorkerOption() const { return L"--worker \"" + exe() + L"\" "; }
  std::wstring Setting(const std::wstring& key) const { return ReadSetting(ini(), key, 1000); }

 private:
  std::wstring root_;
};

std::vector<unsigned> Kinds(const std::string& json) {
  std::vector<unsigned> kinds;
  const std::regex kind("\"kind\": (\\d+)");
  for (auto it = std::sregex_iterator(json.begin(), json.end(), kind); it != std::sregex_iterator(); ++it) {
    kinds.push_back(static_cast<unsigned>(std::stoul((*it)[1])));
  }
  return kinds;
}

TEST(OverseerExeTest, FullScanJsonHasTheNineKindsInOrder) {
  InstalledWorker worker(L"overseer-scan");
  const OverseerRun run = RunOverseer(worker.WorkerOption() + L"--json --timeout 60 scan");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_EQ(Kinds(run.out), (std::vector<unsigned>{101, 107, 109, 102, 108, 105, 104, 103, 106}));
  EXPECT_NE(run.out.find("\"status\": \"completed\""), std::string::npos);
  EXPECT_EQ(run.out.find("\"readable\": false"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("\"attached\": false"), std::string::npos);
  EXPECT_NE(run.out.find("\"text\": \"Scanning Completed\""), std::string::npos);
  // The worker overseer started is closed again.
  EXPECT_EQ(::FindWindowW(L"SCOUREL_CLASS", nullptr), nullptr);
}

TEST(OverseerExeTest, TablePrintsEachReplyAndTheStatus) {
  InstalledWorker worker(L"overseer-table");
  const OverseerRun run = RunOverseer(worker.WorkerOption() + L"--timeout 60 scan");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  for (const char* line : {"worker    started ", "command   scan (message 2087)", "kind 101  scan: junk files",
                           "kind 106  scan: plug-ins", "          deep scan ", "status    completed"}) {
    EXPECT_NE(run.out.find(line), std::string::npos) << line << "\n" << run.out;
  }
}

TEST(OverseerExeTest, CleanWritesFirstSetSettingsThenWaitsForItsReply) {
  InstalledWorker worker(L"overseer-browser");
  const OverseerRun run =
      RunOverseer(worker.WorkerOption() + L"--json --timeout 60 --wipe gutmann --browser none clean browser");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_EQ(worker.Setting(L"IDS_WIPEALGORITHM"), L"7");
  EXPECT_EQ(worker.Setting(L"IDS_CCACHE"), L"FALSE");
  EXPECT_EQ(worker.Setting(L"IDS_CICONS"), L"FALSE");
  EXPECT_EQ(Kinds(run.out), std::vector<unsigned>{305});
  EXPECT_NE(run.out.find("\"title\": \"browser traces progress\""), std::string::npos);
  EXPECT_NE(run.out.find("\"icons_size\": \"0.00 KB\""), std::string::npos) << run.out;
}

TEST(OverseerExeTest, SecondSetInModeOWritesTheOKeys) {
  InstalledWorker worker(L"overseer-mode-o");
  const OverseerRun run =
      RunOverseer(worker.WorkerOption() + L"--json --timeout 60 --mode o --second-set --browser none clean browser");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_EQ(worker.Setting(L"IDS_OCACHE"), L"FALSE");
  EXPECT_EQ(worker.Setting(L"IDS_CACHE"), L"");
  EXPECT_EQ(worker.Setting(L"IDS_CCACHE"), L"");
  EXPECT_NE(run.out.find("{\"message\": 2071"), std::string::npos) << run.out;
}

TEST(OverseerExeTest, StopAndCloseNeedARunningWorker) {
  CloseRunningWorkers();
  const OverseerRun stop = RunOverseer(L"--worker C:\\nowhere\\bin\\scourel.exe stop junk");
  EXPECT_EQ(stop.exitCode, 0);
  EXPECT_NE(stop.out.find("status    not running"), std::string::npos) << stop.out;
}

TEST(OverseerExeTest, AttachesToARunningWorkerAndClosesIt) {
  InstalledWorker worker(L"overseer-attach");
  ASSERT_EQ(RunOverseer(worker.WorkerOption() + L"--keep-worker --timeout 60 clean junk").exitCode, 0);
  ASSERT_NE(::FindWindowW(L"SCOUREL_CLASS", nullptr), nullptr);

  const OverseerRun stop = RunOverseer(L"--timeout 30 stop junk");
  EXPECT_EQ(stop.exitCode, 0) << stop.out << stop.err;
  EXPECT_NE(stop.out.find("worker    attached to "), std::string::npos) << stop.out;
  EXPECT_NE(stop.out.find("status    not running"), std::string::npos) << stop.out;  // the clean had ended

  const OverseerRun close = RunOverseer(L"--timeout 30 close");
  EXPECT_EQ(close.exitCode, 0) << close.out << close.err;
  EXPECT_EQ(::FindWindowW(L"SCOUREL_CLASS", nullptr), nullptr);
}

TEST(OverseerExeTest, InvalidValueIsRefusedAndNothingHappens) {
  InstalledWorker worker(L"overseer-refuse");
  const OverseerRun run = RunOverseer(worker.WorkerOption() + L"--wipe 9 --browser all clean browser");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.err.find("invalid --wipe value \"9\": valid values are 0-8 or zero, random"), std::string::npos)
      << run.err;
  EXPECT_FALSE(PathExists(worker.ini()));
  EXPECT_EQ(::FindWindowW(L"SCOUREL_CLASS", nullptr), nullptr);
}

TEST(OverseerExeTest, MissingWorkerFailsAtOnce) {
  CloseRunningWorkers();
  const OverseerRun run = RunOverseer(L"--timeout 5 --worker C:\\scourel-tests\\absent\\bin\\scourel.exe scan", 30000);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("cannot start the worker"), std::string::npos) << run.err;
  EXPECT_LT(run.elapsedMs, 5000u);
}

TEST(OverseerExeTest, WorkerThatEndsWithoutAWindowIsReported) {
  // overseer.exe itself, installed as the worker, ends at once on "no command".
  InstalledWorker worker(L"overseer-not-a-worker");
  ::CopyFileW((ProgramDir() + L"\\overseer.exe").c_str(), worker.exe().c_str(), FALSE);
  const OverseerRun run = RunOverseer(worker.WorkerOption() + L"--timeout 20 scan", 60000);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("the worker ended (exit code 2) before its command window appeared"), std::string::npos)
      << run.err;
}

TEST(OverseerExeTest, SilentWorkerTimesOut) {
  CloseRunningWorkers();
  SilentWorker silent;
  const OverseerRun run = RunOverseer(L"--json --timeout 2 scan", 60000);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("no reply from the worker within 2 s (still waiting for copy-data kind 101, "),
            std::string::npos)
      << run.err;
  EXPECT_NE(run.out.find("\"status\": \"failed\""), std::string::npos) << run.out;
  EXPECT_LT(run.elapsedMs, 15000u);
}

TEST(OverseerExeTest, HungWorkerTimesOutOnTheSend) {
  CloseRunningWorkers();
  SilentWorker hung(8000);
  const OverseerRun run = RunOverseer(L"--timeout 2 clean junk", 60000);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("the worker did not accept message 2034 within 2 s"), std::string::npos) << run.err;
  EXPECT_LT(run.elapsedMs, 8000u);
}

}  // namespace
}  // namespace scourel::test
