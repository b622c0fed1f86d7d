// What the shredder writes, seen through a recording file layer over real
// files in the sandbox.
#include "wipe/file_shred.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "host/protocol.h"
#include "host/worker_state.h"
#include "recording_io.h"
#include "support/fixtures.h"

namespace scourel {
namespace {

using test::IoEvent;
using test::RecordingIo;

constexpr std::uint32_t kCluster = 4096;

// One expected pass: a fill, pair or triple pattern, or random (no bytes).
struct Pass {
  std::vector<std::uint8_t> pattern;
};
const Pass R{};
Pass F(std::uint8_t b) { return {{b}}; }
Pass P(std::uint8_t a, std::uint8_t b) { return {{a, b}}; }
Pass T(std::uint8_t a, std::uint8_t b, std::uint8_t c) { return {{a, b, c}}; }

std::vector<Pass> Gutmann() {
  return {R, R, R, R, F(0x55), F(0xAA), T(0x92, 0x49, 0x24), T(0x49, 0x24, 0x92), T(0x24, 0x92, 0x49),
          F(0x00), F(0x11), F(0x22), F(0x33), F(0x44), F(0x55), F(0x66), F(0x77), F(0x88), F(0x99),
          F(0xAA), F(0xBB), F(0xCC), F(0xDD), F(0xEE), F(0xFF), T(0x92, 0x49, 0x24), T(0x49, 0x24, 0x92),
          T(0x24, 0x92, 0x49), T(0x6D, 0xB6, 0xDB), T(0xB6, 0xDB, 0x6D), T(0xDB, 0x6D, 0xB6), R, R, R, R};
}

// The order in which each method's passes must reach the disk.
std::vector<Pass> WrittenOrder(std::uint32_t method) {
  switch (method) {
    case 0: return {F(0x00)};
    case 1: return {R};
    case 2: return {F(0x12), F(0xED), R};
    case 3: return {P(0x00, 0xFF), P(0xFF, 0x00), R};
    case 4: return {F(0), F(0xFF), F(0), F(0xFF), F(0), F(0xFF), R};
    case 5: return {F(0), F(0xFF), F(0), F(0xFF), F(0), F(0xFF), F(0xAA)};
    case 6: return {F(0x56), F(0xAA), F(0x56), F(0xAA), F(0x56), F(0xAA), R};
    case 7: return Gutmann();
    default: {
      auto passes = Gutmann();
      passes.insert(passes.end(), {F(0x12), F(0xED), R});
      return passes;
    }
  }
}

void ExpectPass(const std::vector<std::uint8_t>& written, const Pass& pass, const std::string& where) {
  if (pass.pattern.empty()) {
    EXPECT_NE(std::count(written.begin(), written.end(), written[0]), static_cast<long>(written.size()))
        << where << ": random pass is all one byte";
    return;
  }
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (written[i] != pass.pattern[i % pass.pattern.size()]) {
      ADD_FAILURE() << where << ": byte " << i << " is " << int(written[i]);
      return;
    }
  }
}

class ShredMethod : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(ShredMethod, OneByteFileGetsEveryPassInOrderOverAWholeCluster) {
  const std::uint32_t method = GetParam();
  test::ScratchDir dir(L"shred_method");
  test::CanaryTree canary(dir / L"canary");
  const std::wstring path = dir / L"a.txt";
  test::WriteFileBytes(path, "Z");

  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(path, method), 1);

  const auto expected = WrittenOrder(method);
  const auto writes = io.Of(IoEvent::kWrite);
  ASSERT_EQ(writes.size(), expected.size());
  for (std::size_t i = 0; i < writes.size(); ++i) {
    EXPECT_EQ(writes[i].offset, 0u);
    ASSERT_EQ(writes[i].bytes.size(), kCluster);
    ExpectPass(writes[i].bytes, expected[i], "method " + std::to_string(method) + " pass " + std::to_string(i));
  }
  const auto deletes = io.Of(IoEvent::kDelete);
  ASSERT_EQ(deletes.size(), 1u);
  EXPECT_EQ(deletes[0].path, dir / L"x.xxx");
  EXPECT_EQ(deletes[0].sizeOnDisk, kCluster);
  EXPECT_FALSE(test::PathExists(path));
  EXPECT_FALSE(test::PathExists(dir / L"x.xxx"));
  EXPECT_EQ(canary.Damage(), L"");
}

INSTANTIATE_TEST_SUITE_P(AllMethods, ShredMethod, ::testing::Range(0u, 9u));

TEST(Shred, TwoClustersSeekBackBetweenPassesAndOnBetweenClusters) {
  test::ScratchDir dir(L"shred_two_clusters");
  const std::wstring path = dir / L"two.bin";
  test::WriteFileBytes(path, std::string(kCluster + 1, 'q'));

  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(path, 2), 1);

  // Seek 0, then per cluster: write, (seek back, write) twice, seek on.
  std::vector<std::pair<IoEvent::Kind, std::uint64_t>> trace;
  for (const auto& e : io.events)
    if (e.kind == IoEvent::kSeek || e.kind == IoEvent::kWrite) trace.emplace_back(e.kind, e.offset);
  const auto S = IoEvent::kSeek;
  const auto W = IoEvent::kWrite;
  const std::vector<std::pair<IoEvent::Kind, std::uint64_t>> expected = {
      {S, 0}, {W, 0}, {S, 0}, {W, 0}, {S, 0}, {W, 0}, {S, kCluster},
      {W, kCluster}, {S, kCluster}, {W, kCluster}, {S, kCluster}, {W, kCluster}, {S, 2 * kCluster}};
  EXPECT_EQ(trace, expected);

  // The progress byte is set before each cluster's closing seek.
  const auto seeks = io.Of(IoEvent::kSeek);
  EXPECT_EQ(seeks[3].progress, 50);
  EXPECT_EQ(seeks.back().progress, 100);
  EXPECT_EQ(io.Of(IoEvent::kDelete).at(0).sizeOnDisk, 2 * kCluster);
  EXPECT_FALSE(test::PathExists(path));
}

TEST(Shred, FlushesAndClosesBeforeRenaming) {
  test::ScratchDir dir(L"shred_order");
  const std::wstring path = dir / L"o.txt";
  test::WriteFileBytes(path, "abc");
  RecordingIo io;
  CFileShred(io).Shred(path, 0);
  std::vector<IoEvent::Kind> tail;
  for (const auto& e : io.events)
    if (e.kind != IoEvent::kSeek && e.kind != IoEvent::kWrite) tail.push_back(e.kind);
  const std::vector<IoEvent::Kind> expected = {IoEvent::kSetAttributes, IoEvent::kOpen, IoEvent::kFlush,
                                               IoEvent::kClose, IoEvent::kRename, IoEvent::kDelete};
  EXPECT_EQ(tail, expected);
}

TEST(Shred, ZeroLengthFileIsNotWrittenButDeleted) {
  test::ScratchDir dir(L"shred_empty");
  const std::wstring path = dir / L"empty.log";
  test::WriteFileBytes(path, "");
  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(path, 8), 1);
  EXPECT_TRUE(io.Of(IoEvent::kWrite).empty());
  EXPECT_EQ(io.Of(IoEvent::kDelete).at(0).sizeOnDisk, 0u);
  EXPECT_FALSE(test::PathExists(path));
  EXPECT_FALSE(test::PathExists(dir / L"xxxxx.xxx"));
}

TEST(Shred, MethodNineOrAboveWritesNothingButDeletes) {
  for (std::uint32_t method : {9u, 10u, 0xFFFFFFFFu}) {
    test::ScratchDir dir(L"shred_method9");
    const std::wstring path = dir / L"f.txt";
    test::WriteFileBytes(path, "contents");
    RecordingIo io;
    EXPECT_EQ(CFileShred(io).Shred(path, method), 1);
    EXPECT_TRUE(io.Of(IoEvent::kWrite).empty()) << method;
    EXPECT_FALSE(test::PathExists(path));
    EXPECT_FALSE(test::PathExists(dir / L"x.xxx"));
  }
}

TEST(Shred, ReadOnlyHiddenSystemFilesAreClearedThenOverwritten) {
  for (DWORD attributes : {DWORD{FILE_ATTRIBUTE_READONLY}, DWORD{FILE_ATTRIBUTE_HIDDEN}, DWORD{FILE_ATTRIBUTE_SYSTEM},
                           DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM}}) {
    test::ScratchDir dir(L"shred_attributes");
    const std::wstring path = dir / L"locked.dat";
    test::WriteFileBytes(path, "private");
    ASSERT_TRUE(::SetFileAttributesW(path.c_str(), attributes));
    RecordingIo io;
    EXPECT_EQ(CFileShred(io).Shred(path, 0), 1) << attributes;
    const auto opens = io.Of(IoEvent::kOpen);
    ASSERT_EQ(opens.size(), 1u);
    EXPECT_EQ(opens[0].value, DWORD{FILE_ATTRIBUTE_ARCHIVE}) << attributes;
    EXPECT_EQ(io.Of(IoEvent::kWrite).size(), 1u) << attributes;
    EXPECT_FALSE(test::PathExists(path));
    EXPECT_FALSE(test::PathExists(dir / L"xxxxxx.xxx"));
  }
}

TEST(Shred, WriteFailureEndsTheOverwriteButStillDeletes) {
  test::ScratchDir dir(L"shred_write_fail");
  const std::wstring path = dir / L"big.bin";
  test::WriteFileBytes(path, std::string(3 * kCluster, 'b'));
  RecordingIo io;
  io.failWriteNumber = 5;  // the second pass of the second cluster
  EXPECT_EQ(CFileShred(io).Shred(path, 2), 1);
  EXPECT_EQ(io.Of(IoEvent::kWrite).size(), 5u);
  EXPECT_EQ(io.Of(IoEvent::kRename).size(), 1u);
  EXPECT_FALSE(test::PathExists(path));
  EXPECT_FALSE(test::PathExists(dir / L"xxx.xxx"));
}

struct GeometryCase {
  DWORD sectorsPerCluster;
  DWORD bytesPerSector;
  std::uint32_t clusterSize;  // 0: no usable geometry
};

class ShredGeometry : public ::testing::TestWithParam<GeometryCase> {};

// Only the low 8 bits of sectors per cluster and low 16 of bytes per sector count.
TEST_P(ShredGeometry, TruncatesTheVolumeFigures) {
  const GeometryCase& c = GetParam();
  test::ScratchDir dir(L"shred_geometry");
  const std::wstring path = dir / L"g.txt";
  test::WriteFileBytes(path, "geometry");
  ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
  RecordingIo io;
  io.sectorsPerCluster = c.sectorsPerCluster;
  io.bytesPerSector = c.bytesPerSector;
  const int result = CFileShred(io).Shred(path, 0);
  if (c.clusterSize == 0) {
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(io.Of(IoEvent::kWrite).empty());
    EXPECT_EQ(test::ReadFileBytes(path), "geometry");
    EXPECT_EQ(::GetFileAttributesW(path.c_str()), DWORD{FILE_ATTRIBUTE_ARCHIVE});
  } else {
    EXPECT_EQ(result, 1);
    const auto writes = io.Of(IoEvent::kWrite);
    ASSERT_EQ(writes.size(), (8 + c.clusterSize - 1) / c.clusterSize);
    EXPECT_EQ(writes.back().bytes.size(), c.clusterSize);
    EXPECT_FALSE(test::PathExists(path));
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, ShredGeometry,
                         ::testing::Values(GeometryCase{8, 512, 4096}, GeometryCase{1, 1, 1},
                                           GeometryCase{0x108, 512, 4096}, GeometryCase{8, 0x10200, 4096},
                                           GeometryCase{0x100, 512, 0}, GeometryCase{0, 512, 0},
                                           GeometryCase{8, 0x10000, 0}, GeometryCase{8, 0, 0}));

TEST(Shred, SmallClustersCoverTheFileOneClusterAtATime) {
  test::ScratchDir dir(L"shred_small_clusters");
  const std::wstring path = dir / L"s.txt";
  test::WriteFileBytes(path, "1234567");
  RecordingIo io;
  io.sectorsPerCluster = 1;
  io.bytesPerSector = 3;
  EXPECT_EQ(CFileShred(io).Shred(path, 7), 1);
  const auto writes = io.Of(IoEvent::kWrite);
  ASSERT_EQ(writes.size(), 3u * 35u);
  for (std::size_t i = 0; i < writes.size(); ++i) {
    EXPECT_EQ(writes[i].offset, (i / 35) * 3);
    EXPECT_EQ(writes[i].bytes.size(), 3u);
  }
  // A triple pattern with three-byte clusters: each write is the pattern once.
  EXPECT_EQ(writes[6].bytes, (std::vector<std::uint8_t>{0x92, 0x49, 0x24}));
  EXPECT_EQ(io.Of(IoEvent::kDelete).at(0).sizeOnDisk, 9u);
}

// Stands in for the worker's command window to see progress messages.
std::vector<WPARAM> g_progressMessages;
LRESULT CALLBACK ProgressWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == protocol::kWipeProgress) {
    g_progressMessages.push_back(wParam);
    EXPECT_EQ(lParam, 0);
    return 0;
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

TEST(Shred, ProgressMessagesOnlyInWipeProgressMode) {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = ProgressWindowProc;
  windowClass.hInstance = ::GetModuleHandleW(nullptr);
  windowClass.lpszClassName = L"ScourelWipeProgressTest";
  ::RegisterClassW(&windowClass);
  HWND window = ::CreateWindowW(windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                windowClass.hInstance, nullptr);
  ASSERT_NE(window, nullptr);
  const HWND saved = g_commandWindow;
  g_commandWindow = window;

  test::ScratchDir dir(L"shred_progress");
  g_progressMessages.clear();
  test::WriteFileBytes(dir / L"a.bin", std::string(4 * kCluster, 'a'));
  RecordingIo quiet;
  CFileShred(quiet).Shred(dir / L"a.bin", 0);
  EXPECT_TRUE(g_progressMessages.empty());

  g_wipeProgressMode.set(true);
  test::WriteFileBytes(dir / L"b.bin", std::string(3 * kCluster, 'b'));
  RecordingIo loud;
  CFileShred(loud).Shred(dir / L"b.bin", 0);
  g_wipeProgressMode.set(false);
  g_commandWindow = saved;
  ::DestroyWindow(window);

  EXPECT_EQ(g_progressMessages, (std::vector<WPARAM>{33, 66, 100}));
}

TEST(Shred, MissingFileAndFolderAreLeftAlone) {
  test::ScratchDir dir(L"shred_missing");
  test::CanaryTree canary(dir / L"sub");
  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(dir / L"none.txt", 0), 0);
  EXPECT_EQ(CFileShred(io).Shred(dir / L"sub", 0), 0);
  EXPECT_TRUE(io.events.empty());
  EXPECT_EQ(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel
