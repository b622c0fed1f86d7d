// The ChaCha20 key stream (256-bit key, 96-bit nonce, 32-bit block counter),
// several blocks at a time with the widest vectors the processor has: SSE2,
// which every x86-64 processor has, AVX2 or AVX-512.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace scourel {

class ChaCha20 {
 public:
  static constexpr std::size_t kKeyBytes = 32;
  static constexpr std::size_t kNonceBytes = 12;

  enum class Kernel { kSse2, kAvx2, kAvx512 };
  // The kernels this processor (and its system) can run, narrowest first.
  static std::vector<Kernel> Supported();

  // With the widest supported kernel unless one is named.
  ChaCha20(const std::uint8_t* key, const std::uint8_t* nonce, std::uint32_t counter = 0);
  ChaCha20(const std::uint8_t* key, const std::uint8_t* nonce, std::uint32_t counter, Kernel kernel);
  ~ChaCha20();
  ChaCha20(const ChaCha20&) = delete;
  ChaCha20& operator=(const ChaCha20&) = delete;

  // The next `length` bytes of the stream.
  void Generate(std::uint8_t* out, std::size_t length);

 private:
  static constexpr std::size_t kMaxChunk = 16 * 64;
  // The kernel's blocks from the current counter on; the counter moves past them.
  void NextChunk(std::uint8_t* out);

  std::uint32_t state_[16];
  void (*blocks_)(const std::uint32_t*, std::uint8_t*);
  std::size_t chunk_;  // bytes the kernel makes at once
  std::uint8_t spare_[kMaxChunk];
  std::size_t spareUsed_;  // bytes of the spare chunk already handed out
};

}  // namespace scourel
