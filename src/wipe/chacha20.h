// The ChaCha20 key stream (256-bit key, 96-bit nonce, 32-bit block counter),
// four blocks at a time with SSE2, which every x86-64 processor has.
#pragma once

#include <cstddef>
#include <cstdint>

namespace scourel {

class ChaCha20 {
 public:
  static constexpr std::size_t kKeyBytes = 32;
  static constexpr std::size_t kNonceBytes = 12;

  ChaCha20(const std::uint8_t* key, const std::uint8_t* nonce, std::uint32_t counter = 0);
  ~ChaCha20();
  ChaCha20(const ChaCha20&) = delete;
  ChaCha20& operator=(const ChaCha20&) = delete;

  // The next `length` bytes of the stream.
  void Generate(std::uint8_t* out, std::size_t length);

 private:
  static constexpr std::size_t kChunk = 4 * 64;
  // Four blocks from the current counter on; the counter moves past them.
  void NextChunk(std::uint8_t* out);

  std::uint32_t state_[16];
  std::uint8_t spare_[kChunk];
  std::size_t spareUsed_ = kChunk;  // bytes of spare_ already handed out
};

}  // namespace scourel
