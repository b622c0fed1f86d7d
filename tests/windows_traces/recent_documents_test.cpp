#include <gtest/gtest.h>

#include "windows_traces/pc_traces.h"
#include "windows_traces/recent_documents.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

int g_shellListClears = 0;
void CountShellListClear() { ++g_shellListClears; }
int DocumentCount() { return g_totals.pc(protocol::PcStep::kDocuments).get(); }

// Names holding ".lnk" anywhere are shredded; folders and folder links named
// so are counted but left whole; the shell list is cleared even when empty.
TEST(RecentDocumentsTest, ShortcutNamesAreShreddedOthersKept) {
  ResetPcCounters();
  g_shellListClears = 0;
  ScratchDir dir(L"pctraces-recent");
  CanaryTree canary(dir / L"canary");
  const std::wstring recent = dir / L"Recent", empty = dir / L"Empty";
  MakeDirs(empty);
  PlantFile(recent + L"\\report.docx.lnk", std::string(300, 'a'));
  PlantFile(recent + L"\\notes.lnk.old", std::string(200, 'b'));
  for (const wchar_t* name : {L"\\readme.txt", L"\\link.txt", L"\\album.lnk\\photo.lnk"}) PlantFile(recent + name, "keep");
  ASSERT_TRUE(MakeUnixSymlink(canary.root(), recent + L"\\elsewhere.lnk"));

  VisitRecentDocuments(kMeasure, recent, CountShellListClear);
  EXPECT_EQ(DocumentCount(), 4);
  EXPECT_EQ(g_totals.byteTotal.get(), 500.0f);
  EXPECT_TRUE(PathExists(recent + L"\\notes.lnk.old"));
  EXPECT_EQ(g_shellListClears, 0);

  ResetPcCounters();
  VisitRecentDocuments(kErase, recent, CountShellListClear);
  EXPECT_EQ(DocumentCount(), 4);
  EXPECT_EQ(g_totals.byteTotal.get(), 500.0f);
  EXPECT_FALSE(PathExists(recent + L"\\report.docx.lnk"));
  EXPECT_FALSE(PathExists(recent + L"\\notes.lnk.old"));
  for (const wchar_t* name : {L"\\readme.txt", L"\\link.txt", L"\\album.lnk\\photo.lnk"}) {
    EXPECT_EQ(ReadFileBytes(recent + name), "keep");
  }
  EXPECT_EQ(g_shellListClears, 1);
  EXPECT_EQ(canary.Damage(), L"");

  ResetPcCounters();
  VisitRecentDocuments(kErase, empty, CountShellListClear);
  EXPECT_EQ(DocumentCount(), 0);
  EXPECT_EQ(g_shellListClears, 2);
}

}  // namespace
}  // namespace scourel::test
