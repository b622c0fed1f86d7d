#include "protocol/size_text.h"

#include <gtest/gtest.h>

namespace scourel {
namespace {

struct SizeCase {
  float bytes;
  const wchar_t* text;
  const wchar_t* padded;
};

TEST(SizeTextTest, UnitsAndThresholds) {
  const SizeCase cases[] = {
      {0.0f, L"0.00 KB", L"   0.00 KB"},
      {1023.0f, L"1.00 KB", L"   1.00 KB"},
      {1048575.0f, L"1024.00 KB", L"1024.00 KB"},
      {1048576.0f, L"1.00 MB", L"   1.00 MB"},
      {1073741823.0f, L"1.00 GB", L"   1.00 GB"},  // rounds to 2^30 as a float
      {1073741824.0f, L"1.00 GB", L"   1.00 GB"},
      {1536.0f, L"1.50 KB", L"   1.50 KB"},
      {5.0f * 1073741824.0f, L"5.00 GB", L"   5.00 GB"},
      // 2^24 + 1 is not a float: the total is already 16777216.
      {static_cast<float>(16777217), L"16.00 MB", L"  16.00 MB"},
      {static_cast<float>(123456789), L"117.74 MB", L" 117.74 MB"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(SizeText(c.bytes), c.text) << c.bytes;
    EXPECT_EQ(PaddedSizeText(c.bytes), c.padded) << c.bytes;
  }
}

TEST(ReplyBytesTest, TruncatesTowardZeroTo64Bits) {
  const std::pair<float, std::int64_t> cases[] = {
      {0.0f, 0}, {1.5f, 1}, {0.99f, 0}, {3000000000.0f, 3000000000LL}, {16777217.0f, 16777216}, {6e12f, 6000000106496LL},
  };
  for (const auto& [bytes, expected] : cases) EXPECT_EQ(ReplyBytes(bytes), expected) << bytes;
}

}  // namespace
}  // namespace scourel
