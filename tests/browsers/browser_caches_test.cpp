// The caches category over the planted profiles of all five browsers, called
// directly with the Windows version given: what each browser's cell counts,
// what a scan leaves and what a clean takes.
#include <gtest/gtest.h>

#include "browsers/browser_traces.h"
#include "support/browser_fixture.h"
#include "support/task_fixture.h"

namespace scourel::test {
namespace {

using protocol::BrowserCategory;

void CheckRun(const BrowserFixture& fixture, Mode mode) {
  for (int b = 0; b < protocol::kBrowserCount; ++b) {
    const CountAndBytes& cell = g_totals.browser.cells[b][0];
    EXPECT_EQ((Expected{cell.count.get(), cell.bytes.get()}),
              fixture.Of(static_cast<protocol::Browser>(b), BrowserCategory::kCache, mode))
        << protocol::kBrowserNames[b];
  }
  for (int c = 1; c < protocol::kBrowserCategoryCount; ++c) {
    EXPECT_EQ(g_totals.browser.CategoryCount(static_cast<BrowserCategory>(c)), 0) << c;
  }
  EXPECT_EQ(fixture.Damage(BrowserCategory::kCache, mode), L"");
}

TEST(BrowserCachesTest, ScanThenCleanCountWhatEachBrowserHolds) {
  const struct {
    const char* name;
    BrowserScenario scenario;
    OsVersion version;
    bool erase;  // scan, then clean the same profiles
  } cases[] = {
      {"6.2: the first Profile folder; both Opera layouts: the old one", {}, {6, 2}, true},
      {"6.1: no extra profile", {.extraProfile = false}, {6, 1}, true},
      {"10.0: no extra profile", {.extraProfile = false}, {10, 0}, true},
      {"new Opera layout, Path without a slash, no Safari gate",
       {.operaOld = false, .safariGate = false, .profilePath = L"abcd.default"}, {6, 3}, true},
      // Measured only: a clean would take the decoy at the root of the drive.
      {"6.2 without a Profile folder: the drive root's Cache", {.operaNew = false, .profiles = false}, {6, 2}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    BrowserFixture fixture(c.scenario);
    const std::wstring readOnly = PathOf(BrowserTraceRows()[0]);
    ASSERT_NE(::GetFileAttributesW(readOnly.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);

    ResetBrowserTotals(g_totals);
    ScanBrowserTraces(kMeasure, c.version);
    CheckRun(fixture, Mode::kMeasure);
    EXPECT_EQ(::GetFileAttributesW(readOnly.c_str()) & FILE_ATTRIBUTE_READONLY, 0u) << "cleared by a scan too";
    if (!c.erase) continue;
    ResetBrowserTotals(g_totals);
    BrowserCategoryStep(kErase, BrowserCategory::kCache, c.version);
    CheckRun(fixture, Mode::kErase);
  }
  ResetBrowserTotals(g_totals);
}

TEST(BrowserCachesTest, ProfileNamesStayInsideTheProfilesFolder) {
  const std::tuple<const wchar_t*, const wchar_t*, bool> cases[] = {
      {L"Profiles/abcd.default", L"abcd.default", true}, {L"a/b/c.default", L"c.default", true},
      {L"abcd.default", L"abcd.default", true},           {L"Profiles/", L"", false},
      {L"..\\..\\Windows", L"..\\..\\Windows", false},    {L"Profiles/..", L"..", false},
      {L"x..y", L"x..y", true},
  };
  for (const auto& [value, name, usable] : cases) {
    EXPECT_EQ(ProfileFolderName(value), name) << value;
    EXPECT_EQ(IsUsableProfileName(name), usable) << value;
  }
}

}  // namespace
}  // namespace scourel::test
