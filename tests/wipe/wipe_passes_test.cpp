#include "wipe/wipe_passes.h"

#include <gtest/gtest.h>

#include <vector>

#include "wipe/random_fill.h"

namespace scourel {
namespace {

std::vector<std::uint8_t> HeadBytes(const CEraserJunkData& data, std::size_t length) {
  const auto* bytes = data.head()->bytes.get();
  return {bytes, bytes + length};
}

std::size_t StackDepth(const CEraserJunkData& data) {
  std::size_t depth = 0;
  for (const PassNode* node = data.head(); node != nullptr; node = node->next.get()) ++depth;
  return depth;
}

TEST(WipePasses, PassCountPerMethod) {
  const std::uint32_t expected[] = {1, 1, 3, 3, 7, 7, 7, 35, 38, 0, 0};
  for (std::uint32_t method = 0; method < std::size(expected); ++method)
    EXPECT_EQ(CEraserJunkData::PassCount(method), expected[method]) << method;
  EXPECT_EQ(CEraserJunkData::PassCount(0xFFFFFFFFu), 0u);
}

TEST(WipePasses, BuildPushesOneBufferPerPassOfTheGivenLength) {
  for (std::uint32_t method = 0; method <= 9; ++method) {
    CEraserJunkData data;
    data.BuildPasses(method, 34);
    EXPECT_EQ(StackDepth(data), CEraserJunkData::PassCount(method)) << method;
    EXPECT_EQ(g_passLength.get(), 34u);
    EXPECT_EQ(g_bufferMultiplier.get(), 1u);
  }
}

TEST(WipePasses, PopTakesTheHead) {
  CEraserJunkData data;
  data.AddFillPass(0x11);
  data.AddFillPass(0x22);
  EXPECT_EQ(data.head()->pattern[0], 0x22);
  data.PopPass();
  EXPECT_EQ(data.head()->pattern[0], 0x11);
  data.PopPass();
  EXPECT_EQ(data.head(), nullptr);
  data.PopPass();  // empty: nothing happens
  EXPECT_EQ(data.head(), nullptr);
}

struct PatternCase {
  std::uint32_t length;
  int patternLength;
  std::vector<std::uint8_t> expected;  // the buffer's `length` bytes
};

class PatternFill : public ::testing::TestWithParam<PatternCase> {};

// Steps run while fewer than length - 1 bytes are written: an odd-length pair
// buffer keeps its last byte untouched, a triple step may end past it.
TEST_P(PatternFill, StartsAtTheFirstByteWithTheLoopBounds) {
  const PatternCase& c = GetParam();
  CEraserJunkData data;
  g_passLength.set(c.length);
  if (c.patternLength == 1) data.AddFillPass(0xA5);
  if (c.patternLength == 2) data.AddPairPass(0x00, 0xFF);
  if (c.patternLength == 3) data.AddTriplePass(0x92, 0x49, 0x24);
  EXPECT_EQ(HeadBytes(data, c.length), c.expected);
  EXPECT_EQ(data.head()->patternLength, c.patternLength);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PatternFill,
    ::testing::Values(PatternCase{3, 1, {0xA5, 0xA5, 0xA5}},
                      PatternCase{4, 2, {0x00, 0xFF, 0x00, 0xFF}},
                      PatternCase{5, 2, {0x00, 0xFF, 0x00, 0xFF, 0x00}},
                      PatternCase{1, 2, {0x00}},
                      PatternCase{6, 3, {0x92, 0x49, 0x24, 0x92, 0x49, 0x24}},
                      PatternCase{5, 3, {0x92, 0x49, 0x24, 0x92, 0x49}},
                      PatternCase{7, 3, {0x92, 0x49, 0x24, 0x92, 0x49, 0x24, 0x00}},
                      PatternCase{8, 3, {0x92, 0x49, 0x24, 0x92, 0x49, 0x24, 0x92, 0x49}}));

TEST(WipePasses, RandomPassIsNotAllOneByte) {
  CEraserJunkData data;
  g_passLength.set(4098);
  data.AddRandomPass();
  data.AddRandomPass();
  const auto first = HeadBytes(data, 4098);
  EXPECT_NE(std::count(first.begin(), first.end(), first[0]), 4098);
  data.PopPass();
  EXPECT_NE(HeadBytes(data, 4098), first);
  EXPECT_EQ(data.head()->patternLength, 0);
}

TEST(RandomFill, RuntimeFallbackFormula) {
  EXPECT_EQ(RandomFallbackByte(0), 255);
  EXPECT_EQ(RandomFallbackByte(1), 254);       // 254.992...
  EXPECT_EQ(RandomFallbackByte(16384), 127);   // 127.5
  EXPECT_EQ(RandomFallbackByte(32767), 0);     // 0.0077...
  std::vector<std::uint8_t> bytes(1000);
  FillFromRuntime(bytes.data(), bytes.size());
  EXPECT_NE(std::count(bytes.begin(), bytes.end(), bytes[0]), 1000);
}

TEST(RandomFill, ContextFillsAndNullContextFails) {
  auto context = AcquireRandomContext();
  ASSERT_TRUE(context);
  std::vector<std::uint8_t> bytes(64, 0);
  EXPECT_TRUE(FillFromContext(context.get(), bytes.data(), bytes.size()));
  EXPECT_FALSE(FillFromContext(0, bytes.data(), bytes.size()));
}

}  // namespace
}  // namespace scourel
