#include "windows_traces/recycle_bin.h"

#include <gtest/gtest.h>

#include "common/win.h"
#include "host/task_totals.h"
#include "recycle_bin_fixture.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

class RecycleBinTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ::SHEmptyRecycleBinW(nullptr, nullptr, SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND);
    ASSERT_EQ(QueryBin().items, 0);
    ASSERT_TRUE(PlantRecycledFiles(dir_ / L"bin", 3, 1000));
    ASSERT_EQ(QueryBin().items, 3);
    ASSERT_EQ(QueryBin().bytes, 3000);
    g_totals.recycleBinItems.set(0);
    g_totals.recycleBinBytes.set(0.0f);
    g_totals.byteTotal.set(0.0f);
  }
  void TearDown() override {
    g_totals.recycleBinItems.set(0);
    g_totals.recycleBinBytes.set(0.0f);
    g_totals.byteTotal.set(0.0f);
  }
  ScratchDir dir_{L"recycle-bin"};
  CanaryTree canary_{dir_ / L"canary"};
};

TEST_F(RecycleBinTest, CountsEveryDriveThenEmptiesAll) {
  const int roots = DriveRootCount();
  ASSERT_GE(roots, 1);
  g_totals.byteTotal.set(5.0f);  // the task adds to what is there

  EmptyRecycleBins();

  EXPECT_EQ(g_totals.recycleBinItems.get(), 3 * roots);
  EXPECT_EQ(g_totals.byteTotal.get(), 5.0f + 3000.0f * static_cast<float>(roots));
  EXPECT_EQ(g_totals.recycleBinBytes.get(), 0.0f);
  EXPECT_EQ(QueryBin().items, 0);
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(RecycleBinTest, MeasureUsesItsOwnByteTotalAndEmptiesNothing) {
  const int roots = DriveRootCount();

  MeasureRecycleBins();

  EXPECT_EQ(g_totals.recycleBinItems.get(), 3 * roots);
  EXPECT_EQ(g_totals.recycleBinBytes.get(), 3000.0f * static_cast<float>(roots));
  EXPECT_EQ(g_totals.byteTotal.get(), 0.0f);
  EXPECT_EQ(QueryBin().items, 3);
  ::SHEmptyRecycleBinW(nullptr, nullptr, SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND);
}

}  // namespace
}  // namespace scourel::test
