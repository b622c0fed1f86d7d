// The worker's side of the message link, through real window messages
// between two processes.
#include <gtest/gtest.h>

#include "overseer/reply_decoding.h"
#include "protocol/messages.h"
#include "protocol/tasks.h"
#include "support/fixtures.h"
#include "support/process_threads.h"
#include "support/worker_harness.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// What wParam must be: a fixed value, the worker's window, the controller's
// window, or any count (the totals depend on what the sandbox holds).
enum class Param { kZero, kWorker, kController, kAny };

struct Expected {
  UINT id;          // reply id, or WM_COPYDATA
  unsigned kind;    // copy-data kind
  bool sent;        // SendMessage rather than PostMessage
  Param wParam;
  bool lParamZero;  // else any byte total
  const wchar_t* text;  // copy data: the exact text; null: any overseer reads in the kind's layout
};

// Progress steps are posted and results sent, so a result may overtake the
// last steps in the controller's queue: the two are compared apart.
struct CommandCase {
  const char* name;
  UINT command;
  std::vector<Expected> results;  // in order; nothing else may arrive
  UINT progress = 0;              // posted with wParam 1 .. steps
  std::size_t steps = 0;
};

Expected Posted(UINT id, Param w = Param::kZero) { return {id, 0, false, w, true, nullptr}; }
Expected Sent(UINT id, Param w, bool lParamZero) { return {id, 0, true, w, lParamZero, nullptr}; }
Expected Copy(unsigned kind, Param w, const wchar_t* text = nullptr) {
  return {WM_COPYDATA, kind, true, w, false, text};
}

std::vector<CommandCase> StartCases() {
  // The full scan's records, in the order overseer waits for them.
  std::vector<Expected> scan;
  for (unsigned kind : protocol::kFullScanReplies) scan.push_back(Copy(kind, Param::kController));
  return {
      {"junk files", 2034, {Sent(2035, Param::kAny, false)}},
      {"junk files 2", 2058, {Sent(2059, Param::kAny, false)}},
      {"registry fix", 2037, {Posted(2038)}},
      {"registry fix 2", 2061, {Posted(2062)}},
      {"shortcuts", 2040, {Sent(2041, Param::kAny, false)}},
      {"shortcuts 2", 2064, {Sent(2065, Param::kAny, false)}},
      {"extension fix", 2043, {Sent(2044, Param::kWorker, true)}},
      {"extension fix 2", 2067, {Sent(2068, Param::kWorker, true)}},
      {"browser", 2046, {Copy(305, Param::kWorker)}, 2083, 9},
      {"browser 2", 2070, {Sent(2071, Param::kWorker, true)}},
      {"pc traces", 2049, {Copy(303, Param::kWorker)}, 2082, 6},
      {"pc traces 2", 2073, {Posted(2074, Param::kWorker)}},
      {"recycle bin", 2052, {Sent(2053, Param::kAny, false)}},
      {"recycle bin 2", 2076, {Sent(2077, Param::kAny, false)}},
      {"plugin clean", 2055, {Posted(2056)}},
      // wParam 0 names no drive: nothing is written.
      {"free-space wipe", 2089,
       {Copy(307, Param::kWorker, L"no drive\\fw0\\fw0\\fw0\\fwskipped\\fwnot issued\\fwunknown\\fw\\fw0")}},
      {"full scan", 2087, scan},
  };
}

void CheckReply(const WorkerHarness& worker, const ReceivedMessage& got, const Expected& want) {
  EXPECT_EQ(got.sent, want.sent) << "sent vs posted";
  switch (want.wParam) {
    case Param::kZero: EXPECT_EQ(got.wParam, 0u); break;
    case Param::kWorker: EXPECT_EQ(got.wParam, reinterpret_cast<WPARAM>(worker.worker())); break;
    case Param::kController: EXPECT_EQ(got.wParam, reinterpret_cast<WPARAM>(worker.controller())); break;
    case Param::kAny: break;
  }
  if (want.id == WM_COPYDATA) {
    EXPECT_EQ(got.kind, want.kind);
    EXPECT_EQ(got.bytes.size(), protocol::RecordBytes(want.kind));
    if (want.text) {
      EXPECT_EQ(got.text, want.text);
    }
    // What lies behind the text is the buffer's own test (reply_text_test).
    EXPECT_TRUE(overseer::DecodeCopyData(got.kind, got.text).readable) << testing::PrintToString(got.text);
  } else if (want.lParamZero) {
    EXPECT_EQ(got.lParam, 0);
  } else {
    EXPECT_GE(got.lParam, 0);
  }
}

TEST(WorkerProtocolTest, EveryStartCommandRepliesAsSpecified) {
  WorkerHarness worker(L"proto-table");
  ASSERT_TRUE(worker.Started());
  for (const CommandCase& c : StartCases()) {
    SCOPED_TRACE(c.name);
    worker.ClearReceived();
    EXPECT_EQ(worker.Send(c.command), 0);
    const Expected& last = c.results.back();
    ASSERT_TRUE(last.id == WM_COPYDATA ? worker.WaitForCopyData(last.kind) : worker.WaitFor(last.id));
    ASSERT_TRUE(!c.steps || worker.WaitForCount(c.progress, c.steps));
    std::vector<ReceivedMessage> progress, results;
    for (auto& m : worker.Received()) (c.steps && m.id == c.progress ? progress : results).push_back(m);
    std::vector<std::tuple<bool, WPARAM, LPARAM>> steps, posted;  // sent?, wParam, lParam
    for (const auto& m : progress) steps.emplace_back(m.sent, m.wParam, m.lParam);
    for (size_t i = 1; i <= c.steps; ++i) posted.emplace_back(false, i, 0);
    EXPECT_EQ(steps, posted) << "progress steps";
    ASSERT_EQ(results.size(), c.results.size());
    for (size_t i = 0; i < results.size(); ++i) {
      SCOPED_TRACE(i);
      EXPECT_EQ(results[i].id, c.results[i].id);
      CheckReply(worker, results[i], c.results[i]);
    }
  }
}

// Stops of empty slots, ids no command has, WM_CLOSE and the second-set
// plug-in clean's end of the worker are checked by the stop storm, a test of
// its own (bench/stop_storm.cpp).

TEST(WorkerProtocolTest, StopsOfSlotsLeftTakenReportTotals) {
  // Two tasks keep their slot after replying: the second-set PC-traces task
  // (it stops itself after 2074) and the first-set browser task. A stop of
  // either slot, through either set's id, then finds it taken.
  struct StopCase {
    UINT start;
    Expected started;  // waited for, then the slot is taken
    UINT stop;
    Expected reply;
  };
  const StopCase cases[] = {
      {2073, Posted(2074, Param::kWorker), 2075, Sent(2075, Param::kWorker, true)},
      {2073, Posted(2074, Param::kWorker), 2051, Copy(304, Param::kWorker)},
      {2046, Copy(305, Param::kWorker), 2048, Copy(306, Param::kWorker)},
      {2046, Copy(305, Param::kWorker), 2072, Posted(2072, Param::kWorker)},
  };
  WorkerHarness worker(L"proto-stop");
  ASSERT_TRUE(worker.Started());
  for (const StopCase& c : cases) {
    SCOPED_TRACE(c.stop);
    worker.Send(c.start);
    ASSERT_TRUE(c.started.id == WM_COPYDATA ? worker.WaitForCopyData(c.started.kind)
                                            : worker.WaitFor(c.started.id));
    if (c.start == 2046) {
      ASSERT_TRUE(worker.WaitForCount(2083, 9));  // posted progress may trail the result
    }
    worker.ClearReceived();
    worker.Send(c.stop);
    auto got = c.reply.id == WM_COPYDATA ? worker.WaitForCopyData(c.reply.kind, 5000) : worker.WaitFor(c.reply.id, 5000);
    ASSERT_TRUE(got);
    CheckReply(worker, *got, c.reply);
    // The slot is empty after a stop: the same stop again sends nothing.
    worker.ClearReceived();
    worker.Send(c.stop);
    EXPECT_TRUE(worker.CaughtUp() && worker.Received().empty());
  }
}

TEST(WorkerProtocolTest, SecondSetPcTracesStopsTheTaskThatReplacedIt) {
  WorkerHarness worker(L"proto-pc-later");
  ASSERT_TRUE(worker.Started());
  // A large recent document, shredded with 35 passes, keeps the first task
  // busy well past the second start: a first task that ended before the
  // second began would rightly leave itself in the slot and nobody would be
  // stopped. (A long run history would not: its first read fails, so the
  // list goes whole at once.)
  const std::wstring busy = ShellFolderPath(CSIDL_RECENT) + L"\\scourel-busy.lnk";
  const Cleanup gone = RemovedAtEnd({busy});
  WriteFileBytes(busy, std::string(16 << 20, 'b'));
  worker.WriteSetting(L"IDS_WIPEALGORITHM", L"7");
  worker.WriteSetting(L"IDS_PCDOCUMENT", L"TRUE");
  // Whichever of the two ends first, the first to end finds the other in the
  // slot (or itself, then the other finds it): one of them stops the other.
  worker.Send(2073);
  worker.Send(2073);
  ASSERT_TRUE(PathExists(busy)) << "the first task ended before the second began";
  ASSERT_TRUE(worker.WaitFor(2075, 30000));
  // The slot is empty: its stop answers nothing (posted 2074s may still trail).
  worker.Send(2075);
  ASSERT_TRUE(worker.CaughtUp());
  EXPECT_FALSE(worker.WaitFor(2075, 0));
}

TEST(WorkerProtocolTest, WithoutControllerTheWorkerRunsOnQuietly) {
  WorkerHarness worker(L"proto-alone", L"", /*controller=*/false);
  ASSERT_TRUE(worker.Started());
  const std::set<DWORD> idle = ThreadsOf(worker.processId());
  worker.Send(2087);
  worker.Send(2049);
  worker.Send(2034);
  // Once the tasks, with nobody to reply to, have ended, the worker still answers.
  EXPECT_TRUE(ThreadsBeyondEnd(worker.processId(), idle, 120000));
  EXPECT_EQ(worker.Send(2039), 0);
}

}  // namespace
}  // namespace scourel::test
