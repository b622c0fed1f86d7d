#include "task/task_totals.h"

#include <gtest/gtest.h>

namespace scourel {
namespace {

TEST(TaskTotalsTest, JunkFileResetClearsTheFirstFourRowsOnly) {
  g_totals.byteTotal.set(5.0f);
  for (auto& c : g_totals.pcTraces) c.set(3);
  g_totals.junkFirst.set(1);
  g_totals.junkSecond.set(2);
  g_totals.recycleBinItems.set(4);
  g_totals.recycleBinBytes.set(7.0f);
  g_totals.pluginItems.set(6);

  ResetForJunkFileScan(g_totals);

  EXPECT_EQ(g_totals.byteTotal.get(), 0.0f);
  for (auto& c : g_totals.pcTraces) EXPECT_EQ(c.get(), 0);
  EXPECT_EQ(g_totals.junkFirst.get(), 0);
  EXPECT_EQ(g_totals.junkSecond.get(), 0);
  EXPECT_EQ(g_totals.recycleBinItems.get(), 0);
  EXPECT_EQ(g_totals.recycleBinBytes.get(), 7.0f);
  EXPECT_EQ(g_totals.pluginItems.get(), 6);
}

}  // namespace
}  // namespace scourel
