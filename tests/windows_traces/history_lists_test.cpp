// The run-history and search-word lists, measured and erased beside a
// registry canary, and the one read length the list walks share.
#include <gtest/gtest.h>

#include "common/registry_key.h"
#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

TEST(HistoryListsTest, ValuesCountInBothModesTheKeysGoWholeAndAgainCountsNothing) {
  const RegistryCanary canary;
  std::vector<std::pair<std::wstring, std::wstring>> alphabet;
  for (wchar_t c = L'a'; c <= L'z'; ++c) alphabet.push_back({std::wstring(1, c), L"notepad " + std::wstring(1, c)});
  PlantList(kRunMruKey, alphabet);
  PlantList(kStreamMruKey, {{L"0", L"x"}, {L"1", L"y"}, {L"2", L"z"}});
  PlantList(kTypedPathsKey, {{L"url1", L"C:\\Users"}});
  PlantList(kTypedPathsKey + L"\\nested", {{L"v", L"w"}});  // a subkey is not counted
  // Three words and their order list, whose data is binary.
  PlantList(kWordWheelKey, {{L"0", L"invoice"}, {L"1", L"holiday"}, {L"2", L"salary"}});
  const std::uint32_t order[] = {2, 1, 0, 0xFFFFFFFFu};
  ::RegSetKeyValueW(HKEY_CURRENT_USER, kWordWheelKey.c_str(), L"MRUListEx", REG_BINARY, order, sizeof order);
  auto& find = g_totals.pc(protocol::PcStep::kFindFiles);
  // {run history, find files} after both steps.
  const auto pass = [&](const TaskContext& context) {
    RunHistory(context);
    SearchWords(context);
    return std::pair{g_totals.pc(protocol::PcStep::kRunHistory).get(), find.get()};
  };

  ResetForJunkFileScan(g_totals);
  EXPECT_EQ(pass(kMeasure), std::pair(30, 4));  // the order list counts with the words
  for (const std::wstring& key : kHistoryKeys) EXPECT_TRUE(KeyPresent(HKEY_CURRENT_USER, key)) << key;
  find.set(10);
  EXPECT_EQ(pass(kErase), std::pair(60, 4));  // run history added to, search words set
  for (const std::wstring& key : kHistoryKeys) EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, key)) << key;
  pass(kMeasure);
  EXPECT_EQ(pass(kErase), std::pair(60, 0));
  EXPECT_EQ(canary.Damage(), L"");
}

// The data is compared as a narrow string, so the UTF-16 name does not match.
TEST(HistoryListsTest, MruListDataIsTheNarrowName) {
  EXPECT_TRUE(IsMruListData(reinterpret_cast<const BYTE*>("MRUListEx")));
  for (const char* text : {"MRUList", "MRUListExx", "mrulistex", ""}) {
    EXPECT_FALSE(IsMruListData(reinterpret_cast<const BYTE*>(text))) << text;
  }
  EXPECT_FALSE(IsMruListData(reinterpret_cast<const BYTE*>(L"MRUListEx")));
}

// The length shared by name and data, never reset between values, shrinks
// after a short entry; the entry that then no longer fits ends the erasing
// loop, and the key goes whole all the same.
TEST(HistoryListsTest, TheSharedLengthShrinksAfterAShortEntry) {
  ScratchKey scratch(L"pctraces-length");
  const std::wstring list = scratch.path() + L"\\list";
  HistoryListBuffers buffers{};
  PlantList(list, {{L"0123456789", L"x"}, {L"abcdefghijkl", L"y"}, {L"m", L"z"}});
  {
    const OpenedKey key = OpenRegKey(HKEY_CURRENT_USER, list, KEY_READ);
    DWORD length = kHistoryLengthStart, fresh = kHistoryLengthStart;
    ASSERT_TRUE(ReadHistoryValue(key.get(), 0, buffers, length));
    EXPECT_STREQ(buffers.name, L"0123456789");
    EXPECT_FALSE(ReadHistoryValue(key.get(), 1, buffers, length));
    EXPECT_TRUE(ReadHistoryValue(key.get(), 1, buffers, fresh));
  }
  Relaxed<std::int32_t> counter(7);
  EXPECT_EQ(EraseHistoryKey(kErase, HKEY_CURRENT_USER, list, buffers, counter, CountMode::kAdd), 1);
  EXPECT_EQ(counter.get(), 10);
  EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, list));
  // Data past 1024 bytes is never read but still counted and erased.
  PlantList(list, {{L"long", std::wstring(1500, L'q')}, {L"a", L"b"}});
  EXPECT_EQ(CountHistoryValues(kMeasure, HKEY_CURRENT_USER, list, buffers, false, counter), 2);
  EXPECT_EQ(EraseHistoryKey(kErase, HKEY_CURRENT_USER, list, buffers, counter, CountMode::kSet), 0);
  EXPECT_EQ(counter.get(), 2);
  EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, list));
}

}  // namespace
}  // namespace scourel::test
