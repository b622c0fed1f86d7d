#include "windows_traces/junk_files.h"

#include <gtest/gtest.h>

#include "host/task_totals.h"
#include "junk_places_fixture.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

struct Totals {
  std::int32_t first;
  std::int32_t second;
  float bytes;
  bool operator==(const Totals&) const = default;
};

void PrintTo(const Totals& t, std::ostream* os) {
  *os << "{first " << t.first << ", second " << t.second << ", bytes " << t.bytes << "}";
}

Totals Current() { return {g_totals.junkFirst.get(), g_totals.junkSecond.get(), g_totals.byteTotal.get()}; }

// What the places hold before planting (crash dumps and whatever a clean
// cannot erase stay), measured after a first clean.
Totals Baseline() {
  CleanJunkFiles();
  ResetForJunkFileScan();
  MeasureJunkFiles();
  const Totals t = Current();
  ResetForJunkFileScan();
  return t;
}

TEST(JunkFilesTest, MeasureThenCleanReportPlantedJunkAndSpareTheCanary) {
  const Totals base = Baseline();
  PlantedJunk junk(L"junk-files");
  ASSERT_TRUE(junk.ok());
  const Totals expected{base.first + junk.first(), base.second + junk.second(), base.bytes + junk.bytes()};

  ResetForJunkFileScan();
  MeasureJunkFiles();
  EXPECT_EQ(Current(), expected);
  for (const std::wstring& path : junk.erased()) EXPECT_TRUE(PathExists(path)) << path;

  g_totals.junkFirst.set(99);  // the task resets its own totals
  CleanJunkFiles();
  EXPECT_EQ(Current(), expected);
  for (const std::wstring& path : junk.erased()) EXPECT_FALSE(PathExists(path)) << path;
  for (const std::wstring& path : junk.kept()) EXPECT_TRUE(PathExists(path)) << path;
  EXPECT_FALSE(PathExists(junk.tempSubfolder() + L"\\nested"));
  EXPECT_TRUE(PathExists(TempDir()));
  EXPECT_EQ(junk.Damage(), L"");
  ResetForJunkFileScan();
}

}  // namespace
}  // namespace scourel::test
