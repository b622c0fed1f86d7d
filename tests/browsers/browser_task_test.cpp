// The browser task and the full scan's browser step through a real worker:
// the ten groups the controller receives, built from every browser's cells,
// and the Windows version the worker is told it runs on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "protocol/reply_text.h"
#include "support/browser_fixture.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

using testing::Field;
using testing::Optional;

// The text of kinds 105, 305 and 306 for what the fixture holds.
std::wstring ExpectedText(const BrowserFixture& fixture, const Run& run) {
  std::array<std::int32_t, protocol::kBrowserCategoryCount> counts{};
  std::array<float, protocol::kBrowserCategoryCount> bytes{};
  for (int c = 0; c < protocol::kBrowserCategoryCount; ++c) {
    const Expected total = fixture.Total(static_cast<protocol::BrowserCategory>(c), run);
    counts[c] = total.count;
    bytes[c] = total.bytes;
  }
  return BrowserText(counts, bytes);
}

// Windows 10 tells a program without a compatibility manifest that it runs
// on 6.2, where the version searches for the extra Chrome profile (6.1 does
// not: overseer's browser-rows test runs the worker as Windows 7).
TEST(BrowserTaskTest, ScanThenFullCleanRepliesWithEveryCategoryStopRepeatsItAndASecondCleanFindsNothing) {
  const WineVersionOf told(L"scourel.exe", L"win10");
  BrowserFixture fixture;
  WorkerHarness worker(L"browser-task");
  ASSERT_TRUE(worker.Started());
  worker.Send(2087);
  EXPECT_THAT(worker.WaitForCopyData(105), Optional(Field(&ReceivedMessage::text, ExpectedText(fixture, ScanRun()))));
  ASSERT_TRUE(worker.WaitForCopyData(106));
  EXPECT_EQ(fixture.Damage(ScanRun()), L"");

  worker.WriteSetting(L"IDS_WIPEALGORITHM", L"3");
  for (const std::wstring_view key : protocol::kBrowserCategoryKeys) {
    worker.WriteSetting(L"IDS_C" + std::wstring(key), L"TRUE");
  }
  const auto cleaned = Optional(Field(&ReceivedMessage::text, ExpectedText(fixture, CleanEverything())));
  worker.Send(2046);
  EXPECT_THAT(worker.WaitForCopyData(305), cleaned);
  EXPECT_EQ(fixture.Damage(CleanEverything()), L"");
  // The finished first-set task still holds its slot: a stop reports the same totals.
  worker.Send(2048);
  EXPECT_THAT(worker.WaitForCopyData(306), cleaned);
  worker.Send(2046);
  EXPECT_THAT(worker.WaitForCopyData(305), Optional(Field(&ReceivedMessage::text, BrowserText({}, {}))));
}

}  // namespace
}  // namespace scourel::test
