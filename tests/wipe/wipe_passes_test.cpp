// Pass counts and buffers, the runtime fallback's bytes, and the obscured name.
#include "wipe/wipe_passes.h"

#include <gtest/gtest.h>

#include <vector>

#include "wipe/obscure_name.h"
#include "wipe/random_fill.h"

namespace scourel {
namespace {

TEST(WipePasses, PassCountPerMethod) {
  const std::uint32_t expected[] = {1, 1, 3, 3, 7, 7, 7, 35, 38, 0, 0};
  for (std::uint32_t method = 0; method < std::size(expected); ++method)
    EXPECT_EQ(CEraserJunkData::PassCount(method), expected[method]) << method;
  EXPECT_EQ(CEraserJunkData::PassCount(0xFFFFFFFFu), 0u);
}

// Steps run while fewer than length - 1 bytes are written: an odd-length pair
// buffer keeps its last byte untouched, a triple step may end past it.
TEST(WipePasses, PatternsStartAtTheFirstByteWithTheLoopBounds) {
  const struct {
    std::uint32_t length;
    bool triple;
    std::vector<std::uint8_t> expected;
  } cases[] = {{5, false, {0x00, 0xFF, 0x00, 0xFF, 0x00}},
               {1, false, {0x00}},
               {7, true, {0x92, 0x49, 0x24, 0x92, 0x49, 0x24, 0x00}},
               {8, true, {0x92, 0x49, 0x24, 0x92, 0x49, 0x24, 0x92, 0x49}}};
  for (const auto& c : cases) {
    CEraserJunkData data;
    data.SetPassLength(c.length);
    c.triple ? data.AddTriplePass(0x92, 0x49, 0x24) : data.AddPairPass(0x00, 0xFF);
    EXPECT_EQ(std::vector<std::uint8_t>(data.head()->bytes.get(), data.head()->bytes.get() + c.length), c.expected)
        << c.length;
  }
}

TEST(RandomFill, RuntimeFallbackFormulaAndNullContext) {
  EXPECT_EQ(RandomFallbackByte(0), 255);
  EXPECT_EQ(RandomFallbackByte(1), 254);      // 254.992...
  EXPECT_EQ(RandomFallbackByte(16384), 127);  // 127.5
  EXPECT_EQ(RandomFallbackByte(32767), 0);    // 0.0077...
  std::vector<std::uint8_t> bytes(1000);
  FillFromRuntime(bytes.data(), bytes.size());
  EXPECT_NE(std::count(bytes.begin(), bytes.end(), bytes[0]), 1000);
  EXPECT_FALSE(FillFromContext(0, bytes.data(), bytes.size()));  // what sends a pass to the fallback
}

TEST(ObscuredPath, KeepsOnlyLengthAndLastPoint) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"C:\\d\\report.final.docx", L"C:\\d\\xxxxxxxxxxxx.xxxx"},
      {L"C:\\Windows\\LOGFILE", L"C:\\Windows\\xxxxxxx"},
      {L"C:\\d\\.hidden", L"C:\\d\\.xxxxxx"},
      {L"C:\\d\\name.", L"C:\\d\\xxxx."},
      {L"C:\\dir.ext\\file", L"C:\\dir.ext\\xxxx"},
      {L"C:\\d\\..x", L"C:\\d\\x.x"},
      {L"C:\\d\\", L"C:\\d\\"},
      {L"C:\\d\\\u00e9t\u00e9.txt", L"C:\\d\\xxx.xxx"}};
  for (const auto& [path, expected] : cases) EXPECT_EQ(ObscuredPath(path), expected);
}

}  // namespace
}  // namespace scourel
