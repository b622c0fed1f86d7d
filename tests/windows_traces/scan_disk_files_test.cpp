#include <gtest/gtest.h>

#include <algorithm>

#include "host/task_totals.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/pc_traces_test_support.h"
#include "windows_traces/scan_disk_files.h"

namespace scourel::test {
namespace {

TEST(ScanDiskNamesTest, FoundFoldersAreFoundDotAndThreeDigits) {
  struct Case {
    const wchar_t* name;
    bool expected;
  };
  const Case cases[] = {{L"FOUND.000", true},  {L"found.123", true},   {L"Found.999", true},
                        {L"FOUND.00", false},  {L"FOUND.0000", false}, {L"FOUND.00a", false},
                        {L"FOUND000", false},  {L"XFOUND.000", false}, {L"FOUND.000x", false},
                        {L"FOUND_000", false}, {L"", false}};
  for (const Case& c : cases) EXPECT_EQ(IsFoundFolderName(c.name), c.expected) << c.name;
}

TEST(ScanDiskNamesTest, ChkFilesEndInDotChk) {
  struct Case {
    const wchar_t* name;
    bool expected;
  };
  const Case cases[] = {{L"FILE0000.CHK", true}, {L"a.chk", true},        {L"x.ChK", true},
                        {L".CHK", false},        {L"notes.CHK.txt", false}, {L"FILE0000.CHKX", false},
                        {L"CHK", false},         {L"FILECHK", false}};
  for (const Case& c : cases) EXPECT_EQ(IsChkFileName(c.name), c.expected) << c.name;
}

class ScanDiskFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetPcCounters();
    const std::wstring& root = root_.path();
    PlantFile(root + L"\\FOUND.000\\FILE0000.CHK", std::string(1000, 'x'));
    PlantFile(root + L"\\FOUND.000\\FILE0001.CHK", std::string(24, 'y'));
    PlantFile(root + L"\\FOUND.001\\FILE0000.CHK", std::string(100, 'z'));
    PlantFile(root + L"\\FOUND.001\\keep.txt", "keep");
    PlantFile(root + L"\\FOUND.002\\sub\\deep.CHK", "keep");
    PlantFile(root + L"\\FOUND.000x\\FILE0000.CHK", "keep");
    PlantFile(root + L"\\notes.CHK.txt", "keep");
    PlantFile(root + L"\\loose.CHK", "keep");
    MakeUnixSymlink(canary_.root(), root + L"\\FOUND.003");
    PlantFile(canary_.root() + L"\\FILE0000.CHK", "canary");
  }
  void TearDown() override { RemoveUnixLink(root_ / L"FOUND.003"); }
  int ScanDiskCount() const { return g_totals.pcTraces[kPcScanDiskFiles].get(); }

  ScratchDir root_{L"pctraces-scandisk"};
  ScratchDir outside_{L"pctraces-scandisk-outside"};
  CanaryTree canary_{outside_ / L"canary"};
};

TEST_F(ScanDiskFilesTest, ScanCountsChkFilesDirectlyInFoundFolders) {
  VisitScanDiskFiles(root_.path(), false);
  EXPECT_EQ(ScanDiskCount(), 3);
  EXPECT_EQ(g_totals.byteTotal.get(), 1124.0f);
  EXPECT_TRUE(PathExists(root_ / L"FOUND.000\\FILE0000.CHK"));
}

TEST_F(ScanDiskFilesTest, CleanShredsThemAndRemovesOnlyEmptiedFolders) {
  VisitScanDiskFiles(root_.path(), true);
  EXPECT_EQ(ScanDiskCount(), 3);
  EXPECT_FALSE(PathExists(root_ / L"FOUND.000"));
  EXPECT_FALSE(PathExists(root_ / L"FOUND.001\\FILE0000.CHK"));
  EXPECT_EQ(ReadFileBytes(root_ / L"FOUND.001\\keep.txt"), "keep");
  EXPECT_EQ(ReadFileBytes(root_ / L"FOUND.002\\sub\\deep.CHK"), "keep");
  EXPECT_EQ(ReadFileBytes(root_ / L"FOUND.000x\\FILE0000.CHK"), "keep");
  EXPECT_EQ(ReadFileBytes(root_ / L"notes.CHK.txt"), "keep");
  EXPECT_EQ(ReadFileBytes(root_ / L"loose.CHK"), "keep");
  EXPECT_EQ(ReadFileBytes(canary_.root() + L"\\FILE0000.CHK"), "canary");
  EXPECT_TRUE(PathExists(root_ / L"FOUND.003"));
  EXPECT_EQ(canary_.Damage(), L"");
}

// The drive roots themselves: C: is the sandbox's drive_c.
TEST(ScanDiskDrivesTest, TheSystemDriveRootIsCleaned) {
  ResetPcCounters();
  const std::vector<std::wstring> roots = FixedDriveRoots();
  ASSERT_NE(std::find(roots.begin(), roots.end(), L"C:"), roots.end());
  PlantFile(L"C:\\FOUND.000\\FILE0000.CHK", std::string(2048, 'f'));
  PlantFile(L"C:\\FOUND.000x\\FILE0000.CHK", "keep");
  PlantFile(L"C:\\notes.CHK.txt", "keep");

  ScanScanDiskFiles();
  EXPECT_EQ(g_totals.pcTraces[kPcScanDiskFiles].get(), 1);
  EXPECT_EQ(g_totals.byteTotal.get(), 2048.0f);
  ResetPcCounters();
  CleanScanDiskFiles();
  EXPECT_EQ(g_totals.pcTraces[kPcScanDiskFiles].get(), 1);
  EXPECT_FALSE(PathExists(L"C:\\FOUND.000"));
  EXPECT_EQ(ReadFileBytes(L"C:\\FOUND.000x\\FILE0000.CHK"), "keep");
  EXPECT_EQ(ReadFileBytes(L"C:\\notes.CHK.txt"), "keep");

  RemoveTree(L"C:\\FOUND.000");
  RemoveTree(L"C:\\FOUND.000x");
  ::DeleteFileW(L"C:\\notes.CHK.txt");
}

}  // namespace
}  // namespace scourel::test
