// Free-space wipe throughput on one volume: the fill pass against a plain
// sequential write of the same number of bytes to one file on the same
// volume in the same run (MiB/s and their ratio), and the record step's
// files and folders per second.
//
//   wine-run bench_free_space.exe DRIVE [--method N] [--rounds N]
//
// DRIVE must be a scratch volume mapped into the sandbox's prefix, such as a
// 64 MiB image mounted inside the build folder (see
// tests/wipe/free_space_volumes.sh for how the tests map one as v:). The
// record step's time includes the removal of the fill and the tree.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "common/unique_handle.h"
#include "wipe/free_space_wipe.h"
#include "wipe/volume_facts.h"

using namespace scourel;

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::uint32_t kBlock = 1 << 20;

double Seconds(Clock::time_point from, Clock::time_point to) { return std::chrono::duration<double>(to - from).count(); }

// `bytes` written to one new file in 1 MiB blocks, flushed; seconds taken.
double PlainWrite(const std::wstring& path, std::uint64_t bytes) {
  std::vector<std::uint8_t> block(kBlock, 0x5A);
  const Clock::time_point start = Clock::now();
  UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file) return -1;
  for (std::uint64_t done = 0; done < bytes;) {
    const auto length = static_cast<DWORD>(std::min<std::uint64_t>(kBlock, bytes - done));
    DWORD written = 0;
    if (!::WriteFile(file.get(), block.data(), length, &written, nullptr) || written != length) return -1;
    done += length;
  }
  ::FlushFileBuffers(file.get());
  file.reset();
  const double seconds = Seconds(start, Clock::now());
  ::DeleteFileW(path.c_str());
  return seconds;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2 || !DriveLetterOf(argv[1])) {
    std::fputs("usage: bench_free_space DRIVE [--method N] [--rounds N]\n", stderr);
    return 2;
  }
  const wchar_t letter = *DriveLetterOf(argv[1]);
  std::uint32_t method = 0;
  int rounds = 3;
  for (int i = 2; i + 1 < argc; i += 2) {
    if (std::wcscmp(argv[i], L"--method") == 0) method = static_cast<std::uint32_t>(std::wcstoul(argv[i + 1], nullptr, 10));
    if (std::wcscmp(argv[i], L"--rounds") == 0) rounds = static_cast<int>(std::wcstol(argv[i + 1], nullptr, 10));
  }
  std::printf("drive %lc:, method %u, %d rounds\n", letter, method, rounds);
  std::printf("%6s %10s %10s %10s %7s %9s %10s\n", "round", "MiB", "fill MiB/s", "plain MiB/s", "ratio", "records",
              "records/s");
  for (int round = 1; round <= rounds; ++round) {
    // The fill ends at the last progress step before the record step.
    Clock::time_point start = Clock::now(), filled = start;
    std::uint64_t lastBytes = 0;
    CFreeSpaceWipe wipe(nullptr, nullptr, [&](std::uint8_t, std::uint64_t bytes) {
      if (bytes != lastBytes) filled = Clock::now();
      lastBytes = bytes;
    });
    const FreeSpaceReport report = wipe.Wipe(letter, method);
    const Clock::time_point end = Clock::now();
    if (report.status != L"done") {
      std::printf("wipe ended: %ls\n", report.status.c_str());
      return 1;
    }
    const double fillSeconds = Seconds(start, filled);
    const double plainSeconds = PlainWrite(std::wstring{letter, L':', L'\\'} + L"bench-plain.bin", report.bytesFilled);
    if (plainSeconds < 0) {
      std::puts("plain write failed");
      return 1;
    }
    const double mib = static_cast<double>(report.bytesFilled) / kBlock;
    const double recordSeconds = Seconds(filled, end);
    std::printf("%6d %10.1f %10.1f %10.1f %7.2f %9u %10.0f\n", round, mib, mib / fillSeconds, mib / plainSeconds,
                plainSeconds / fillSeconds, report.folderFiles,
                recordSeconds > 0 ? report.folderFiles / recordSeconds : 0.0);
  }
  std::puts("ratio: plain write time / fill time (1.00 = the fill writes as fast as a plain write)");
  return 0;
}
