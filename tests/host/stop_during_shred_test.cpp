// A stop that arrives while a real worker shreds a large file.
#include <gtest/gtest.h>

#include "common/win.h"
#include "support/fixtures.h"
#include "support/folder_changes.h"
#include "support/process_threads.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

constexpr std::size_t kBig = 64u << 20;
constexpr std::size_t kCluster = 4096;

TEST(StopDuringShredTest, LeavesTheFileUnderItsNameAndAddsNothingAfterTheReply) {
  ScratchDir dir(L"stop-shred");
  const std::wstring temp = dir / L"temp";
  const std::wstring big = temp + L"\\big.tmp";
  MakeDirs(temp);
  CanaryTree canary(dir / L"canary");
  // The junk task walks the worker's temporary folder first: ours, holding
  // only the big file. The worker takes it from the environment it inherits.
  wchar_t tmp[MAX_PATH] = {}, tempVar[MAX_PATH] = {};
  ::GetEnvironmentVariableW(L"TMP", tmp, MAX_PATH), ::GetEnvironmentVariableW(L"TEMP", tempVar, MAX_PATH);
  ::SetEnvironmentVariableW(L"TMP", temp.c_str()), ::SetEnvironmentVariableW(L"TEMP", temp.c_str());
  WorkerHarness worker(L"stop-shred-worker");
  ::SetEnvironmentVariableW(L"TMP", tmp), ::SetEnvironmentVariableW(L"TEMP", tempVar);
  ASSERT_TRUE(worker.Started());
  worker.WriteSetting(L"IDS_WIPEALGORITHM", L"7");
  // An empty Recycle Bin, so that the Recycle Bin task's reply shows the byte total alone.
  worker.Send(2052);
  ASSERT_TRUE(worker.WaitFor(2053));
  WriteFileBytes(big, std::string(kBig, 'Q'));
  const DWORD pid = worker.processId();
  const std::set<DWORD> idle = ThreadsOf(pid);

  worker.ClearReceived();
  FolderChanges changes(temp);
  worker.Send(2034);
  const std::string planted(kCluster, 'Q');
  ASSERT_TRUE(changes.WaitUntil([&] { return ReadFileBytes(big, kCluster) != planted; })) << "the shred began";
  worker.Send(2036);
  const auto stopped = worker.WaitFor(2036, 5000);
  ASSERT_TRUE(stopped);
  EXPECT_EQ(stopped->wParam, 1u);
  EXPECT_EQ(stopped->lParam, static_cast<LPARAM>(kBig));

  // The task's thread ends of its own accord, soon: it does not shred on.
  EXPECT_TRUE(ThreadsBeyondEnd(pid, idle, 30000)) << "a task thread still runs";
  const std::string left = ReadFileBytes(big);
  ASSERT_EQ(left.size(), kBig) << "the file keeps its name and size";
  EXPECT_TRUE(left.compare(kBig - kCluster, kCluster, planted) == 0) << "its last cluster was never reached";
  EXPECT_FALSE(PathExists(temp + L"\\xxx.xxx"));
  EXPECT_EQ(canary.Damage(), L"");

  // The next reply carries the byte total as the stop left it, and no count.
  worker.Send(2052);
  const auto next = worker.WaitFor(2053);
  ASSERT_TRUE(next);
  EXPECT_EQ(next->wParam, 0u);
  EXPECT_EQ(next->lParam, stopped->lParam);
}

}  // namespace
}  // namespace scourel::test
