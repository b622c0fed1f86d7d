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
// record step's time includes the folder-index step, the journal's turns and
// the removal of the fill and the tree.
//
// Then the folder-index step alone over 200 new folders of 0 to 39 empty
// files, on the volume filled by one file, then the journal's turns; all of
// it removed afterwards (what the carriers grew of the record table stays).
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "common/unique_handle.h"
#include "wipe/directory_slack.h"
#include "wipe/fill_names.h"
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
    if (!::WriteFile(file.get(), block.data(), length, &written, nullptr) || written != length) {
      file.reset();
      ::DeleteFileW(path.c_str());
      return -1;
    }
    done += length;
  }
  ::FlushFileBuffers(file.get());
  file.reset();
  const double seconds = Seconds(start, Clock::now());
  ::DeleteFileW(path.c_str());
  return seconds;
}

// Fills the volume with one file, in writes halved down to 512 bytes.
void FillVolume(const std::wstring& path) {
  std::vector<std::uint8_t> block(kBlock, 0);
  UniqueHandleKernel file(
      ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  for (DWORD length = kBlock, written = 0; file && length >= 512;) {
    if (!::WriteFile(file.get(), block.data(), length, &written, nullptr) || written != length) length /= 2;
  }
}

void FolderIndexStep(wchar_t letter) {
  constexpr int kFolders = 200;
  const std::wstring root{letter, L':', L'\\'};
  const std::wstring parent = root + L"bench-folders", fill = root + L"bench-fill.bin";
  ::CreateDirectoryW(parent.c_str(), nullptr);
  for (int i = 0; i < kFolders; ++i) {
    const std::wstring folder = parent + L"\\" + std::to_wstring(i);
    ::CreateDirectoryW(folder.c_str(), nullptr);
    for (int file = 0; file < i % 40; ++file) {
      UniqueHandleKernel(::CreateFileW((folder + L"\\file " + std::to_wstring(file) + L".txt").c_str(), GENERIC_WRITE,
                                       0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
  }
  ::CreateDirectoryW(FillFolderPath(letter).c_str(), nullptr);
  DirectorySlack slack(FillFolderPath(letter), nullptr);
  slack.GatherCarriers();
  FillVolume(fill);
  const Clock::time_point start = Clock::now();
  slack.Run(letter, 512);
  const Clock::time_point walked = Clock::now();
  slack.TurnJournal();
  const double walk = Seconds(start, walked), turns = Seconds(walked, Clock::now());
  std::printf("folder indexes (full volume, %d folders of 0 to 39 files): %u folders took %llu entries from %zu "
              "carriers in %.2f s: %.1f ms a folder; %u journal turns in %.2f s\n",
              kFolders, slack.folders(), static_cast<unsigned long long>(slack.entries()), slack.carriers(), walk,
              walk * 1000 / (kFolders + 1), DirectorySlack::kJournalTurns, turns);
  ::DeleteFileW(fill.c_str());
  RemoveFolderTree(parent);
  RemoveFillLeftovers(letter);
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
    // The fill ends at the first report that brings no new bytes (a file
    // the full volume gave nothing); later steps fill again what they free.
    Clock::time_point start = Clock::now(), filled = start;
    std::uint64_t lastBytes = 0, fillBytes = 0;
    CFreeSpaceWipe wipe(nullptr, nullptr, [&](std::uint8_t, std::uint64_t bytes) {
      if (fillBytes != 0) return;
      if (bytes != lastBytes) filled = Clock::now();
      if (bytes == lastBytes && bytes > 0) fillBytes = bytes;
      lastBytes = bytes;
    });
    const FreeSpaceReport report = wipe.Wipe(letter, method);
    const Clock::time_point end = Clock::now();
    if (report.status != L"done") {
      std::printf("wipe ended: %ls\n", report.status.c_str());
      return 1;
    }
    if (fillBytes == 0) fillBytes = lastBytes;
    const double fillSeconds = Seconds(start, filled);
    // One block short: the fill's last writes went in pieces of 512 bytes to
    // many files, which a single file's own bookkeeping may not leave room for.
    const std::uint64_t plainBytes = fillBytes > kBlock ? fillBytes - kBlock : fillBytes;
    const double plainSeconds = PlainWrite(std::wstring{letter, L':', L'\\'} + L"bench-plain.bin", plainBytes);
    if (plainSeconds < 0) {
      std::puts("plain write failed");
      return 1;
    }
    const double mib = static_cast<double>(fillBytes) / kBlock;
    const double fillRate = mib / fillSeconds, plainRate = static_cast<double>(plainBytes) / kBlock / plainSeconds;
    const double recordSeconds = Seconds(filled, end);
    std::printf("%6d %10.1f %10.1f %10.1f %7.2f %9u %10.0f\n", round, mib, fillRate, plainRate, fillRate / plainRate,
                report.folderFiles,
                recordSeconds > 0 ? report.folderFiles / recordSeconds : 0.0);
  }
  std::puts("ratio: fill MiB/s / plain MiB/s (1.00 = the fill writes as fast as a plain write)");
  FolderIndexStep(letter);
  return 0;
}
