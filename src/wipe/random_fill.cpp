#include "wipe/random_fill.h"

#include <cstdlib>
#include <mutex>
#include <ctime>

namespace scourel {

UniqueCryptProvider AcquireRandomContext() {
  HCRYPTPROV context = 0;
  if (::CryptAcquireContextW(&context, nullptr, nullptr, PROV_RSA_FULL, 0) ||
      ::CryptAcquireContextW(&context, nullptr, nullptr, PROV_RSA_FULL, CRYPT_NEWKEYSET)) {
    return UniqueCryptProvider(context);
  }
  return UniqueCryptProvider();
}

bool FillFromContext(HCRYPTPROV context, std::uint8_t* bytes, std::size_t length) {
  if (context == 0 || length > 0xFFFFFFFFu) return false;
  return ::CryptGenRandom(context, static_cast<DWORD>(length), bytes) != FALSE;
}

std::uint8_t RandomFallbackByte(int r) {
  return static_cast<std::uint8_t>(255.0 - r * (1.0 / 32768) * 255.0);
}

void FillFromRuntime(std::uint8_t* bytes, std::size_t length) {
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  for (std::size_t i = 0; i < length; ++i) bytes[i] = RandomFallbackByte(std::rand());
}

}  // namespace scourel

namespace scourel {

namespace {

// Acquiring a provider context costs milliseconds under Wine, far more than
// the 44 bytes a key takes: one context serves every shredder of the
// process. A failed acquisition or generation is tried afresh next time.
bool DrawFromProvider(std::uint8_t* bytes, std::size_t length) {
  static std::mutex mutex;
  static UniqueCryptProvider context;
  const std::lock_guard lock(mutex);
  if (!context) context = AcquireRandomContext();
  if (FillFromContext(context.get(), bytes, length)) return true;
  context.reset();
  return false;
}

}  // namespace

void RandomPassSource::Fill(std::uint8_t* bytes, std::size_t length) {
  if (!stream_ || sinceKey_ >= kRekeyBytes) {
    stream_.reset();
    std::uint8_t seed[ChaCha20::kKeyBytes + ChaCha20::kNonceBytes];
    if (!DrawFromProvider(seed, sizeof seed)) {
      FillFromRuntime(bytes, length);
      return;
    }
    stream_.emplace(seed, seed + ChaCha20::kKeyBytes);
    ::SecureZeroMemory(seed, sizeof seed);
    sinceKey_ = 0;
  }
  stream_->Generate(bytes, length);
  sinceKey_ += length;
}

void RandomPassSource::Release() { stream_.reset(); }

}  // namespace scourel
