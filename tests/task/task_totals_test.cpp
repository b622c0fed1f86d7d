#include "task/task_totals.h"

#include <gtest/gtest.h>

#include <tuple>

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

  for (auto& c : g_totals.pcTraces) EXPECT_EQ(c.get(), 0);
  EXPECT_EQ(std::tuple(g_totals.byteTotal.get(), g_totals.junkFirst.get(), g_totals.junkSecond.get(),
                       g_totals.recycleBinItems.get(), g_totals.recycleBinBytes.get(), g_totals.pluginItems.get()),
            std::tuple(0.0f, 0, 0, 0, 7.0f, 6));
}

}  // namespace
}  // namespace scourel
