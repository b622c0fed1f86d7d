#include "wipe/chacha20.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "common/win.h"

namespace scourel {

namespace {

std::uint32_t LoadLittle(const std::uint8_t* p) {
  return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24;
}

template <int N>
__m128i Rotate(__m128i x) {
  return _mm_or_si128(_mm_slli_epi32(x, N), _mm_srli_epi32(x, 32 - N));
}
template <>
__m128i Rotate<16>(__m128i x) {
  return _mm_shufflehi_epi16(_mm_shufflelo_epi16(x, 0xB1), 0xB1);
}

void QuarterRound(__m128i& a, __m128i& b, __m128i& c, __m128i& d) {
  a = _mm_add_epi32(a, b), d = Rotate<16>(_mm_xor_si128(d, a));
  c = _mm_add_epi32(c, d), b = Rotate<12>(_mm_xor_si128(b, c));
  a = _mm_add_epi32(a, b), d = Rotate<8>(_mm_xor_si128(d, a));
  c = _mm_add_epi32(c, d), b = Rotate<7>(_mm_xor_si128(b, c));
}

}  // namespace

ChaCha20::ChaCha20(const std::uint8_t* key, const std::uint8_t* nonce, std::uint32_t counter) {
  state_[0] = 0x61707865, state_[1] = 0x3320646e, state_[2] = 0x79622d32, state_[3] = 0x6b206574;
  for (int i = 0; i < 8; ++i) state_[4 + i] = LoadLittle(key + 4 * i);
  state_[12] = counter;
  for (int i = 0; i < 3; ++i) state_[13 + i] = LoadLittle(nonce + 4 * i);
}

ChaCha20::~ChaCha20() {
  ::SecureZeroMemory(state_, sizeof state_);
  ::SecureZeroMemory(spare_, sizeof spare_);
}

void ChaCha20::NextChunk(std::uint8_t* out) {
  // Word i of the four blocks lies in lane 0..3 of x[i]; only the counter differs.
  const __m128i counters = _mm_set_epi32(3, 2, 1, 0);
  __m128i x[16];
  for (int i = 0; i < 16; ++i) x[i] = _mm_set1_epi32(static_cast<int>(state_[i]));
  x[12] = _mm_add_epi32(x[12], counters);
  for (int round = 0; round < 10; ++round) {
    QuarterRound(x[0], x[4], x[8], x[12]);
    QuarterRound(x[1], x[5], x[9], x[13]);
    QuarterRound(x[2], x[6], x[10], x[14]);
    QuarterRound(x[3], x[7], x[11], x[15]);
    QuarterRound(x[0], x[5], x[10], x[15]);
    QuarterRound(x[1], x[6], x[11], x[12]);
    QuarterRound(x[2], x[7], x[8], x[13]);
    QuarterRound(x[3], x[4], x[9], x[14]);
  }
  // The input added back, made again rather than kept in sixteen more registers.
  for (int i = 0; i < 16; ++i) x[i] = _mm_add_epi32(x[i], _mm_set1_epi32(static_cast<int>(state_[i])));
  x[12] = _mm_add_epi32(x[12], counters);
  // Back from lanes to blocks: each group of four words is a 4x4 transpose.
  for (int g = 0; g < 4; ++g) {
    const __m128i ab0 = _mm_unpacklo_epi32(x[4 * g], x[4 * g + 1]);
    const __m128i cd0 = _mm_unpacklo_epi32(x[4 * g + 2], x[4 * g + 3]);
    const __m128i ab1 = _mm_unpackhi_epi32(x[4 * g], x[4 * g + 1]);
    const __m128i cd1 = _mm_unpackhi_epi32(x[4 * g + 2], x[4 * g + 3]);
    const __m128i rows[4] = {_mm_unpacklo_epi64(ab0, cd0), _mm_unpackhi_epi64(ab0, cd0),
                             _mm_unpacklo_epi64(ab1, cd1), _mm_unpackhi_epi64(ab1, cd1)};
    for (int block = 0; block < 4; ++block) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 64 * block + 16 * g), rows[block]);
    }
  }
  state_[12] += 4;
}

void ChaCha20::Generate(std::uint8_t* out, std::size_t length) {
  const std::size_t fromSpare = std::min(length, kChunk - spareUsed_);
  std::memcpy(out, spare_ + spareUsed_, fromSpare);
  spareUsed_ += fromSpare;
  out += fromSpare;
  length -= fromSpare;
  for (; length >= kChunk; out += kChunk, length -= kChunk) NextChunk(out);
  if (length > 0) {
    NextChunk(spare_);
    std::memcpy(out, spare_, length);
    spareUsed_ = length;
  }
}

}  // namespace scourel
