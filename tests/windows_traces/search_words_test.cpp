#include <gtest/gtest.h>

#include <cstring>

#include "windows_traces/history_list.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// Three words as Explorer keeps them (UTF-16 binary) and their order list.
TEST(SearchWordsTest, ThreeWordsAndTheirOrderListScanAsFourAndASecondCleanSetsZero) {
  RegistryCanary canary;
  ResetPcCounters();
  PlantList(kWordWheelKey, {});
  const std::wstring words[] = {L"invoice", L"holiday", L"salary"};
  for (int i = 0; i < 3; ++i) {
    SetValue(kWordWheelKey, std::to_wstring(i), REG_BINARY, words[i].c_str(),
             static_cast<DWORD>((words[i].size() + 1) * sizeof(wchar_t)));
  }
  const std::uint32_t order[] = {2, 1, 0, 0xFFFFFFFFu};
  SetValue(kWordWheelKey, L"MRUListEx", REG_BINARY, order, sizeof order);
  auto& count = g_totals.pc(protocol::PcStep::kFindFiles);

  SearchWords(kMeasure);
  EXPECT_EQ(count.get(), 4);
  EXPECT_TRUE(KeyPresent(kWordWheelKey));
  count.set(10);
  SearchWords(kErase);
  EXPECT_EQ(count.get(), 4);
  EXPECT_FALSE(KeyPresent(kWordWheelKey));
  SearchWords(kErase);
  EXPECT_EQ(count.get(), 0);
  EXPECT_EQ(canary.Damage(), L"");
}

// The data is compared as a narrow string, so the UTF-16 name does not match.
TEST(SearchWordsTest, MruListDataIsTheNarrowName) {
  for (const char* text : {"MRUListEx", "MRUList", "MRUListExx", "mrulistex", ""}) {
    BYTE data[16] = {};
    std::memcpy(data, text, std::strlen(text));
    EXPECT_EQ(IsMruListData(data), std::strcmp(text, "MRUListEx") == 0) << text;
  }
  EXPECT_FALSE(IsMruListData(reinterpret_cast<const BYTE*>(L"MRUListEx")));
}

}  // namespace
}  // namespace scourel::test
