// Internet Explorer's cookie entries, planted in the sandbox's URL cache
// through WinINet itself. Wine matches a search pattern's prefix with its
// case, so these runs look for "Cookie:" where the worker asks for "cookie:".
#include <gtest/gtest.h>

#include <vector>

#include "browsers/browser_steps.h"
#include "browsers/browser_traces.h"
#include "support/fixtures.h"
#include "support/task_fixture.h"

namespace scourel::test {
namespace {

constexpr BrowserStep kEntries[] = {
    {protocol::Browser::kInternetExplorer, Gate::kAlways, Base::kUrlCache, L"Cookie:", Treatment::kUrlCacheCookies}};
constexpr std::uint32_t kEntryBytes = 37;

std::vector<std::wstring> CookieEntries() {
  std::vector<std::wstring> names;
  std::vector<std::uint64_t> buffer(512);
  auto* entry = reinterpret_cast<INTERNET_CACHE_ENTRY_INFOW*>(buffer.data());
  DWORD size = static_cast<DWORD>(buffer.size() * 8);
  const UniqueUrlCacheEnum find(::FindFirstUrlCacheEntryW(L"Cookie:", entry, &size));
  for (bool more = find.valid(); more; more = ::FindNextUrlCacheEntryW(find.get(), entry, &size)) {
    names.push_back(entry->lpszSourceUrlName);
    size = static_cast<DWORD>(buffer.size() * 8);
  }
  return names;
}

void DeleteCookieEntries() {
  for (const std::wstring& name : CookieEntries()) ::DeleteUrlCacheEntryW(name.c_str());
}

void PlantCookieEntry(const std::wstring& url) {
  wchar_t file[MAX_PATH] = {};
  ASSERT_TRUE(::CreateUrlCacheEntryW(url.c_str(), 0, L"txt", file, 0));
  WriteFileBytes(file, std::string(kEntryBytes, 'c'));
  ASSERT_TRUE(::CommitUrlCacheEntryW(url.c_str(), file, {}, {}, COOKIE_CACHE_ENTRY, nullptr, 0, L"txt", nullptr));
}

TEST(UrlCacheCookiesTest, TheFirstEntryStaysAndEveryLaterOneIsDeletedAndCountedTwice) {
  const struct {
    int planted;
    Mode mode;
    int counted;
    int sized;  // a deleted entry's file is gone by the time it is sized
    size_t left;
  } cases[] = {
      {0, Mode::kErase, 0, 0, 0},   {1, Mode::kMeasure, 1, 1, 1}, {1, Mode::kErase, 1, 1, 1},
      {3, Mode::kMeasure, 5, 5, 3}, {3, Mode::kErase, 5, 1, 1},
  };
  const Cleanup removed(DeleteCookieEntries);
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.planted << (c.mode == Mode::kErase ? " erased" : " measured"));
    DeleteCookieEntries();
    for (int i = 0; i < c.planted; ++i) PlantCookieEntry(L"Cookie:user@site" + std::to_wstring(i) + L".example/");
    ResetBrowserTotals(g_totals);
    RunCategorySteps(TestContext(c.mode), {protocol::BrowserCategory::kCookies, kEntries}, {6, 1});
    const CountAndBytes& cell = g_totals.browser.cell(protocol::Browser::kInternetExplorer,
                                                       protocol::BrowserCategory::kCookies);
    EXPECT_EQ(g_totals.browser.ieCookieEntries.get(), c.counted);
    EXPECT_EQ(cell.count.get(), 0) << "counted apart from the grid";
    EXPECT_EQ(cell.bytes.get(), static_cast<float>(c.sized * kEntryBytes));
    EXPECT_EQ(CookieEntries().size(), c.left);
  }
  ResetBrowserTotals(g_totals);
}

}  // namespace
}  // namespace scourel::test
