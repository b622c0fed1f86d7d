// The PC-traces task driven through real window messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "support/folder_changes.h"
#include "support/process_threads.h"
#include "support/worker_harness.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// The clipboard is emptied whatever the switches say.
// (Its six progress steps are checked with every command's in the protocol table.)
TEST(PcTracesTaskTest, FirstSetSendsTheSevenCounters) {
  const RegistryCanary canary;
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"b", L"notepad\\1"}, {L"MRUList", L"ba"}});
  PlantList(kWordWheelKey, {{L"0", L"invoice"}, {L"MRUListEx", L"x"}});
  ASSERT_TRUE(::OpenClipboard(nullptr) && ::EmptyClipboard());
  ::SetClipboardData(CF_UNICODETEXT, ::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 64));
  ::CloseClipboard();
  ASSERT_TRUE(::IsClipboardFormatAvailable(CF_UNICODETEXT));
  WorkerHarness worker(L"pctraces-first");
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_CPCRUNHISTORY", L"TRUE");
  worker.WriteSetting(L"IDS_CPCFINDFILES", L"TRUE");

  EXPECT_EQ(worker.Send(2049), 0);
  const auto done = worker.WaitForCopyData(303);
  ASSERT_TRUE(done);
  EXPECT_EQ(done->text, L"0\\pc 3\\pc 2\\pc 0\\pc 0\\pc 0\\pc 0");
  EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, kWordWheelKey));  // the run history's is the settings-family test's
  EXPECT_FALSE(::IsClipboardFormatAvailable(CF_UNICODETEXT));
  EXPECT_EQ(canary.Damage(), L"");
}

TEST(PcTracesTaskTest, AStopMidTaskSendsTheCountersSoFarAndChangesNothingMore) {
  const RegistryCanary canary;
  const std::wstring recent = ShellFolderPath(CSIDL_RECENT);
  ASSERT_FALSE(recent.empty());
  constexpr int kShortcuts = 1500;
  std::vector<std::wstring> shortcuts;
  for (int i = 0; i < kShortcuts; ++i) shortcuts.push_back(recent + L"\\pctraces-stop-" + std::to_wstring(i) + L".lnk");
  const Cleanup removed = RemovedAtEnd(shortcuts);
  for (const std::wstring& shortcut : shortcuts) WriteFileBytes(shortcut, std::string(64, 's'));
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}});
  auto left = [&] { return static_cast<int>(std::ranges::count_if(shortcuts, PathExists)); };
  WorkerHarness worker(L"pctraces-stop");
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_CPCDOCUMENT", L"TRUE");
  worker.WriteSetting(L"IDS_CPCRUNHISTORY", L"TRUE");

  const std::set<DWORD> idle = ThreadsOf(worker.processId());
  FolderChanges changes(recent);
  worker.Send(2049);
  // Stop once the documents step is under way: its first shortcuts are gone.
  ASSERT_TRUE(changes.WaitUntil([&] { return left() < kShortcuts; }));
  worker.Send(2051);
  const auto stopped = worker.WaitForCopyData(304, 10000);
  ASSERT_TRUE(stopped);
  // Reliable up to the fifth counter and its separator.
  std::wsmatch match;
  ASSERT_TRUE(std::regex_search(stopped->text, match, std::wregex(LR"(^(\d+)\\pc 0\\pc 0\\pc 0\\pc 0\\pc)")))
      << testing::PrintToString(stopped->text);
  EXPECT_GT(std::stoi(match[1]), 0);
  EXPECT_LT(std::stoi(match[1]), kShortcuts);

  // A thread halted at the stop changes nothing more: once it has ended, no
  // completion has come, and what was left stays left.
  const int leftAtStop = left();
  ASSERT_TRUE(ThreadsBeyondEnd(worker.processId(), idle, 30000));
  EXPECT_FALSE(worker.WaitForCopyData(303, 0));
  EXPECT_GT(leftAtStop, 0);
  EXPECT_EQ(left(), leftAtStop);
  EXPECT_TRUE(KeyPresent(HKEY_CURRENT_USER, kRunMruKey));  // the run-history step never came
  EXPECT_EQ(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel::test
