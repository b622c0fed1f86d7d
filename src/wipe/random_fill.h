// Random bytes for wipe passes: CryptoAPI first, the C runtime's generator
// when no provider context can be had.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "common/unique_handle.h"
#include "wipe/chacha20.h"

namespace scourel {

// Default provider, PROV_RSA_FULL, flags 0, then CRYPT_NEWKEYSET. Empty when both fail.
UniqueCryptProvider AcquireRandomContext();
// CryptGenRandom over the whole buffer; false when it fails.
bool FillFromContext(HCRYPTPROV context, std::uint8_t* bytes, std::size_t length);
// Seeds rand() with the current time, then one RandomFallbackByte per byte.
void FillFromRuntime(std::uint8_t* bytes, std::size_t length);
// The integer part of 255.0 - r * (1/32768) * 255.0, for r = rand().
std::uint8_t RandomFallbackByte(int r);

// The bytes of the random passes of one shredder. CryptGenRandom runs at
// about 11 MB/s under Wine and made random passes nine tenths of every
// wipe; so its bytes only key a ChaCha20 stream, which is as unpredictable
// without the key and runs at memory speed. The key is drawn afresh for
// every shredder and after every kRekeyBytes.
class RandomPassSource {
 public:
  static constexpr std::uint64_t kRekeyBytes = 4 << 20;

  // Falls back to FillFromRuntime for this call when no context can be had
  // or CryptGenRandom fails; the next call tries again.
  void Fill(std::uint8_t* bytes, std::size_t length);
  // Drops the key: the next fill draws a new one.
  void Release();

 private:
  std::optional<ChaCha20> stream_;
  std::uint64_t sinceKey_ = 0;
};

}  // namespace scourel
