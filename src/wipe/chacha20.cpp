#include "wipe/chacha20.h"

#include <immintrin.h>

#include <algorithm>
#include <cstring>

#include "common/win.h"

#if defined(_MSC_VER)
#include <intrin.h>
#endif

// The rounds work on registers only when every step is inlined into them;
// each instruction set's kernel is compiled for that set alone.
#if defined(_MSC_VER)
#define CHACHA_INLINE __forceinline
#define CHACHA_TARGET_AVX2
#define CHACHA_TARGET_AVX512
#else
#define CHACHA_INLINE inline __attribute__((always_inline))
#define CHACHA_TARGET_AVX2 __attribute__((target("avx2")))
#define CHACHA_TARGET_AVX512 __attribute__((target("avx512f")))
#endif

namespace scourel {

namespace sse2 {
#define CHACHA_TARGET
using V = __m128i;
constexpr int kBlocks = 4;
CHACHA_INLINE V Set1(std::uint32_t w) { return _mm_set1_epi32(static_cast<int>(w)); }
CHACHA_INLINE V Lanes() { return _mm_set_epi32(3, 2, 1, 0); }
CHACHA_INLINE V Add(V a, V b) { return _mm_add_epi32(a, b); }
CHACHA_INLINE V Xor(V a, V b) { return _mm_xor_si128(a, b); }
template <int N>
CHACHA_INLINE V Rotate(V x) {
  if constexpr (N == 16) return _mm_shufflehi_epi16(_mm_shufflelo_epi16(x, 0xB1), 0xB1);
  return _mm_or_si128(_mm_slli_epi32(x, N), _mm_srli_epi32(x, 32 - N));
}
CHACHA_INLINE V UnpackLo32(V a, V b) { return _mm_unpacklo_epi32(a, b); }
CHACHA_INLINE V UnpackHi32(V a, V b) { return _mm_unpackhi_epi32(a, b); }
CHACHA_INLINE V UnpackLo64(V a, V b) { return _mm_unpacklo_epi64(a, b); }
CHACHA_INLINE V UnpackHi64(V a, V b) { return _mm_unpackhi_epi64(a, b); }
CHACHA_INLINE void StoreLanes(std::uint8_t* out, V v) { _mm_storeu_si128(reinterpret_cast<V*>(out), v); }
#include "wipe/chacha20_rounds.inc"
#undef CHACHA_TARGET
}  // namespace sse2

namespace avx2 {
#define CHACHA_TARGET CHACHA_TARGET_AVX2
using V = __m256i;
constexpr int kBlocks = 8;
CHACHA_TARGET CHACHA_INLINE V Set1(std::uint32_t w) { return _mm256_set1_epi32(static_cast<int>(w)); }
CHACHA_TARGET CHACHA_INLINE V Lanes() { return _mm256_set_epi32(7, 6, 5, 4, 3, 2, 1, 0); }
CHACHA_TARGET CHACHA_INLINE V Add(V a, V b) { return _mm256_add_epi32(a, b); }
CHACHA_TARGET CHACHA_INLINE V Xor(V a, V b) { return _mm256_xor_si256(a, b); }
template <int N>
CHACHA_TARGET CHACHA_INLINE V Rotate(V x) {
  // Whole-byte rotations are one byte shuffle.
  if constexpr (N == 16) {
    return _mm256_shuffle_epi8(x, _mm256_set_epi8(13, 12, 15, 14, 9, 8, 11, 10, 5, 4, 7, 6, 1, 0, 3, 2, 13, 12, 15, 14,
                                                  9, 8, 11, 10, 5, 4, 7, 6, 1, 0, 3, 2));
  }
  if constexpr (N == 8) {
    return _mm256_shuffle_epi8(x, _mm256_set_epi8(14, 13, 12, 15, 10, 9, 8, 11, 6, 5, 4, 7, 2, 1, 0, 3, 14, 13, 12, 15,
                                                  10, 9, 8, 11, 6, 5, 4, 7, 2, 1, 0, 3));
  }
  return _mm256_or_si256(_mm256_slli_epi32(x, N), _mm256_srli_epi32(x, 32 - N));
}
CHACHA_TARGET CHACHA_INLINE V UnpackLo32(V a, V b) { return _mm256_unpacklo_epi32(a, b); }
CHACHA_TARGET CHACHA_INLINE V UnpackHi32(V a, V b) { return _mm256_unpackhi_epi32(a, b); }
CHACHA_TARGET CHACHA_INLINE V UnpackLo64(V a, V b) { return _mm256_unpacklo_epi64(a, b); }
CHACHA_TARGET CHACHA_INLINE V UnpackHi64(V a, V b) { return _mm256_unpackhi_epi64(a, b); }
CHACHA_TARGET CHACHA_INLINE void StoreLanes(std::uint8_t* out, V v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(v));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 256), _mm256_extracti128_si256(v, 1));
}
#include "wipe/chacha20_rounds.inc"
#undef CHACHA_TARGET
}  // namespace avx2

namespace avx512 {
#define CHACHA_TARGET CHACHA_TARGET_AVX512
using V = __m512i;
constexpr int kBlocks = 16;
CHACHA_TARGET CHACHA_INLINE V Set1(std::uint32_t w) { return _mm512_set1_epi32(static_cast<int>(w)); }
CHACHA_TARGET CHACHA_INLINE V Lanes() { return _mm512_set_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0); }
CHACHA_TARGET CHACHA_INLINE V Add(V a, V b) { return _mm512_add_epi32(a, b); }
CHACHA_TARGET CHACHA_INLINE V Xor(V a, V b) { return _mm512_xor_si512(a, b); }
template <int N>
CHACHA_TARGET CHACHA_INLINE V Rotate(V x) {
  return _mm512_rol_epi32(x, N);
}
CHACHA_TARGET CHACHA_INLINE V UnpackLo32(V a, V b) { return _mm512_unpacklo_epi32(a, b); }
CHACHA_TARGET CHACHA_INLINE V UnpackHi32(V a, V b) { return _mm512_unpackhi_epi32(a, b); }
CHACHA_TARGET CHACHA_INLINE V UnpackLo64(V a, V b) { return _mm512_unpacklo_epi64(a, b); }
CHACHA_TARGET CHACHA_INLINE V UnpackHi64(V a, V b) { return _mm512_unpackhi_epi64(a, b); }
CHACHA_TARGET CHACHA_INLINE void StoreLanes(std::uint8_t* out, V v) {
  // Through memory: this compiler's lane extracts trip its own warnings.
  alignas(64) std::uint8_t lanes[64];
  _mm512_store_si512(lanes, v);
  for (int lane = 0; lane < 4; ++lane) std::memcpy(out + 256 * lane, lanes + 16 * lane, 16);
}
#include "wipe/chacha20_rounds.inc"
#undef CHACHA_TARGET
}  // namespace avx512

namespace {

std::uint32_t LoadLittle(const std::uint8_t* p) {
  return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24;
}

// The processor has the instructions and the system saves their registers.
bool Runs(ChaCha20::Kernel kernel) {
  if (kernel == ChaCha20::Kernel::kSse2) return true;
#if defined(_MSC_VER)
  int leaf1[4], leaf7[4];
  __cpuid(leaf1, 1);
  __cpuidex(leaf7, 7, 0);
  const bool osSaves = (leaf1[2] & (1 << 27)) != 0;  // OSXSAVE
  const unsigned long long xcr0 = osSaves ? _xgetbv(0) : 0;
  if (kernel == ChaCha20::Kernel::kAvx2) return (xcr0 & 0x6) == 0x6 && (leaf7[1] & (1 << 5));
  return (xcr0 & 0xE6) == 0xE6 && (leaf7[1] & (1 << 16));
#else
  // GCC's own check reads the system's register state as well.
  __builtin_cpu_init();
  return kernel == ChaCha20::Kernel::kAvx2 ? __builtin_cpu_supports("avx2") : __builtin_cpu_supports("avx512f");
#endif
}

}  // namespace

std::vector<ChaCha20::Kernel> ChaCha20::Supported() {
  std::vector<Kernel> kernels;
  for (Kernel kernel : {Kernel::kSse2, Kernel::kAvx2, Kernel::kAvx512}) {
    if (Runs(kernel)) kernels.push_back(kernel);
  }
  return kernels;
}

ChaCha20::ChaCha20(const std::uint8_t* key, const std::uint8_t* nonce, std::uint32_t counter)
    : ChaCha20(key, nonce, counter, [] {
        static const Kernel widest = Supported().back();
        return widest;
      }()) {}

ChaCha20::ChaCha20(const std::uint8_t* key, const std::uint8_t* nonce, std::uint32_t counter, Kernel kernel) {
  state_[0] = 0x61707865, state_[1] = 0x3320646e, state_[2] = 0x79622d32, state_[3] = 0x6b206574;
  for (int i = 0; i < 8; ++i) state_[4 + i] = LoadLittle(key + 4 * i);
  state_[12] = counter;
  for (int i = 0; i < 3; ++i) state_[13 + i] = LoadLittle(nonce + 4 * i);
  switch (kernel) {
    case Kernel::kSse2: blocks_ = sse2::Blocks, chunk_ = sse2::kBlocks * 64; break;
    case Kernel::kAvx2: blocks_ = avx2::Blocks, chunk_ = avx2::kBlocks * 64; break;
    case Kernel::kAvx512: blocks_ = avx512::Blocks, chunk_ = avx512::kBlocks * 64; break;
  }
  spareUsed_ = chunk_;
}

ChaCha20::~ChaCha20() {
  ::SecureZeroMemory(state_, sizeof state_);
  ::SecureZeroMemory(spare_, sizeof spare_);
}

void ChaCha20::NextChunk(std::uint8_t* out) {
  blocks_(state_, out);
  state_[12] += static_cast<std::uint32_t>(chunk_ / 64);
}

void ChaCha20::Generate(std::uint8_t* out, std::size_t length) {
  const std::size_t fromSpare = std::min(length, chunk_ - spareUsed_);
  std::memcpy(out, spare_ + spareUsed_, fromSpare);
  spareUsed_ += fromSpare;
  out += fromSpare;
  length -= fromSpare;
  for (; length >= chunk_; out += chunk_, length -= chunk_) NextChunk(out);
  if (length > 0) {
    NextChunk(spare_);
    std::memcpy(out, spare_, length);
    spareUsed_ = length;
  }
}

}  // namespace scourel
