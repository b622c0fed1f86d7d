// The PC-traces task driven through real window messages.
#include <gtest/gtest.h>

#include <cstring>
#include <regex>

#include "protocol/messages.h"
#include "support/worker_harness.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

using namespace protocol;

std::string Narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

class PcTracesTaskTest : public ::testing::Test {
 protected:
  void SetUp() override { RemoveHistoryKeys(); }
  void TearDown() override {
    EXPECT_EQ(canary_.Damage(), L"");
    RemoveHistoryKeys();
  }
  RegistryCanary canary_;
};

// The clipboard is emptied whatever the switches say.
TEST_F(PcTracesTaskTest, FirstSetPostsSixStepsThenSendsTheSevenCounters) {
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"b", L"notepad\\1"}, {L"MRUList", L"ba"}});
  PlantList(kWordWheelKey, {{L"0", L"invoice"}, {L"MRUListEx", L"x"}});
  ASSERT_TRUE(::OpenClipboard(nullptr));
  ::EmptyClipboard();
  HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, sizeof L"secret");
  std::memcpy(::GlobalLock(memory), L"secret", sizeof L"secret");
  ::GlobalUnlock(memory);
  ::SetClipboardData(CF_UNICODETEXT, memory);
  ::CloseClipboard();
  ASSERT_TRUE(::IsClipboardFormatAvailable(CF_UNICODETEXT));
  WorkerHarness worker(L"pctraces-first");
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_CPCRUNHISTORY", L"TRUE");
  worker.WriteSetting(L"IDS_CPCFINDFILES", L"TRUE");
  worker.WriteSetting(L"IDS_PCDOCUMENT", L"TRUE");  // the other family: off here

  EXPECT_EQ(worker.Send(2049), 0);
  // The result is sent and the steps posted, so the result can overtake the
  // last steps: it is waited for first, then the steps in their own order.
  const auto done = worker.WaitForCopyData(303);
  ASSERT_TRUE(done);
  for (WPARAM step = 1; step <= 6; ++step) {
    std::optional<ReceivedMessage> progress;
    for (const ReceivedMessage& message : worker.Received()) {
      if (message.id == 2082 && message.wParam == step) progress = message;
    }
    if (!progress) progress = worker.WaitFor(2082, 5000);
    ASSERT_TRUE(progress) << step;
    EXPECT_EQ(progress->wParam, step);
    EXPECT_EQ(progress->lParam, 0);
    EXPECT_FALSE(progress->sent);
  }
  EXPECT_EQ(Narrow(done->text), "0\\pc 3\\pc 2\\pc 0\\pc 0\\pc 0\\pc 0");
  EXPECT_EQ(done->cbData, 522u);
  EXPECT_FALSE(KeyPresent(kRunMruKey));
  EXPECT_FALSE(KeyPresent(kWordWheelKey));
  EXPECT_FALSE(::IsClipboardFormatAvailable(CF_UNICODETEXT));
}

TEST_F(PcTracesTaskTest, AStopMidTaskSendsTheCountersSoFarAndChangesNothingMore) {
  const std::wstring recent = ShellFolderPath(CSIDL_RECENT);
  ASSERT_FALSE(recent.empty());
  constexpr int kShortcuts = 1500;
  auto shortcut = [&](int i) { return recent + L"\\pctraces-stop-" + std::to_wstring(i) + L".lnk"; };
  for (int i = 0; i < kShortcuts; ++i) PlantFile(shortcut(i), std::string(64, 's'));
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}});
  WorkerHarness worker(L"pctraces-stop");
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_CPCDOCUMENT", L"TRUE");
  worker.WriteSetting(L"IDS_CPCRUNHISTORY", L"TRUE");

  worker.Send(2049);
  ::Sleep(300);
  worker.Send(2051);
  const auto stopped = worker.WaitForCopyData(304, 10000);
  ASSERT_TRUE(stopped);
  // Reliable up to the fifth counter and its separator.
  const std::string text = Narrow(stopped->text);
  std::smatch match;
  ASSERT_TRUE(std::regex_search(text, match, std::regex(R"(^(\d+)\\pc 0\\pc 0\\pc 0\\pc 0\\pc)"))) << text;
  EXPECT_GT(std::stoi(match[1]), 0);
  EXPECT_LT(std::stoi(match[1]), kShortcuts);

  ::Sleep(500);
  int left = 0;
  for (int i = 0; i < kShortcuts; ++i) left += PathExists(shortcut(i));
  ::Sleep(500);
  int leftLater = 0;
  for (int i = 0; i < kShortcuts; ++i) leftLater += ::DeleteFileW(shortcut(i).c_str()) ? 1 : 0;
  EXPECT_GT(left, 0);
  EXPECT_EQ(leftLater, left);
  EXPECT_FALSE(worker.WaitForCopyData(303, 100));
  EXPECT_TRUE(KeyPresent(kRunMruKey));  // the run-history step never came
}

TEST_F(PcTracesTaskTest, FullScanReportsTheCountersAndThreeSizes) {
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"MRUList", L"a"}});
  PlantList(kWordWheelKey, {{L"0", L"invoice"}, {L"MRUListEx", L"x"}});
  // Both application-data folders; on the drive root only a "FOUND.nnn" folder counts.
  const SizedFiles planted = {{ShellFolderPath(CSIDL_RECENT) + L"\\pctraces-scan.lnk", 1024},
                              {ShellFolderPath(CSIDL_APPDATA) + L"\\Microsoft\\Credentials\\pctraces-scan", 2048},
                              {ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\Microsoft\\Credentials\\pctraces-scan", 1024},
                              {L"C:\\FOUND.000\\FILE0000.CHK", 512}, {L"C:\\FOUND.000x\\FILE0000.CHK", 4}};
  PlantSized(planted, 'p');

  WorkerHarness worker(L"pctraces-scan");
  ASSERT_TRUE(worker.Started());
  worker.Send(2087);
  const auto scan = worker.WaitForCopyData(104, 300000);
  for (const auto& [path, size] : planted) EXPECT_TRUE(PathExists(path)) << path;  // a scan erases nothing
  for (const auto& [path, size] : planted) ::DeleteFileW(path.c_str());
  for (const wchar_t* found : {L"C:\\FOUND.000", L"C:\\FOUND.000x"}) RemoveTree(found);
  ASSERT_TRUE(scan);
  EXPECT_EQ(Narrow(scan->text),
            "1\\pc   1.00 KB\\pc 2\\pc 2\\pc 0\\pc 2\\pc   3.00 KB\\pc 1\\pc   0.50 KB\\pc 0");
  EXPECT_TRUE(KeyPresent(kRunMruKey));
}

}  // namespace
}  // namespace scourel::test
