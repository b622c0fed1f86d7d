#include <gtest/gtest.h>

#include "windows_traces/credentials.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

int NetworkCount() { return g_totals.pc(protocol::PcStep::kNetwork).get(); }

// Files directly in the folder are counted and shredded; a file in use, a
// subfolder, a linked folder and the folder's neighbours are left.
TEST(CredentialsTest, ScanCountsCleanShredsFilesNotInUse) {
  ResetPcCounters();
  ScratchDir base(L"pctraces-credentials");
  CanaryTree canary(base / L"Microsoft\\Canary");
  const std::wstring folder = base / L"Microsoft\\Credentials";
  PlantFile(folder + L"\\DFBE70A7E5CC19A398EBF1B96859CE5D", std::string(100, 'c'));
  PlantFile(folder + L"\\2C1B3F7E", std::string(28, 'd'));
  PlantFile(folder + L"\\sub\\inner", "keep");
  ASSERT_TRUE(MakeUnixSymlink(canary.root(), folder + L"\\linked"));

  VisitCredentialFiles(kMeasure, base.path());
  EXPECT_EQ(NetworkCount(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), 128.0f);
  EXPECT_TRUE(PathExists(folder + L"\\DFBE70A7E5CC19A398EBF1B96859CE5D"));

  ResetPcCounters();
  {
    UniqueHandleKernel held = HoldWithoutSharing(folder + L"\\2C1B3F7E");
    ASSERT_TRUE(held);
    VisitCredentialFiles(kErase, base.path());
  }
  EXPECT_EQ(NetworkCount(), 1);
  EXPECT_EQ(g_totals.byteTotal.get(), 100.0f);
  EXPECT_FALSE(PathExists(folder + L"\\DFBE70A7E5CC19A398EBF1B96859CE5D"));
  EXPECT_EQ(ReadFileBytes(folder + L"\\2C1B3F7E"), std::string(28, 'd'));
  EXPECT_EQ(ReadFileBytes(folder + L"\\sub\\inner"), "keep");
  EXPECT_EQ(canary.Damage(), L"");

  ResetPcCounters();  // a missing folder contributes nothing
  VisitCredentialFiles(kErase, base / L"nowhere");
  VisitCredentialFiles(kMeasure, base / L"nowhere");
  EXPECT_EQ(NetworkCount(), 0);
  EXPECT_EQ(g_totals.byteTotal.get(), 0.0f);
}

// Through the shell's own folders: roaming and local.
TEST(CredentialsTest, BothApplicationDataFoldersAreCleaned) {
  ResetPcCounters();
  const std::wstring planted[] = {ShellFolderPath(CSIDL_APPDATA) + L"\\Microsoft\\Credentials\\pctraces-test",
                                  ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\Microsoft\\Credentials\\pctraces-test"};
  for (const std::wstring& path : planted) PlantFile(path, "secret");
  Credentials(kErase);
  EXPECT_GE(NetworkCount(), 2);
  for (const std::wstring& path : planted) EXPECT_FALSE(PathExists(path));
}

}  // namespace
}  // namespace scourel::test
