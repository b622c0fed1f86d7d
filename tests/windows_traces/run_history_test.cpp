#include <gtest/gtest.h>

#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

int RunHistoryCount() { return g_totals.pc(protocol::PcStep::kRunHistory).get(); }

TEST(RunHistoryTest, RunStreamAndTypedPathListsCountInScanAndCleanAndGo) {
  RegistryCanary canary;
  RemoveHistoryKeys();
  ResetPcCounters();
  std::vector<std::pair<std::wstring, std::wstring>> alphabet;
  for (wchar_t c = L'a'; c <= L'z'; ++c) alphabet.push_back({std::wstring(1, c), L"notepad " + std::wstring(1, c)});
  PlantList(kRunMruKey, alphabet);
  RunHistory(kMeasure);
  EXPECT_EQ(RunHistoryCount(), 26);
  EXPECT_TRUE(KeyPresent(kRunMruKey));
  ResetPcCounters();
  RunHistory(kErase);
  EXPECT_EQ(RunHistoryCount(), 26);
  EXPECT_FALSE(KeyPresent(kRunMruKey));

  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"MRUList", L"a"}});
  PlantList(kStreamMruKey, {{L"0", L"x"}, {L"1", L"y"}, {L"2", L"z"}});
  PlantList(kTypedPathsKey, {{L"url1", L"C:\\Users"}});
  SetText(kTypedPathsKey + L"\\nested", L"v", L"w");
  ResetPcCounters();
  RunHistory(kMeasure);
  EXPECT_EQ(RunHistoryCount(), 6);  // values only; the subkey is not counted
  RunHistory(kErase);
  EXPECT_EQ(RunHistoryCount(), 12);  // added to, not set
  for (const std::wstring& key : {kRunMruKey, kStreamMruKey, kTypedPathsKey}) EXPECT_FALSE(KeyPresent(key));
  ResetPcCounters();
  RunHistory(kMeasure);
  RunHistory(kErase);
  EXPECT_EQ(RunHistoryCount(), 0);
  EXPECT_EQ(canary.Damage(), L"");
}

// The one length variable shared by name and data, never reset between
// values, decides which entries can still be read: a short entry shrinks
// what the next read may take, far below 1024.
TEST(HistoryListTest, TheSharedLengthShrinksAfterAShortEntry) {
  ScratchKey scratch(L"pctraces-length");
  const std::wstring list = scratch.path() + L"\\list";
  HistoryListBuffers buffers{};
  PlantList(list, {{L"0123456789", L"x"}, {L"abcdefghijkl", L"y"}, {L"m", L"z"}});
  {
    UniqueRegKey key;
    ASSERT_EQ(::RegOpenKeyExW(HKEY_CURRENT_USER, list.c_str(), 0, KEY_READ, key.put()), ERROR_SUCCESS);
    DWORD length = kHistoryLengthStart, fresh = kHistoryLengthStart;
    ASSERT_TRUE(ReadHistoryValue(key.get(), 0, buffers, length));
    EXPECT_STREQ(buffers.name, L"0123456789");
    EXPECT_LT(length, 12u);
    EXPECT_FALSE(ReadHistoryValue(key.get(), 1, buffers, length));
    EXPECT_TRUE(ReadHistoryValue(key.get(), 1, buffers, fresh));
  }
  // The entry that no longer fits ends the loop; the key goes whole.
  Relaxed<std::int32_t> counter(7);
  EXPECT_EQ(EraseHistoryKey(kErase, HKEY_CURRENT_USER, list, buffers, counter, CountMode::kAdd), 1);
  EXPECT_EQ(counter.get(), 10);
  EXPECT_FALSE(KeyPresent(list));

  // Data past 1024 bytes is never read but still counted and erased.
  PlantList(list, {{L"long", std::wstring(1500, L'q')}, {L"a", L"b"}});
  EXPECT_EQ(CountHistoryValues(kMeasure, HKEY_CURRENT_USER, list, buffers, false, counter), 2);
  EXPECT_EQ(EraseHistoryKey(kErase, HKEY_CURRENT_USER, list, buffers, counter, CountMode::kSet), 0);
  EXPECT_EQ(counter.get(), 2);  // set, not added
  EXPECT_FALSE(KeyPresent(list));
  EraseHistoryKey(kErase, HKEY_CURRENT_USER, list, buffers, counter, CountMode::kSet);
  EXPECT_EQ(counter.get(), 0);
  EXPECT_EQ(HistoryEntryText(L"Software\\X\\RunMRU", L"a"), L"HKEY_CURRENT_USER\\Software\\X\\RunMRU\\a\\");
}

}  // namespace
}  // namespace scourel::test
