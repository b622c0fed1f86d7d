// Pattern buffers, the runtime fallback's bytes, and the obscured name.
#include "wipe/wipe_passes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "wipe/obscure_name.h"
#include "wipe/chacha20.h"
#include "wipe/random_fill.h"

namespace scourel {
namespace {

// Steps run while fewer than length - 1 bytes are written: an odd-length pair
// buffer keeps its last byte untouched, a triple step may end past it.
TEST(WipePasses, PatternsStartAtTheFirstByteWithTheLoopBounds) {
  // {triple, the pass of as many bytes}
  const std::pair<bool, std::vector<std::uint8_t>> cases[] = {
      {false, {0x00, 0xFF, 0x00, 0xFF, 0x00}},
      {false, {0x00}},
      {true, {0x92, 0x49, 0x24, 0x92, 0x49, 0x24, 0x00}},
      {true, {0x92, 0x49, 0x24, 0x92, 0x49, 0x24, 0x92, 0x49}}};
  for (const auto& [triple, expected] : cases) {
    CEraserJunkData data;
    data.SetPassLength(static_cast<std::uint32_t>(expected.size()));
    triple ? data.AddTriplePass(0x92, 0x49, 0x24) : data.AddPairPass(0x00, 0xFF);
    EXPECT_EQ(std::vector<std::uint8_t>(data.head()->bytes.get(), data.head()->bytes.get() + expected.size()), expected);
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

std::vector<std::uint8_t> FromHex(const char* hex) {
  std::vector<std::uint8_t> bytes;
  for (; hex[0] && hex[1]; hex += 2) bytes.push_back(static_cast<std::uint8_t>(std::stoi(std::string(hex, 2), nullptr, 16)));
  return bytes;
}

// RFC 8439: A.1 vectors 1 and 2, and the stream of 2.4.2 (its ciphertext
// xor its plaintext), from every kernel the processor runs, taken in uneven
// pieces that cross the kernels' chunks.
TEST(ChaCha20, MatchesTheRfc8439Vectors) {
  const std::string sunscreen =
      "Ladies and Gentlemen of the class of '99: If I could offer you only one tip for the future, sunscreen would be it.";
  const struct {
    const char* key;
    const char* nonce;
    std::uint32_t counter;
    const char* stream;
    const std::string& plain;
  } cases[] = {
      {"", "000000000000000000000000", 0,
       "76b8e0ada0f13d90405d6ae55386bd28bdd219b8a08ded1aa836efcc8b770dc7da41597c5157488d7724e03fb8d84a376a43b8f41518a11cc387b669b2ee6586",
       std::string()},
      {"", "000000000000000000000000", 1,
       "9f07e7be5551387a98ba977c732d080dcb0f29a048e3656912c6533e32ee7aed29b721769ce64e43d57133b074d839d531ed1f28510afb45ace10a1f4b794d6f",
       std::string()},
      {"000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f", "000000000000004a00000000", 1,
       "6e2e359a2568f98041ba0728dd0d6981e97e7aec1d4360c20a27afccfd9fae0bf91b65c5524733ab8f593dabcd62b3571639d624e65152ab8f530c359f0861d8"
       "07ca0dbf500d6a6156a38e088a22b65e52bc514d16ccf806818ce91ab77937365af90bbf74a35be6b40b8eedf2785e42874d",
       sunscreen},
  };
  for (const auto& c : cases) {
    std::vector<std::uint8_t> key = FromHex(c.key), expected = FromHex(c.stream);
    key.resize(32);
    for (std::size_t i = 0; i < c.plain.size(); ++i) expected[i] ^= static_cast<std::uint8_t>(c.plain[i]);
    // The blocks after the vector's are the same whatever the kernel and the pieces.
    std::vector<std::uint8_t> first;
    for (const ChaCha20::Kernel kernel : ChaCha20::Supported()) {
      for (std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{64}, std::size_t{1500}}) {
        ChaCha20 stream(key.data(), FromHex(c.nonce).data(), c.counter, kernel);
        std::vector<std::uint8_t> got(expected.size() + 3000);
        for (std::size_t at = 0; at < got.size(); at += piece) stream.Generate(&got[at], std::min(piece, got.size() - at));
        EXPECT_EQ(std::vector<std::uint8_t>(got.begin(), got.begin() + expected.size()), expected)
            << c.stream << " kernel " << static_cast<int>(kernel) << " pieces of " << piece;
        if (first.empty()) first = got;
        EXPECT_EQ(got, first) << "kernel " << static_cast<int>(kernel) << " pieces of " << piece;
      }
    }
  }
}

// Only the name's length and its last point are kept; the folder stays.
TEST(ObscuredPath, KeepsTheFolderTheNamesLengthAndItsLastPoint) {
  const std::wstring slashes(0x20000, L'\\');
  const std::pair<std::wstring, std::wstring> cases[] = {
      {L"C:\\d.x\\report.final.docx", L"C:\\d.x\\xxxxxxxxxxxx.xxxx"},
      {L"C:\\d\\.hidden", L"C:\\d\\.xxxxxx"},
      {L"C:\\d.x\\LOGFILE", L"C:\\d.x\\xxxxxxx"},
      {L"name.", L"xxxx."},
      {L"..", L"x."},
      {L"C:\\d\\", L"C:\\d\\"},
      {L"", L""},
      {slashes + L"a.b", slashes + L"x.x"},
  };
  for (const auto& [path, obscured] : cases) EXPECT_EQ(ObscuredPath(path), obscured) << testing::PrintToString(path.substr(0, 40));
}

}  // namespace
}  // namespace scourel
