// The PC-traces task driven through real window messages.
#include <gtest/gtest.h>

#include <cstring>
#include <regex>

#include "host/protocol.h"
#include "windows_traces/pc_traces_test_support.h"
#include "windows_traces/shell_folder.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

std::string Narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

void PutTextOnClipboard(const std::wstring& text) {
  ASSERT_TRUE(::OpenClipboard(nullptr));
  ::EmptyClipboard();
  const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, bytes);
  std::memcpy(::GlobalLock(memory), text.c_str(), bytes);
  ::GlobalUnlock(memory);
  ::SetClipboardData(CF_UNICODETEXT, memory);
  ::CloseClipboard();
}

class PcTracesTaskTest : public ::testing::Test {
 protected:
  void SetUp() override { RemoveHistoryKeys(); }
  void TearDown() override {
    EXPECT_EQ(canary_.Damage(), L"");
    RemoveHistoryKeys();
  }
  RegistryCanary canary_;
};

TEST_F(PcTracesTaskTest, FirstSetPostsSixStepsThenSendsTheSevenCounters) {
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"b", L"notepad\\1"}, {L"MRUList", L"ba"}});
  PlantList(kWordWheelKey, {{L"0", L"invoice"}, {L"MRUListEx", L"x"}});
  WorkerHarness worker(L"pctraces-first");
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_CPCRUNHISTORY", L"TRUE");
  worker.WriteSetting(L"IDS_CPCFINDFILES", L"TRUE");
  worker.WriteSetting(L"IDS_PCDOCUMENT", L"TRUE");  // the other family: off here

  EXPECT_EQ(worker.Send(protocol::kPcTracesStart), 0);
  for (WPARAM step = 1; step <= 6; ++step) {
    const auto progress = worker.WaitFor(protocol::kPcTracesProgress);
    ASSERT_TRUE(progress.has_value()) << step;
    EXPECT_EQ(progress->wParam, step);
    EXPECT_EQ(progress->lParam, 0);
    EXPECT_FALSE(progress->sent);
  }
  const auto done = worker.WaitForCopyData(protocol::kPcTracesDone);
  ASSERT_TRUE(done.has_value());
  EXPECT_EQ(Narrow(done->text), "0\\pc 3\\pc 2\\pc 0\\pc 0\\pc 0\\pc 0");
  EXPECT_EQ(done->cbData, 522u);
  EXPECT_FALSE(KeyPresent(kRunMruKey));
  EXPECT_FALSE(KeyPresent(kWordWheelKey));
}

TEST_F(PcTracesTaskTest, TheClipboardIsEmptiedWhateverTheSwitchesSay) {
  PutTextOnClipboard(L"copied secret");
  ASSERT_TRUE(::IsClipboardFormatAvailable(CF_UNICODETEXT));
  WorkerHarness worker(L"pctraces-clipboard");
  ASSERT_TRUE(worker.Started());
  worker.Send(protocol::kPcTracesStart);
  const auto done = worker.WaitForCopyData(protocol::kPcTracesDone);
  ASSERT_TRUE(done.has_value());
  EXPECT_EQ(Narrow(done->text), "0\\pc 0\\pc 0\\pc 0\\pc 0\\pc 0\\pc 0");
  EXPECT_FALSE(::IsClipboardFormatAvailable(CF_UNICODETEXT));
}

TEST_F(PcTracesTaskTest, AStopMidTaskSendsTheCountersSoFarAndChangesNothingMore) {
  const std::wstring recent = ShellFolderPath(CSIDL_RECENT);
  ASSERT_FALSE(recent.empty());
  MakeDirs(recent);
  constexpr int kShortcuts = 1500;
  for (int i = 0; i < kShortcuts; ++i) {
    WriteFileBytes(recent + L"\\pctraces-stop-" + std::to_wstring(i) + L".lnk", std::string(64, 's'));
  }
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}});
  WorkerHarness worker(L"pctraces-stop");
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_CPCDOCUMENT", L"TRUE");
  worker.WriteSetting(L"IDS_CPCRUNHISTORY", L"TRUE");

  worker.Send(protocol::kPcTracesStart);
  ::Sleep(300);
  worker.Send(protocol::kPcTracesStop);
  const auto stopped = worker.WaitForCopyData(protocol::kPcTracesStopped, 10000);
  ASSERT_TRUE(stopped.has_value());
  // Reliable up to the fifth counter and its separator.
  const std::string text = Narrow(stopped->text);
  std::smatch match;
  ASSERT_TRUE(std::regex_search(text, match, std::regex(R"(^(\d+)\\pc 0\\pc 0\\pc 0\\pc 0\\pc)"))) << text;
  const int documents = std::stoi(match[1]);
  EXPECT_GT(documents, 0);
  EXPECT_LT(documents, kShortcuts);

  ::Sleep(500);
  EXPECT_FALSE(worker.WaitForCopyData(protocol::kPcTracesDone, 100).has_value());
  EXPECT_TRUE(KeyPresent(kRunMruKey));  // the run-history step never came
  int left = 0;
  for (int i = 0; i < kShortcuts; ++i) {
    const std::wstring path = recent + L"\\pctraces-stop-" + std::to_wstring(i) + L".lnk";
    if (PathExists(path)) {
      ++left;
      ::DeleteFileW(path.c_str());
    }
  }
  EXPECT_GT(left, 0);
}

TEST_F(PcTracesTaskTest, SecondSetPostsItsCompletionAndWaitsForItsStop) {
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}});
  WorkerHarness worker(L"pctraces-second");
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_PCRUNHISTORY", L"TRUE");
  worker.WriteSetting(L"IDS_CPCRUNHISTORY", L"FALSE");

  worker.Send(protocol::kPcTracesStart2);
  const auto done = worker.WaitFor(protocol::kPcTracesDone2);
  ASSERT_TRUE(done.has_value());
  EXPECT_FALSE(done->sent);
  EXPECT_EQ(done->wParam, reinterpret_cast<WPARAM>(worker.worker()));
  EXPECT_FALSE(KeyPresent(kRunMruKey));
  for (const ReceivedMessage& message : worker.Received()) {
    EXPECT_NE(message.id, static_cast<UINT>(protocol::kPcTracesProgress));
  }

  worker.Send(protocol::kPcTracesStop2);
  const auto stopped = worker.WaitFor(protocol::kPcTracesStop2, 10000);
  ASSERT_TRUE(stopped.has_value());
  EXPECT_EQ(stopped->wParam, reinterpret_cast<WPARAM>(worker.worker()));
}

TEST_F(PcTracesTaskTest, FullScanReportsTheCountersAndThreeSizes) {
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"MRUList", L"a"}});
  PlantList(kWordWheelKey, {{L"0", L"invoice"}, {L"MRUListEx", L"x"}});
  const std::wstring recent = ShellFolderPath(CSIDL_RECENT);
  const std::wstring credentials = ShellFolderPath(CSIDL_APPDATA) + L"\\Microsoft\\Credentials";
  MakeDirs(recent);
  MakeDirs(credentials);
  WriteFileBytes(recent + L"\\pctraces-scan.lnk", std::string(1024, 'r'));
  WriteFileBytes(credentials + L"\\pctraces-scan", std::string(2048, 'c'));
  PlantFile(L"C:\\FOUND.000\\FILE0000.CHK", std::string(512, 'f'));

  WorkerHarness worker(L"pctraces-scan");
  ASSERT_TRUE(worker.Started());
  worker.Send(protocol::kFullScanStart);
  const auto scan = worker.WaitForCopyData(protocol::kScanPcTraces, 300000);
  ::DeleteFileW((recent + L"\\pctraces-scan.lnk").c_str());
  ::DeleteFileW((credentials + L"\\pctraces-scan").c_str());
  RemoveTree(L"C:\\FOUND.000");
  ASSERT_TRUE(scan.has_value());
  EXPECT_EQ(Narrow(scan->text),
            "1\\pc   1.00 KB\\pc 2\\pc 2\\pc 0\\pc 1\\pc   2.00 KB\\pc 1\\pc   0.50 KB\\pc 0");
  EXPECT_TRUE(KeyPresent(kRunMruKey));  // a scan erases nothing
}

}  // namespace
}  // namespace scourel::test
