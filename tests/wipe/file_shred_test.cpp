// The shredder over real files in the sandbox, seen through a recording file
// layer, and the cases where it must not write: links, hard links, open files.
#include "wipe/file_shred.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <tuple>
#include <vector>

#include "protocol/messages.h"
#include "common/hidden_window.h"
#include "common/status.h"
#include "support/fixtures.h"
#include "wipe/obscure_name.h"
#include "wipe/wipe_progress.h"

namespace scourel {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kCluster = 4096;

// Passes every call on to the system; records a trace ("A" set attributes,
// "O" open, "S<offset>" seek, "W<offset>" write, "F" flush, "C" close,
// "R" rename, "D" delete), the written bytes, and a chosen geometry.
struct RecordingIo : ShredIo {
  DWORD sectorsPerCluster = 8, bytesPerSector = 512;
  int failWrite = 0;       // 1-based write to fail
  int stopAfterWrite = 0;  // 1-based write after which the task is stopped
  bool failIdentity = false;
  // 1: the path shows a reparse point; 2: only the opened handle does (swapped in meanwhile);
  // 3: the path is a unix symlink to a file, which Wine shows with plain attributes; 4: a second hard link
  int link = 0;
  std::function<void()> onRename;
  StopFlag stop;
  std::string trace;
  std::vector<Bytes> writes;
  std::int64_t sizeAtDelete = -1;
  std::uint64_t position = 0;

  // Appended piece by piece: GCC 12 at -O3 takes `"S" + std::to_string(n)`
  // for an overlapping copy (-Wrestrict).
  void Log(char step, std::int64_t offset = -1) {
    if (!trace.empty()) trace += ' ';
    trace += step;
    if (offset >= 0) trace += std::to_string(offset);
  }
  DWORD Attributes(const std::wstring& path) override {
    return ShredIo::Attributes(path) | (link == 1 ? FILE_ATTRIBUTE_REPARSE_POINT : 0);
  }
  std::error_code SetAttributes(const std::wstring& path, DWORD a) override {
    Log('A');
    return ShredIo::SetAttributes(path, a);
  }
  std::error_code OpenFile(const std::wstring& path, DWORD access, DWORD share, DWORD flags,
                           UniqueHandleKernel& file) override {
    Log('O');
    return ShredIo::OpenFile(path, access, share, flags, file);
  }
  std::error_code DiskFreeSpace(const std::wstring&, DWORD* spc, DWORD* bps) override {
    *spc = sectorsPerCluster, *bps = bytesPerSector;
    return {};
  }
  std::error_code Seek(HANDLE file, std::uint64_t at) override {
    Log('S', static_cast<std::int64_t>(position = at));
    return ShredIo::Seek(file, at);
  }
  std::error_code Write(HANDLE file, const std::uint8_t* bytes, std::uint32_t length) override {
    Log('W', static_cast<std::int64_t>(position));
    position += length;
    writes.emplace_back(bytes, bytes + length);
    if (static_cast<int>(writes.size()) == failWrite) return Win32Error(ERROR_WRITE_FAULT);
    if (stopAfterWrite && static_cast<int>(writes.size()) == stopAfterWrite) stop.Raise();
    return ShredIo::Write(file, bytes, length);
  }
  std::error_code Flush(HANDLE file) override {
    Log('F');
    return ShredIo::Flush(file);
  }
  std::error_code Identity(HANDLE file, DWORD* attributes, DWORD* links) override {
    if (failIdentity) return Win32Error(ERROR_ACCESS_DENIED);
    const std::error_code status = ShredIo::Identity(file, attributes, links);
    if (link == 2) *attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    return status;
  }
  void Close(UniqueHandleKernel& file) override {
    Log('C');
    ShredIo::Close(file);
  }
  std::error_code Rename(const std::wstring& from, const std::wstring& to) override {
    Log('R');
    if (onRename) onRename();
    return ShredIo::Rename(from, to);
  }
  std::error_code Delete(const std::wstring& path) override {
    Log('D');
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) sizeAtDelete = data.nFileSizeLow;
    return ShredIo::Delete(path);
  }
};

// Expected passes in written order: a fill, pair or triple pattern; {} = random.
std::vector<Bytes> WrittenOrder(std::uint32_t method) {
  const Bytes R{}, F00{0x00}, FFF{0xFF}, F12{0x12}, FED{0xED}, FAA{0xAA}, F56{0x56};
  std::vector<Bytes> gutmann = {R, R, R, R, {0x55}, FAA, {0x92, 0x49, 0x24}, {0x49, 0x24, 0x92}, {0x24, 0x92, 0x49}};
  for (int b = 0x00; b <= 0xFF; b += 0x11) gutmann.push_back({static_cast<std::uint8_t>(b)});
  gutmann.insert(gutmann.end(), {{0x92, 0x49, 0x24}, {0x49, 0x24, 0x92}, {0x24, 0x92, 0x49}, {0x6D, 0xB6, 0xDB},
                                 {0xB6, 0xDB, 0x6D}, {0xDB, 0x6D, 0xB6}, R, R, R, R});
  switch (method) {
    case 0: return {F00};
    case 1: return {R};
    case 2: return {F12, FED, R};
    case 3: return {{0x00, 0xFF}, {0xFF, 0x00}, R};
    case 4: return {F00, FFF, F00, FFF, F00, FFF, R};
    case 5: return {F00, FFF, F00, FFF, F00, FFF, FAA};
    case 6: return {F56, FAA, F56, FAA, F56, FAA, R};
    case 7: return gutmann;
    case 8: gutmann.insert(gutmann.end(), {F12, FED, R}); return gutmann;
    default: return {};
  }
}

class ShredMethod : public ::testing::TestWithParam<std::uint32_t> {};

// A 1-byte file gets every pass of the method over a whole cluster, in order.
TEST_P(ShredMethod, WritesEveryPassThenRenamesAndDeletes) {
  const std::uint32_t method = GetParam();
  test::ScratchDir dir(L"shred_method");
  test::CanaryTree canary(dir / L"canary");
  test::WriteFileBytes(dir / L"a.txt", "Z");
  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(dir / L"a.txt", method), ShredOutcome::kOverwrittenAndDeleted);

  const auto expected = WrittenOrder(method);
  std::string trace = "A O S0";  // every pass at offset 0, seeking back between them
  for (std::size_t i = 0; i < expected.size(); ++i) trace += i ? " S0 W0" : " W0";
  EXPECT_EQ(io.trace, trace + " F C R D");
  ASSERT_EQ(io.writes.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const Bytes& w = io.writes[i];
    ASSERT_EQ(w.size(), kCluster);
    const auto& p = expected[i];
    Bytes want(w.size());  // the pattern from byte 0, or (random) all one byte, which must not match
    for (std::size_t b = 0; b < w.size(); ++b) want[b] = p.empty() ? w[0] : p[b % p.size()];
    EXPECT_EQ(w == want, !p.empty()) << "pass " << i;
  }
  EXPECT_EQ(io.sizeAtDelete, expected.empty() ? 1 : kCluster);  // the renamed file, as the passes left it
  EXPECT_EQ(canary.Damage(), L"");
}

INSTANTIATE_TEST_SUITE_P(AllMethods, ShredMethod, ::testing::Values(0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, ~0u));

constexpr DWORD kRO = FILE_ATTRIBUTE_READONLY, kHidden = FILE_ATTRIBUTE_HIDDEN, kSystem = FILE_ATTRIBUTE_SYSTEM;
const char kOneWrite[] = "A O S0 W0 F C R D";

// Size, attributes, method, geometry, a failing write or identity, a stop
// after a write, a link, another program holding it -> the exact trace and outcome.
struct TraceCase { std::size_t size; DWORD attributes; std::uint32_t method; DWORD spc, bps; int failWrite;
                   const char* trace; std::int64_t sizeAtDelete;
                   ShredOutcome outcome = ShredOutcome::kOverwrittenAndDeleted;
                   int stopAfterWrite = 0; bool failIdentity = false; int link = 0; bool held = false; };
constexpr auto kKept = ShredOutcome::kLeftInPlace;
const TraceCase kTraces[] = {
    // Two clusters: seek back between passes; the next cluster starts where the last pass ended.
    {kCluster + 1, 0, 2, 8, 512, 0, "A O S0 W0 S0 W0 S0 W0 W4096 S4096 W4096 S4096 W4096 F C R D", 2 * kCluster},
    {0, 0, 8, 8, 512, 0, "A O S0 F C R D", 0},  // empty: nothing written, still deleted
    {3 * kCluster, 0, 2, 8, 512, 5, "A O S0 W0 S0 W0 S0 W0 W4096 S4096 W4096 F C R D", 3 * kCluster,
     ShredOutcome::kDeletedWithoutOverwrite},
    // A stop between clusters: the file is closed under its own name, half overwritten.
    {3 * kCluster, 0, 2, 8, 512, 0, "A O S0 W0 S0 W0 S0 W0 C", 0, ShredOutcome::kStopped, 3},
    // A link count that cannot be read: nothing proves the data is this name's alone.
    {7, 0, 0, 8, 512, 0, "A O", 0, kKept, 0, true},
    // A link goes itself: its target is never written, nor its attributes set, also when swapped in late.
    // A link is deleted under its own name, never renamed: Wine would rename its target.
    {7, 0, 0, 8, 512, 0, "D", 7, ShredOutcome::kDeletedWithoutOverwrite, 0, false, 1},
    {7, 0, 0, 8, 512, 0, "A O C D", 7, ShredOutcome::kDeletedWithoutOverwrite, 0, false, 2},
    // A name whose handle reaches another file stays, and so does that file.
    {7, 0, 0, 8, 512, 0, "A O C", 7, ShredOutcome::kReachesAnotherFile, 0, false, 3},
    // Data another name shares is not overwritten (no seek, no write); this name goes.
    {11, 0, 8, 8, 512, 0, "A O C R D", 11, ShredOutcome::kDeletedWithoutOverwrite, 0, false, 4},
    {7, kRO | kHidden | kSystem, 0, 8, 512, 0, kOneWrite, kCluster},
    // Only the low 8 bits of sectors per cluster and low 16 of bytes per sector count.
    {7, 0, 0, 0x108, 512, 0, kOneWrite, kCluster},
    {7, 0, 0, 8, 0x10200, 0, kOneWrite, kCluster},
    {3, 0, 0, 1, 1, 0, kOneWrite, 3},  // one pass: clusters written together
    {7, 0, 0, 1, 3, 0, kOneWrite, 9},
    {7, kRO, 0, 0x100, 512, 0, "A O", 0, kKept},
    {7, kRO | kHidden, 0, 0, 512, 0, "A O", 0, kKept},
    {7, kRO, 0, 8, 0x10000, 0, "A O", 0, kKept},
    {7, kSystem, 0, 8, 0, 0, "A O", 0, kKept},
    // Open elsewhere without sharing: it stays, its attributes reduced.
    {7, kHidden | kSystem, 0, 8, 512, 0, "A O", 0, kKept, 0, false, 0, true},
};

TEST(Shred, TraceTable) {
  for (const TraceCase& c : kTraces) {
    SCOPED_TRACE(c.trace);
    test::ScratchDir dir(L"shred_trace");
    const std::wstring path = dir / L"file.dat", target = dir / L"target.dat";
    test::WriteFileBytes(c.link >= 3 ? target : path, std::string(c.size, 'q'));
    if (c.link >= 3) {
      ASSERT_TRUE(c.link == 3 ? test::MakeUnixSymlink(target, path) : test::MakeUnixHardLink(target, path));
    }
    ASSERT_TRUE(::SetFileAttributesW(path.c_str(), c.attributes | FILE_ATTRIBUTE_ARCHIVE));
    RecordingIo io;
    std::tie(io.sectorsPerCluster, io.bytesPerSector, io.failWrite) = std::tie(c.spc, c.bps, c.failWrite);
    std::tie(io.stopAfterWrite, io.failIdentity, io.link) = std::tie(c.stopAfterWrite, c.failIdentity, c.link);
    UniqueHandleKernel holder(c.held ? ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                                     OPEN_EXISTING, 0, nullptr) : nullptr);
    ASSERT_EQ(static_cast<bool>(holder), c.held);
    EXPECT_EQ(CFileShred(io, &io.stop).Shred(path, c.method), c.outcome);
    holder.reset();
    EXPECT_EQ(io.trace, c.trace);
    if (c.outcome == ShredOutcome::kStopped) {
      const std::string left = test::ReadFileBytes(path);
      EXPECT_EQ(left.substr(kCluster), std::string(2 * kCluster, 'q'));  // the rest untouched
    } else if (!ShredResult(c.outcome)) {
      EXPECT_EQ(test::ReadFileBytes(path), std::string(c.size, 'q'));
      EXPECT_EQ(::GetFileAttributesW(path.c_str()), DWORD{FILE_ATTRIBUTE_ARCHIVE});
    } else {
      EXPECT_EQ(io.sizeAtDelete, c.sizeAtDelete);
      EXPECT_FALSE(test::PathExists(path));
      EXPECT_FALSE(test::PathExists(ObscuredPath(path)));
    }
    if (c.link >= 3) {
      EXPECT_EQ(test::ReadFileBytes(target), std::string(c.size, 'q'));
      test::RemoveUnixLink(path);
    }
  }
}

// A stop that comes while the file is renamed and deleted is answered after
// both: its reply never precedes the file's going.
TEST(Shred, AStopDuringTheRenameWaitsForTheDelete) {
  test::ScratchDir dir(L"shred_stop_rename");
  test::WriteFileBytes(dir / L"a.txt", "Z");
  RecordingIo io;
  std::thread stopper;
  std::promise<void> atRaise, raised;
  io.onRename = [&] {
    stopper = std::thread([&] {
      atRaise.set_value();
      io.stop.Raise();
      io.Log('X');
      raised.set_value();
    });
    atRaise.get_future().wait();
    // The stopper is at the stop: unheld, it is through well within this bound.
    (void)raised.get_future().wait_for(std::chrono::milliseconds(200));
  };
  EXPECT_EQ(CFileShred(io, &io.stop).Shred(dir / L"a.txt", 0), ShredOutcome::kOverwrittenAndDeleted);
  stopper.join();
  EXPECT_EQ(io.trace, "A O S0 W0 F C R D X");
  EXPECT_FALSE(test::PathExists(dir / L"a.txt") || test::PathExists(dir / L"x.txt"));
}

TEST(Shred, ProgressMessagesOnlyInWipeProgressMode) {
  // Stands in for the worker's command window.
  std::vector<WPARAM> progress;
  HiddenWindow window;
  WindowSpec spec;
  spec.className = L"ScourelWipeProgressTest";
  ASSERT_FALSE(window.Register(spec));
  ASSERT_FALSE(window.Create([&](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
    if (message != protocol::kWipeProgress) return std::nullopt;
    progress.push_back(wParam);
    EXPECT_EQ(lParam, 0);
    return 0;
  }));
  test::ScratchDir dir(L"shred_progress");
  const test::Cleanup modeOff([] { g_wipeProgressMode.set(false); });
  for (bool mode : {false, true}) {
    g_wipeProgressMode.set(mode);
    test::WriteFileBytes(dir / L"a.bin", std::string(3 * kCluster, 'a'));
    CFileShred(SystemShredIo(), nullptr, window.get()).Shred(dir / L"a.bin", 0);
    EXPECT_EQ(g_wipeProgress.get(), 100);
    EXPECT_EQ(progress, (mode ? std::vector<WPARAM>{33, 66, 100} : std::vector<WPARAM>{}));
  }
}

// Nothing is touched for a missing path, a folder, or a link to a folder.
TEST(Shred, MissingFileFolderAndDirectoryLinkAreLeftAlone) {
  test::ScratchDir dir(L"shred_not_a_file");
  test::CanaryTree canary(dir / L"sub");
  ASSERT_TRUE(test::MakeUnixSymlink(dir / L"sub", dir / L"link"));
  ASSERT_NE(::GetFileAttributesW((dir / L"link").c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0u);
  RecordingIo io;
  for (const wchar_t* name : {L"none.txt", L"sub", L"link"}) EXPECT_EQ(CFileShred(io).Shred(dir / name, 0), kKept);
  EXPECT_EQ(io.trace, "");
  EXPECT_TRUE(test::PathExists(dir / L"link"));
  EXPECT_EQ(canary.Damage(), L"");
  ::DeleteFileW((dir / L"sub\\canary.txt").c_str());  // and the canary does see a loss
  EXPECT_NE(canary.Damage(), L"");
}

// Through the system file layer: a failed rename never deletes the file that
// already has the new name, and a file of that name, shredded in turn, goes.
TEST(ShredDisk, TheFileOfTheObscuredNameStaysUntilItIsShreddedItself) {
  test::ScratchDir dir(L"shred_collision");
  test::CanaryTree canary(dir / L"canary");
  test::WriteFileBytes(dir / L"abc.txt", "target");
  test::WriteFileBytes(dir / L"xxx.xxx", "someone else's");
  EXPECT_EQ(CFileShred{}.Shred(dir / L"abc.txt", 0), ShredOutcome::kOverwrittenAndDeleted);
  EXPECT_EQ(test::ReadFileBytes(dir / L"xxx.xxx"), "someone else's");
  EXPECT_TRUE(ShredResult(CFileShred{}.Shred(dir / L"xxx.xxx", 5)));
  EXPECT_FALSE(test::PathExists(dir / L"xxx.xxx"));
  EXPECT_EQ(test::ReadFileBytes(dir / L"abc.txt").substr(0, 6), std::string(6, '\0'));  // overwritten, kept
  EXPECT_EQ(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel
