#include "windows_traces/recycle_bin.h"

#include <gtest/gtest.h>

#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

TEST(RecycleBinTest, MeasureEmptiesNothingThenTheTaskCountsEveryDriveAndEmptiesAll) {
  ScratchDir dir(L"recycle-bin");
  CanaryTree canary(dir / L"canary");
  EmptyBin();
  ASSERT_TRUE(PlantRecycledFiles(dir / L"bin", 3, 1000));
  ASSERT_EQ(QueryBin(), std::make_pair(std::int64_t{3}, std::int64_t{3000}));
  const float roots = static_cast<float>(DriveRootCount());
  g_totals.byteTotal.set(5.0f);  // the task adds to it; the measure keeps its own

  RecycleBins(kMeasure);
  EXPECT_EQ(g_totals.recycleBinItems.get(), 3 * roots);
  EXPECT_EQ(g_totals.recycleBinBytes.get(), 3000.0f * roots);
  EXPECT_EQ(g_totals.byteTotal.get(), 5.0f);
  EXPECT_EQ(QueryBin().first, 3);

  g_totals.recycleBinItems.set(0);
  g_totals.recycleBinBytes.set(0.0f);
  RecycleBins(kErase);
  EXPECT_EQ(g_totals.recycleBinItems.get(), 3 * roots);
  EXPECT_EQ(g_totals.byteTotal.get(), 5.0f + 3000.0f * roots);
  EXPECT_EQ(g_totals.recycleBinBytes.get(), 0.0f);
  EXPECT_EQ(QueryBin().first, 0);
  EXPECT_EQ(canary.Damage(), L"");
  g_totals.recycleBinItems.set(0);
  g_totals.byteTotal.set(0.0f);
}

}  // namespace
}  // namespace scourel::test
