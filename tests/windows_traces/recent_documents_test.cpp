#include <gtest/gtest.h>

#include "host/task_totals.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/pc_traces_test_support.h"
#include "windows_traces/recent_documents.h"
#include "windows_traces/shell_folder.h"

namespace scourel::test {
namespace {

int g_shellListClears = 0;
void CountShellListClear() { ++g_shellListClears; }

class RecentDocumentsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetPcCounters();
    g_shellListClears = 0;
    MakeDirs(recent_.path());
  }
  int DocumentCount() const { return g_totals.pcTraces[kPcDocuments].get(); }

  ScratchDir dir_{L"pctraces-recent"};
  ScratchDir recent_{L"pctraces-recent\\Recent"};
  CanaryTree canary_{dir_ / L"canary"};
};

TEST_F(RecentDocumentsTest, ShortcutNamesWithTextAfterLnkAreShreddedOthersKept) {
  WriteFileBytes(recent_ / L"report.docx.lnk", std::string(300, 'a'));
  WriteFileBytes(recent_ / L"notes.lnk.old", std::string(200, 'b'));
  WriteFileBytes(recent_ / L"readme.txt", "keep");
  WriteFileBytes(recent_ / L"link.txt", "keep");

  ScanRecentDocumentsIn(recent_.path());
  EXPECT_EQ(DocumentCount(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), 500.0f);
  EXPECT_TRUE(PathExists(recent_ / L"notes.lnk.old"));
  EXPECT_EQ(g_shellListClears, 0);

  ResetPcCounters();
  CleanRecentDocumentsIn(recent_.path(), CountShellListClear);
  EXPECT_EQ(DocumentCount(), 2);
  EXPECT_EQ(g_totals.byteTotal.get(), 500.0f);
  EXPECT_FALSE(PathExists(recent_ / L"report.docx.lnk"));
  EXPECT_FALSE(PathExists(recent_ / L"notes.lnk.old"));
  EXPECT_EQ(ReadFileBytes(recent_ / L"readme.txt"), "keep");
  EXPECT_EQ(ReadFileBytes(recent_ / L"link.txt"), "keep");
  EXPECT_EQ(g_shellListClears, 1);
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(RecentDocumentsTest, AnEmptyFolderCountsNothingAndStillClearsTheShellList) {
  ScanRecentDocumentsIn(recent_.path());
  CleanRecentDocumentsIn(recent_.path(), CountShellListClear);
  EXPECT_EQ(DocumentCount(), 0);
  EXPECT_EQ(g_shellListClears, 1);
}

TEST(RecentDocumentsLinksTest, FoldersAndFolderLinksNamedLikeShortcutsAreCountedButLeftWhole) {
  ResetPcCounters();
  g_shellListClears = 0;
  ScratchDir outside(L"pctraces-recent-outside");
  ScratchDir recent(L"pctraces-recent-links");
  CanaryTree canary(outside / L"canary");
  MakeDirs(recent / L"album.lnk");
  WriteFileBytes(recent / L"album.lnk\\photo.lnk", "keep");
  ASSERT_TRUE(MakeUnixSymlink(canary.root(), recent / L"elsewhere.lnk"));
  CleanRecentDocumentsIn(recent.path(), CountShellListClear);
  EXPECT_EQ(g_totals.pcTraces[kPcDocuments].get(), 2);
  EXPECT_EQ(ReadFileBytes(recent / L"album.lnk\\photo.lnk"), "keep");
  EXPECT_EQ(canary.Damage(), L"");
  RemoveUnixLink(recent / L"elsewhere.lnk");
}

TEST(RecentDocumentsShellFolderTest, TheUsersRecentFolderIsCleaned) {
  ResetPcCounters();
  const std::wstring recent = ShellFolderPath(CSIDL_RECENT);
  ASSERT_FALSE(recent.empty());
  MakeDirs(recent);
  const std::wstring planted = recent + L"\\pctraces-test.txt.lnk";
  WriteFileBytes(planted, "shortcut");
  ScanRecentDocuments();
  EXPECT_GE(g_totals.pcTraces[kPcDocuments].get(), 1);
  CleanRecentDocuments();
  EXPECT_FALSE(PathExists(planted));
}

}  // namespace
}  // namespace scourel::test
