#include <gtest/gtest.h>

#include "host/task_totals.h"
#include "windows_traces/credentials.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/pc_traces_test_support.h"
#include "windows_traces/shell_folder.h"

namespace scourel::test {
namespace {

class CredentialsTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetPcCounters(); }
  std::wstring Folder() const { return base_ / L"Microsoft\\Credentials"; }
  void Plant() {
    MakeDirs(Folder() + L"\\sub");
    WriteFileBytes(Folder() + L"\\DFBE70A7E5CC19A398EBF1B96859CE5D", std::string(100, 'c'));
    WriteFileBytes(Folder() + L"\\2C1B3F7E", std::string(28, 'd'));
    WriteFileBytes(Folder() + L"\\sub\\inner", "keep");
  }
  int NetworkCount() const { return g_totals.pcTraces[kPcNetwork].get(); }

  ScratchDir base_{L"pctraces-credentials"};
  CanaryTree canary_{base_ / L"Microsoft\\Canary"};
};

TEST_F(CredentialsTest, ScanCountsFilesAndSizesAndTouchesNothing) {
  Plant();
  VisitCredentialFiles(base_.path(), false);
  EXPECT_EQ(NetworkCount(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), 128.0f);
  EXPECT_TRUE(PathExists(Folder() + L"\\2C1B3F7E"));
}

TEST_F(CredentialsTest, CleanShredsTheFilesAndLeavesFoldersAndNeighbours) {
  Plant();
  VisitCredentialFiles(base_.path(), true);
  EXPECT_EQ(NetworkCount(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), 128.0f);
  EXPECT_FALSE(PathExists(Folder() + L"\\DFBE70A7E5CC19A398EBF1B96859CE5D"));
  EXPECT_FALSE(PathExists(Folder() + L"\\2C1B3F7E"));
  EXPECT_EQ(ReadFileBytes(Folder() + L"\\sub\\inner"), "keep");
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(CredentialsTest, AMissingFolderContributesNothing) {
  VisitCredentialFiles(base_.path(), true);
  VisitCredentialFiles(base_ / L"nowhere", false);
  EXPECT_EQ(NetworkCount(), 0);
  EXPECT_EQ(g_totals.byteTotal.get(), 0.0f);
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(CredentialsTest, AFileInUseIsPassedOver) {
  Plant();
  const std::wstring busy = Folder() + L"\\2C1B3F7E";
  UniqueHandleKernel held(::CreateFileW(busy.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(held);
  VisitCredentialFiles(base_.path(), true);
  EXPECT_EQ(NetworkCount(), 1);
  EXPECT_EQ(g_totals.byteTotal.get(), 100.0f);
  held.reset();
  EXPECT_EQ(ReadFileBytes(busy), std::string(28, 'd'));
}

TEST_F(CredentialsTest, ALinkedFolderInsideIsNeverEntered) {
  Plant();
  ASSERT_TRUE(MakeUnixSymlink(canary_.root(), Folder() + L"\\linked"));
  VisitCredentialFiles(base_.path(), true);
  EXPECT_EQ(NetworkCount(), 2);
  EXPECT_EQ(canary_.Damage(), L"");
  RemoveUnixLink(Folder() + L"\\linked");
}

// Through the shell's own folders: roaming then local.
TEST(CredentialsShellFoldersTest, BothApplicationDataFoldersAreCleaned) {
  ResetPcCounters();
  std::vector<std::wstring> planted;
  std::vector<std::wstring> created;
  for (const int csidl : {CSIDL_APPDATA, CSIDL_LOCAL_APPDATA}) {
    const std::wstring base = ShellFolderPath(csidl);
    ASSERT_FALSE(base.empty());
    const std::wstring folder = base + L"\\Microsoft\\Credentials";
    if (!PathExists(folder)) created.push_back(folder);
    MakeDirs(folder);
    planted.push_back(folder + L"\\pctraces-test-" + std::to_wstring(csidl));
    WriteFileBytes(planted.back(), "secret");
  }
  ScanCredentials();
  EXPECT_GE(g_totals.pcTraces[kPcNetwork].get(), 2);
  ResetPcCounters();
  CleanCredentials();
  EXPECT_GE(g_totals.pcTraces[kPcNetwork].get(), 2);
  for (const std::wstring& path : planted) EXPECT_FALSE(PathExists(path)) << std::string(path.begin(), path.end());
  for (const std::wstring& folder : created) ::RemoveDirectoryW(folder.c_str());
}

}  // namespace
}  // namespace scourel::test
