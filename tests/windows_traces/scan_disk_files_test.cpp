#include <gtest/gtest.h>

#include "windows_traces/pc_traces.h"
#include "windows_traces/scan_disk_files.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

int ScanDiskCount() { return g_totals.pc(protocol::PcStep::kScanDiskFiles).get(); }

// Only "*.CHK" files directly in "FOUND.nnn" folders go, and only folders they emptied.
TEST(ScanDiskFilesTest, ScanCountsThenCleanShredsChkFilesDirectlyInFoundFolders) {
  ResetPcCounters();
  ScratchDir root(L"pctraces-scandisk");
  ScratchDir outside(L"pctraces-scandisk-outside");
  CanaryTree canary(outside / L"canary");
  PlantFile(root / L"FOUND.000\\FILE0000.CHK", std::string(1000, 'x'));
  PlantFile(root / L"found.123\\file0001.chk", std::string(24, 'y'));
  PlantFile(root / L"Found.999\\FILE0000.ChK", std::string(100, 'z'));
  const wchar_t* kept[] = {L"Found.999\\keep.txt", L"FOUND.002\\sub\\deep.CHK", L"FOUND.000x\\FILE0000.CHK",
                           L"FOUND.00\\a.CHK", L"FOUND.00a\\a.CHK", L"XFOUND.001\\a.CHK", L"FOUND.0000\\a.CHK", L"FOUND_000\\a.CHK", L"FOUND.003\\.CHK",
                           L"FOUND.003\\a.CHKX", L"FOUND.003\\notes.CHK.txt", L"loose.CHK"};
  for (const wchar_t* name : kept) PlantFile(root / name, "keep");
  PlantFile(canary.root() + L"\\FILE0000.CHK", "canary");
  ASSERT_TRUE(MakeUnixSymlink(canary.root(), root / L"FOUND.004"));

  VisitScanDiskFiles(kMeasure, root.path());
  EXPECT_EQ(ScanDiskCount(), 3);
  EXPECT_EQ(g_totals.byteTotal.get(), 1124.0f);
  EXPECT_TRUE(PathExists(root / L"FOUND.000\\FILE0000.CHK"));

  ResetPcCounters();
  VisitScanDiskFiles(kErase, root.path());
  EXPECT_EQ(ScanDiskCount(), 3);
  EXPECT_EQ(g_totals.byteTotal.get(), 1124.0f);
  EXPECT_FALSE(PathExists(root / L"FOUND.000"));
  EXPECT_FALSE(PathExists(root / L"found.123"));
  EXPECT_FALSE(PathExists(root / L"Found.999\\FILE0000.ChK"));
  for (const wchar_t* name : kept) EXPECT_EQ(ReadFileBytes(root / name), "keep");
  EXPECT_TRUE(PathExists(root / L"FOUND.004"));
  EXPECT_EQ(canary.Damage(), L"");
}

}  // namespace
}  // namespace scourel::test
