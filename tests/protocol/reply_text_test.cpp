#include "protocol/reply_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace scourel {
namespace {

TEST(ReplyTextTest, FullScanAndTaskTexts) {
  const PcCounters pc = {1, 2, 3, 4, 5, 6, 7};
  const std::array<std::int32_t, 10> browserCounts = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  const std::array<float, 10> browserBytes = {0, 1024, 2048, 3072, 4096, 5120, 6144, 7168, 8192, 9216};
  const std::array<std::int32_t, 12> registry = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111};

  const std::pair<std::wstring, std::wstring> cases[] = {
      {JunkScanText(3, 1536.0f, 4), L"3\\j1.50 KB\\j4"},
      {JunkScanText(-1, 0.0f, 0), L"-1\\j0.00 KB\\j0"},
      {ShortcutScanText(2, 2097152.0f), L"2\\s2.00 MB"},
      {RecycleBinScanText(3, 3000.0f), L"3\\r2.93 KB"},
      {PluginScanText(9, 0.0f), L"9\\pss0.00 KB"},
      {ExtensionScanText(42), L"42"},
      {PcTracesDoneText(pc), L"1\\pc 2\\pc 3\\pc 4\\pc 5\\pc 6\\pc 7"},
      {PcTracesScanText(pc, 2048.0f, 0.0f, 3221225472.0f),
       L"1\\pc   2.00 KB\\pc 2\\pc 3\\pc 4\\pc 5\\pc   0.00 KB\\pc 6\\pc   3.00 GB\\pc 7"},
      {BrowserText(browserCounts, browserBytes),
       L"0\\is0.00 KB\\is 1\\is1.00 KB\\is 2\\is2.00 KB\\is 3\\is3.00 KB\\is 4\\is4.00 KB\\is "
       L"5\\is5.00 KB\\is 6\\is6.00 KB\\is 7\\is7.00 KB\\is 8\\is8.00 KB\\is 9\\is9.00 KB\\is"},
      {RegistryScanText(registry),
       L"100\\cv 101\\cv 102\\cv 103\\cv 104\\cv 105\\cv 106\\cv 107\\cv 108\\cv 109\\cv 110\\cv 111\\cv"},
  };
  for (const auto& [actual, expected] : cases) EXPECT_EQ(actual, expected);
}

TEST(ReplyTextTest, StopTextIsReliableUpToTheFifthCounter) {
  const PcCounters pc = {11, 22, 33, 44, 55, 66, 77};
  const std::wstring text = PcTracesStoppedText(pc);
  EXPECT_EQ(text.substr(0, 29), L"11\\pc 22\\pc 33\\pc 44\\pc 55\\pc");
  // The sixth counter has no slot of its own in this layout.
  EXPECT_THAT(text, testing::Not(testing::HasSubstr(L"66")));
}

TEST(ReplyTextTest, CopyDataBufferIsTwiceTheRecordAndZeroPadded) {
  const auto buffer = CopyDataBuffer(L"ab", 522);
  ASSERT_EQ(buffer.size(), 1044u);
  EXPECT_THAT(std::vector(buffer.begin(), buffer.begin() + 4), testing::ElementsAre('a', 0, 'b', 0));
  EXPECT_THAT(std::vector(buffer.begin() + 4, buffer.end()), testing::Each(0));

  // A text longer than the record is cut at cbData bytes.
  const auto cut = CopyDataBuffer(std::wstring(300, L'x'), 522);
  EXPECT_EQ(cut[520], 'x');
  EXPECT_EQ(cut[522], 0);
}

}  // namespace
}  // namespace scourel
