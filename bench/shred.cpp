// Shredding throughput: files of 64 MiB and 256 MiB shredded with methods 0,
// 1, 3 and 7, against a plain sequential write plus flush of the same size in
// the same run, with the share of each shred that its random passes' bytes
// take; also CryptGenRandom against the key stream the passes use, and the
// cost of acquiring a CryptoAPI context per random pass rather than once.
//
//   wine-run bench_shred.exe [--quick | --full]
//
// The default leaves out 256 MiB with method 7; --full adds it, --quick
// keeps to 64 MiB.
//
// Files go to C:\scourel-bench, which must be inside the sandbox's prefix.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "common/unique_handle.h"
#include "wipe/chacha20.h"
#include "wipe/disk.h"
#include "wipe/file_shred.h"
#include "wipe/random_fill.h"

using namespace scourel;

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr int kRounds = 3;
constexpr std::uint32_t kOnePassWrite = 64 * 1024;  // the shredder's write for a one-pass method
const wchar_t kFolder[] = L"C:\\scourel-bench";

double Seconds(Clock::time_point since) { return std::chrono::duration<double>(Clock::now() - since).count(); }

// A plain sequential write in 1 MiB blocks, then a flush; seconds taken.
double PlainWrite(const std::wstring& path, std::uint64_t size) {
  std::vector<std::uint8_t> block(kMiB, 0x5A);
  const auto start = Clock::now();
  UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  if (!file) return -1;
  for (std::uint64_t done = 0; done < size; done += kMiB) {
    DWORD written = 0;
    ::WriteFile(file.get(), block.data(), static_cast<DWORD>(kMiB), &written, nullptr);
  }
  ::FlushFileBuffers(file.get());
  file.reset();
  return Seconds(start);
}

std::uint32_t RandomPasses(std::uint32_t method) {
  switch (method) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 6: return 1;
    case 7: return 8;
    case 8: return 9;
    default: return 0;
  }
}

// Seconds a random pass of `length` bytes takes with a shared context.
double SharedContextPass(std::uint32_t length, int passes) {
  std::vector<std::uint8_t> buffer(length);
  const auto start = Clock::now();
  auto context = AcquireRandomContext();
  for (int i = 0; i < passes; ++i) FillFromContext(context.get(), buffer.data(), length);
  return Seconds(start) / passes;
}

// Seconds the random passes of a shred of `size` bytes take to fill, in pass
// buffers of `length` bytes (two more than they write), as the shredder fills them.
double RandomPassBytes(std::uint64_t size, std::uint32_t length, std::uint32_t passes) {
  std::vector<std::uint8_t> buffer(length);
  const std::uint64_t clusters = (size + length - 3) / (length - 2);
  const auto start = Clock::now();
  RandomPassSource source;
  for (std::uint64_t i = 0; i < clusters * passes; ++i) source.Fill(buffer.data(), length);
  return Seconds(start);
}

// Prints how a context acquired per random pass compares with a shared one.
void CompareContextCost(std::uint32_t length) {
  constexpr int kOwnContext = 100;
  constexpr int kSharedContext = 2000;
  std::vector<std::uint8_t> buffer(length);
  auto start = Clock::now();
  for (int i = 0; i < kOwnContext; ++i) {
    auto context = AcquireRandomContext();
    FillFromContext(context.get(), buffer.data(), length);
  }
  const double perPass = Seconds(start) / kOwnContext;
  const double shared = SharedContextPass(length, kSharedContext);
  std::printf("random pass of %u bytes: %.1f us with a context per pass, %.1f us with one context (%.1fx)\n",
              length, perPass * 1e6, shared * 1e6, perPass / shared);
  RandomPassBytes(kMiB, length, 1);  // the CryptoAPI initialised
  const double stream = RandomPassBytes(std::uint64_t{length - 2} * kSharedContext, length, 1) / kSharedContext;
  const char* const kernels[] = {"SSE2", "AVX2", "AVX-512"};
  std::printf("random pass of %u bytes: %.1f us from CryptGenRandom, %.2f us from the %s key stream (%.0fx)\n",
              length, shared * 1e6, stream * 1e6, kernels[static_cast<int>(ChaCha20::Supported().back())],
              shared / stream);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  wchar_t sandbox[8];
  if (::GetEnvironmentVariableW(L"SCOUREL_SANDBOX", sandbox, 8) == 0) {
    std::fprintf(stderr, "bench_shred: run it through the build's wine-run\n");
    return 2;
  }
  const bool quick = argc > 1 && std::wcscmp(argv[1], L"--quick") == 0;
  const bool full = argc > 1 && std::wcscmp(argv[1], L"--full") == 0;

  CDisk disk;
  if (disk.GetGeometry(L"C:", SystemShredIo())) {
    std::fprintf(stderr, "bench_shred: no geometry for C:\n");
    return 1;
  }
  const std::uint32_t cluster = (disk.sectorsPerCluster & 0xFF) * (disk.bytesPerSector & 0xFFFF);
  std::printf("cluster size %u bytes\n", cluster);
  CompareContextCost(cluster + 2);

  ::CreateDirectoryW(kFolder, nullptr);
  const std::wstring plainPath = std::wstring(kFolder) + L"\\plain.bin";
  const std::wstring shredPath = std::wstring(kFolder) + L"\\victim.bin";

  std::printf("%8s %6s %9s %10s %9s %8s %8s\n", "size", "method", "seconds", "MiB/s", "plain", "ratio", "random");
  for (std::uint64_t mib : {std::uint64_t{64}, std::uint64_t{256}}) {
    if (quick && mib > 64) break;
    const std::uint64_t size = mib * kMiB;
    for (std::uint32_t method : {0u, 1u, 3u, 7u}) {
      if (mib > 64 && method == 7 && !full) continue;
      // The best of a few rounds, each writing baseline and victim fresh so
      // that both see the same cache state: a shared machine's noise only
      // ever adds time.
      double plain = 1e9, shred = 1e9, random = 1e9;
      int result = 1;
      for (int round = 0; round < kRounds; ++round) {
        plain = std::min(plain, PlainWrite(plainPath, size));
        ::DeleteFileW(plainPath.c_str());
        PlainWrite(shredPath, size);
        const auto start = Clock::now();
        result &= ShredResult(CFileShred{}.Shred(shredPath, method));
        shred = std::min(shred, Seconds(start));
        // The shredder fills a one-pass method's buffer for many clusters at once.
        const std::uint32_t fill = method == 1 ? kOnePassWrite + 2 : cluster + 2;
        random = std::min(random, RandomPassBytes(size, fill, RandomPasses(method)));
      }
      std::printf("%5llu MiB %6u %9.2f %10.1f %9.1f %8.3f %7.1f%%%s\n", static_cast<unsigned long long>(mib), method,
                  shred, mib / shred, mib / plain, plain / shred, 100.0 * random / shred, result == 1 ? "" : "  (failed)");
      std::fflush(stdout);
    }
  }
  ::RemoveDirectoryW(kFolder);
  return 0;
}
