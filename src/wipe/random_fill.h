// Random bytes for wipe passes: CryptoAPI first, the C runtime's generator
// when no provider context can be had.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/unique_handle.h"

namespace scourel {

// Default provider, PROV_RSA_FULL, flags 0, then CRYPT_NEWKEYSET. Empty when both fail.
UniqueCryptProvider AcquireRandomContext();
// CryptGenRandom over the whole buffer; false when it fails.
bool FillFromContext(HCRYPTPROV context, std::uint8_t* bytes, std::size_t length);
// Seeds rand() with the current time, then one RandomFallbackByte per byte.
void FillFromRuntime(std::uint8_t* bytes, std::size_t length);
// The integer part of 255.0 - r * (1/32768) * 255.0, for r = rand().
std::uint8_t RandomFallbackByte(int r);

}  // namespace scourel
