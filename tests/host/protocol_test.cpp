#include <gtest/gtest.h>

#include "host/protocol.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

TEST(WorkerProtocolTest, JunkFilesCompletionReachesController) {
  WorkerHarness worker(L"proto-smoke");
  ASSERT_TRUE(worker.Started());
  EXPECT_EQ(worker.Send(2039), 0);
  worker.Send(2034);
  auto reply = worker.WaitFor(2035);
  ASSERT_TRUE(reply);
  EXPECT_TRUE(reply->sent);
  EXPECT_EQ(reply->wParam, 0u);
}

}  // namespace
}  // namespace scourel::test
