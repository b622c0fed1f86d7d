#include <gtest/gtest.h>

#include "host/task_totals.h"
#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/pc_traces_test_support.h"

namespace scourel::test {
namespace {

class RunHistoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RemoveHistoryKeys();
    ResetPcCounters();
  }
  void TearDown() override {
    EXPECT_EQ(canary_.Damage(), L"");
    RemoveHistoryKeys();
  }
  int RunHistoryCount() const { return g_totals.pcTraces[kPcRunHistory].get(); }

  RegistryCanary canary_;
};

std::vector<std::pair<std::wstring, std::wstring>> Alphabet() {
  std::vector<std::pair<std::wstring, std::wstring>> values;
  for (wchar_t c = L'a'; c <= L'z'; ++c) values.push_back({std::wstring(1, c), L"notepad " + std::wstring(1, c) + L"\\1"});
  return values;
}

TEST_F(RunHistoryTest, TwentySixRunEntriesCountInScanAndCleanAndTheKeyGoes) {
  PlantList(kRunMruKey, Alphabet());
  ScanRunHistory();
  EXPECT_EQ(RunHistoryCount(), 26);
  EXPECT_TRUE(KeyPresent(kRunMruKey));  // the scan only counts

  ResetPcCounters();
  CleanRunHistory();
  EXPECT_EQ(RunHistoryCount(), 26);
  EXPECT_FALSE(KeyPresent(kRunMruKey));
}

TEST_F(RunHistoryTest, AllThreeListsAddUpAndGoWithTheirSubkeys) {
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"MRUList", L"a"}});
  PlantList(kStreamMruKey, {{L"0", L"x"}, {L"1", L"y"}, {L"2", L"z"}});
  PlantList(kTypedPathsKey, {{L"url1", L"C:\\Users"}});
  SetText(kTypedPathsKey + L"\\nested", L"v", L"w");

  ScanRunHistory();
  EXPECT_EQ(RunHistoryCount(), 6);  // values only; the subkey is not counted
  CleanRunHistory();
  EXPECT_EQ(RunHistoryCount(), 12);  // added to, not set
  EXPECT_FALSE(KeyPresent(kRunMruKey));
  EXPECT_FALSE(KeyPresent(kStreamMruKey));
  EXPECT_FALSE(KeyPresent(kTypedPathsKey));
}

TEST_F(RunHistoryTest, MissingListsCountNothing) {
  ScanRunHistory();
  CleanRunHistory();
  EXPECT_EQ(RunHistoryCount(), 0);
  EXPECT_FALSE(KeyPresent(kRunMruKey));
}

TEST(HistoryEntryTextTest, JoinsRootKeyAndValueWithATrailingSeparator) {
  EXPECT_EQ(HistoryEntryText(L"Software\\X\\RunMRU", L"a"), L"HKEY_CURRENT_USER\\Software\\X\\RunMRU\\a\\");
  EXPECT_EQ(HistoryEntryText(L"K", L""), L"HKEY_CURRENT_USER\\K\\\\");
}

// The one length variable shared by name and data, never reset between
// values, is what decides which entries can still be read.
class HistoryLengthTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetPcCounters(); }
  ScratchKey scratch_{L"pctraces-length"};
  std::wstring List() const { return scratch_.path() + L"\\list"; }
  HistoryListBuffers buffers_{};
};

TEST_F(HistoryLengthTest, AShortEntryShrinksWhatTheNextReadMayTake) {
  PlantList(List(), {{L"0123456789", L"x"}, {L"abcdefghijkl", L"y"}});
  UniqueRegKey key;
  ASSERT_EQ(::RegOpenKeyExW(HKEY_CURRENT_USER, List().c_str(), 0, KEY_READ, key.put()), ERROR_SUCCESS);
  DWORD length = kHistoryLengthStart;
  ASSERT_TRUE(ReadHistoryValue(key.get(), 0, buffers_, length));
  EXPECT_STREQ(buffers_.name, L"0123456789");
  EXPECT_LT(length, 12u);
  // Twelve characters no longer fit, though far below 1024.
  EXPECT_FALSE(ReadHistoryValue(key.get(), 1, buffers_, length));
  DWORD fresh = kHistoryLengthStart;
  EXPECT_TRUE(ReadHistoryValue(key.get(), 1, buffers_, fresh));
}

TEST_F(HistoryLengthTest, AnEntryThatNoLongerFitsEndsTheLoopAndTheKeyGoesWhole) {
  PlantList(List(), {{L"0123456789", L"x"}, {L"abcdefghijkl", L"y"}, {L"m", L"z"}});
  Relaxed<std::int32_t> counter;
  EXPECT_EQ(EraseHistoryKey(HKEY_CURRENT_USER, List(), buffers_, counter, CountMode::kAdd), 1);
  EXPECT_EQ(counter.get(), 3);
  EXPECT_FALSE(KeyPresent(List()));
}

TEST_F(HistoryLengthTest, DataLongerThan1024BytesIsNeverReadButStillCountedAndErased) {
  const std::wstring longText(1500, L'q');
  PlantList(List(), {{L"long", longText}, {L"a", L"b"}});
  Relaxed<std::int32_t> counter;
  EXPECT_EQ(CountHistoryValues(HKEY_CURRENT_USER, List(), buffers_, false, counter), 2);
  EXPECT_EQ(EraseHistoryKey(HKEY_CURRENT_USER, List(), buffers_, counter, CountMode::kAdd), 0);
  EXPECT_EQ(counter.get(), 4);
  EXPECT_FALSE(KeyPresent(List()));
}

TEST_F(HistoryLengthTest, SetModeReplacesTheCounter) {
  PlantList(List(), {{L"a", L"b"}});
  Relaxed<std::int32_t> counter(7);
  EraseHistoryKey(HKEY_CURRENT_USER, List(), buffers_, counter, CountMode::kSet);
  EXPECT_EQ(counter.get(), 1);
  EraseHistoryKey(HKEY_CURRENT_USER, List(), buffers_, counter, CountMode::kSet);
  EXPECT_EQ(counter.get(), 0);
}

}  // namespace
}  // namespace scourel::test
