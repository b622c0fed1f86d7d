#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "host/task_totals.h"
#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/pc_traces_test_support.h"

namespace scourel::test {
namespace {

class SearchWordsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RemoveHistoryKeys();
    ResetPcCounters();
  }
  void TearDown() override {
    EXPECT_EQ(canary_.Damage(), L"");
    RemoveHistoryKeys();
  }
  int FindFilesCount() const { return g_totals.pcTraces[kPcFindFiles].get(); }

  // Three words as Explorer keeps them (UTF-16 binary) and their order list.
  void PlantThreeWords() {
    PlantList(kWordWheelKey, {});
    const std::wstring words[] = {L"invoice", L"holiday", L"salary"};
    for (int i = 0; i < 3; ++i) {
      SetValue(kWordWheelKey, std::to_wstring(i), REG_BINARY, words[i].c_str(),
               static_cast<DWORD>((words[i].size() + 1) * sizeof(wchar_t)));
    }
    const std::uint32_t order[] = {2, 1, 0, 0xFFFFFFFFu};
    SetValue(kWordWheelKey, L"MRUListEx", REG_BINARY, order, sizeof order);
  }

  RegistryCanary canary_;
};

TEST_F(SearchWordsTest, ThreeWordsAndTheirOrderListScanAsFour) {
  PlantThreeWords();
  ScanSearchWords();
  EXPECT_EQ(FindFilesCount(), 4);
  EXPECT_TRUE(KeyPresent(kWordWheelKey));
}

TEST_F(SearchWordsTest, CleaningTwiceSetsTheCountToZeroTheSecondTime) {
  PlantThreeWords();
  g_totals.pcTraces[kPcFindFiles].set(10);
  CleanSearchWords();
  EXPECT_EQ(FindFilesCount(), 4);
  EXPECT_FALSE(KeyPresent(kWordWheelKey));
  CleanSearchWords();
  EXPECT_EQ(FindFilesCount(), 0);
}

TEST(MruListDataTest, ComparesTheDataAsANarrowString) {
  struct Case {
    const char* data;
    bool expected;
  };
  const Case cases[] = {{"MRUListEx", true}, {"MRUList", false}, {"MRUListExx", false}, {"mrulistex", false}, {"", false}};
  for (const Case& c : cases) {
    BYTE data[16] = {};
    std::memcpy(data, c.data, std::strlen(c.data));
    EXPECT_EQ(IsMruListData(data), c.expected) << c.data;
  }
  // The name written as UTF-16 is not the narrow text.
  const wchar_t wide[] = L"MRUListEx";
  EXPECT_FALSE(IsMruListData(reinterpret_cast<const BYTE*>(wide)));
}

}  // namespace
}  // namespace scourel::test
