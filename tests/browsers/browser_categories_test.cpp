// Every browser category over the planted profiles of all five browsers,
// called directly with the Windows version given: what each browser's cell
// counts in a scan and in a clean, what each leaves, and the counters kept
// beside the grid.
#include <gtest/gtest.h>

#include "browsers/browser_traces.h"
#include "common/known_folders.h"
#include "common/win.h"
#include "support/browser_fixture.h"
#include "support/task_fixture.h"

#include <winioctl.h>

namespace scourel::test {
namespace {

using protocol::BrowserCategory;

void CheckRun(const BrowserFixture& fixture, const Run& run) {
  for (int b = 0; b < protocol::kBrowserCount; ++b) {
    for (int c = 0; c < protocol::kBrowserCategoryCount; ++c) {
      const CountAndBytes& cell = g_totals.browser.cells[b][c];
      EXPECT_EQ((Expected{cell.count.get(), cell.bytes.get()}),
                fixture.Of(static_cast<protocol::Browser>(b), static_cast<BrowserCategory>(c), run))
          << protocol::kBrowserNames[b] << " " << protocol::kBrowserCategoryNames[c];
    }
  }
  EXPECT_EQ(g_totals.browser.icons.get(), fixture.Of(protocol::Browser::kOpera, BrowserCategory::kIcons, run).count);
  EXPECT_EQ(g_totals.browser.firefoxOfflineCache.get(), 1);  // every scenario has the Firefox profile
  EXPECT_EQ(fixture.Damage(run), L"");
}

TEST(BrowserCategoriesTest, ScanThenCleanCountWhatEachBrowserHolds) {
  const struct {
    const char* name;
    BrowserScenario scenario;
    OsVersion version;
    bool erase;  // scan, clean every category in order, then scan again
  } cases[] = {
      {"6.2: the first Profile folder; both Opera layouts: the old one", {}, {6, 2}, true},
      {"6.1: no extra profile; nothing held open", {.extraProfile = false, .held = false}, {6, 1}, true},
      {"10.0: no extra profile", {.extraProfile = false}, {10, 0}, true},
      {"new Opera layout, Path without a slash, no Safari",
       {.operaOld = false, .safariGate = false, .safari = false, .profilePath = L"abcd.default"}, {6, 3}, true},
      // Measured only: a clean would take the decoys at the root of the drive.
      {"6.2 without a Profile folder: the drive root's files",
       {.operaNew = false, .profiles = false, .safariGate = false}, {6, 2}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    BrowserFixture fixture(c.scenario);
    const std::wstring readOnly = ReadOnlyTracePath();
    ASSERT_NE(::GetFileAttributesW(readOnly.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);

    ResetBrowserTotals(g_totals);
    ScanBrowserTraces(kMeasure, c.version);
    CheckRun(fixture, ScanRun());
    EXPECT_EQ(::GetFileAttributesW(readOnly.c_str()) & FILE_ATTRIBUTE_READONLY, 0u) << "cleared by a scan too";
    if (!c.erase) continue;
    ResetBrowserTotals(g_totals);
    for (const auto& category : protocol::kBrowserCategories) BrowserCategoryStep(kErase, category.category, c.version);
    CheckRun(fixture, CleanEverything());
    ResetBrowserTotals(g_totals);
    ScanBrowserTraces(kMeasure, c.version);
    for (int category = 0; category < protocol::kBrowserCategoryCount; ++category) {
      EXPECT_EQ(g_totals.browser.CategoryCount(static_cast<BrowserCategory>(category)), 0) << category;
      EXPECT_EQ(g_totals.browser.CategoryBytes(static_cast<BrowserCategory>(category)), 0.0f) << category;
    }
  }
  ResetBrowserTotals(g_totals);
}

// A sparse file, so the host disk holds none of it; measured, never cleaned.
TEST(BrowserCategoriesTest, ScanSizesAFileBeyondFourGibibytesInFull) {
  const std::uint64_t size = (5ull << 30) + 1024;  // exact in a float; its low 32 bits alone are 1 GiB + 1 KiB
  const std::wstring folder = ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\Microsoft\\Internet Explorer";
  const Cleanup removed = RemovedAtEnd({folder});
  MakeDirs(folder + L"\\DOMStore\\big");
  ULARGE_INTEGER freeBefore{}, freeAfter{};
  ASSERT_TRUE(::GetDiskFreeSpaceExW(L"C:\\", &freeBefore, nullptr, nullptr));
  {
    const UniqueHandleKernel file(::CreateFileW((folder + L"\\DOMStore\\big\\huge.xml").c_str(), GENERIC_WRITE, 0,
                                                nullptr, CREATE_NEW, 0, nullptr));
    DWORD returned = 0;
    ::DeviceIoControl(file.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    ASSERT_TRUE(::SetFilePointerEx(file.get(), {.QuadPart = static_cast<LONGLONG>(size)}, nullptr, FILE_BEGIN) &&
                ::SetEndOfFile(file.get()));
  }
  // Other work shares the disk: a file that took its size would take 5 GiB of it.
  ASSERT_TRUE(::GetDiskFreeSpaceExW(L"C:\\", &freeAfter, nullptr, nullptr));
  ASSERT_LT(static_cast<std::int64_t>(freeBefore.QuadPart - freeAfter.QuadPart), 1ll << 30) << "not stored sparsely";
  ResetBrowserTotals(g_totals);
  ScanBrowserTraces(kMeasure, {6, 1});
  const auto& cell = g_totals.browser.cell(protocol::Browser::kInternetExplorer, BrowserCategory::kCookies);
  EXPECT_EQ(cell.bytes.get(), static_cast<float>(size));
  ResetBrowserTotals(g_totals);
}

TEST(BrowserCategoriesTest, ProfileNamesStayInsideTheProfilesFolder) {
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
