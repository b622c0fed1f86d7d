#include "windows_traces/junk_walker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/task_stop.h"
#include "common/unique_handle.h"
#include "host/task_totals.h"
#include "junk_places_fixture.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

struct Counted {
  std::int32_t first;
  std::int32_t second;
  float bytes;
  bool operator==(const Counted&) const = default;
};

void PrintTo(const Counted& c, std::ostream* os) {
  *os << "{first " << c.first << ", second " << c.second << ", bytes " << c.bytes << "}";
}

Counted TakeTotals() {
  Counted c{g_totals.junkFirst.get(), g_totals.junkSecond.get(), g_totals.byteTotal.get()};
  ResetForJunkFileScan();
  return c;
}

DWORD Attributes(const std::wstring& path) { return ::GetFileAttributesW(path.c_str()); }

void MakeReadOnly(const std::wstring& path) { ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY); }

class JunkWalkerTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetForJunkFileScan(); }
  void TearDown() override {
    for (const std::wstring& link : links_) RemoveUnixLink(link);
    ResetForJunkFileScan();
  }
  // A folder link to the canary, removed again after the test.
  bool LinkToCanary(const std::wstring& link) {
    RemoveUnixLink(link);
    links_.push_back(link);
    return MakeUnixSymlink(canary_.root(), link);
  }
  ScratchDir dir_{L"junk-walker"};
  CanaryTree canary_{dir_ / L"canary"};
  std::vector<std::wstring> links_;
};

TEST_F(JunkWalkerTest, TempWalkShredsReadOnlyAndKeepsTopFolder) {
  const std::wstring temp = dir_ / L"temp\\";
  MakeDirs(temp + L"a\\b\\c");
  WriteFileBytes(temp + L"plain.tmp", std::string(100, 'p'));
  WriteFileBytes(temp + L"readonly.tmp", std::string(200, 'r'));
  MakeReadOnly(temp + L"readonly.tmp");
  WriteFileBytes(temp + L"a\\b\\c\\deep.tmp", std::string(300, 'd'));
  MakeDirs(temp + L"empty\\inner");
  ASSERT_TRUE(LinkToCanary(temp + L"link"));

  JunkWalker(JunkWalker::Mode::kErase).TempFolderWalk(temp, false, true);

  EXPECT_EQ(TakeTotals(), (Counted{3, 0, 600.0f}));
  EXPECT_TRUE(PathExists(temp));
  EXPECT_FALSE(PathExists(temp + L"plain.tmp"));
  EXPECT_FALSE(PathExists(temp + L"readonly.tmp"));
  EXPECT_FALSE(PathExists(temp + L"a"));
  EXPECT_FALSE(PathExists(temp + L"empty"));
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(JunkWalkerTest, FileHeldWithoutReadSharingIsLeftAndNotCounted) {
  const std::wstring temp = dir_ / L"temp\\";
  MakeDirs(temp + L"sub");
  WriteFileBytes(temp + L"sub\\held.tmp", "held");
  WriteFileBytes(temp + L"free.tmp", "free");
  {
    UniqueHandleKernel held(::CreateFileW((temp + L"sub\\held.tmp").c_str(), GENERIC_READ, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    JunkWalker(JunkWalker::Mode::kErase).TempFolderWalk(temp, false, true);
  }
  EXPECT_EQ(TakeTotals(), (Counted{1, 0, 4.0f}));
  EXPECT_EQ(ReadFileBytes(temp + L"sub\\held.tmp"), "held");
  EXPECT_FALSE(PathExists(temp + L"free.tmp"));
}

TEST_F(JunkWalkerTest, OddNamesAndDeepPathsDoNotStopTheWalk) {
  const std::wstring temp = dir_ / L"temp\\";
  MakeDirs(temp);
  WriteFileBytes(temp + L"smile-\U0001F600.tmp", "12345");
  // A chain well past MAX_PATH, made through the long-path prefix.
  std::wstring deep = temp + L"deep";
  ::CreateDirectoryW(deep.c_str(), nullptr);
  for (int i = 0; i < 12; ++i) {
    deep += L"\\" + std::wstring(30, static_cast<wchar_t>(L'a' + i));
    ::CreateDirectoryW((L"\\\\?\\" + deep).c_str(), nullptr);
  }
  ASSERT_GT(deep.size(), static_cast<size_t>(MAX_PATH));
  {
    UniqueHandleKernel file(::CreateFileW((L"\\\\?\\" + deep + L"\\far.tmp").c_str(), GENERIC_WRITE, 0, nullptr,
                                          CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(file);
  }
  WriteFileBytes(temp + L"zzz-last.tmp", "1234567");

  JunkWalker(JunkWalker::Mode::kErase).TempFolderWalk(temp, false, true);

  const Counted counted = TakeTotals();
  EXPECT_FALSE(PathExists(temp + L"smile-\U0001F600.tmp"));
  EXPECT_FALSE(PathExists(temp + L"zzz-last.tmp"));
  // The far file may or may not be reachable; whatever was counted is gone.
  EXPECT_GE(counted.first, 2);
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(JunkWalkerTest, StoppedTaskChangesNothing) {
  const std::wstring temp = dir_ / L"temp\\";
  MakeDirs(temp + L"sub");
  WriteFileBytes(temp + L"a.tmp", "a");
  WriteFileBytes(temp + L"sub\\b.tmp", "b");
  auto flag = std::make_shared<std::atomic<bool>>(true);
  {
    ScopedTaskStop stop(flag);
    JunkWalker(JunkWalker::Mode::kErase).TempFolderWalk(temp, false, true);
    JunkWalker(JunkWalker::Mode::kErase).LogWalk(dir_.path());
  }
  EXPECT_EQ(TakeTotals(), (Counted{0, 0, 0.0f}));
  EXPECT_TRUE(PathExists(temp + L"a.tmp"));
  EXPECT_TRUE(PathExists(temp + L"sub\\b.tmp"));
}

TEST_F(JunkWalkerTest, TreeWalkCountsSecondCounterAndSkipsLinks) {
  const std::wstring wer = dir_ / L"WER";
  MakeDirs(wer + L"\\ReportArchive\\AppCrash_1");
  WriteFileBytes(wer + L"\\ReportArchive\\AppCrash_1\\Report.wer", std::string(1500, 'w'));
  WriteFileBytes(wer + L"\\top.wer", std::string(500, 't'));
  MakeReadOnly(wer + L"\\top.wer");
  ASSERT_TRUE(LinkToCanary(wer + L"\\ReportQueue"));

  JunkWalker(JunkWalker::Mode::kErase).ReportFolderStep(wer);

  EXPECT_EQ(TakeTotals(), (Counted{0, 2, 2000.0f}));
  EXPECT_TRUE(PathExists(wer));
  EXPECT_FALSE(PathExists(wer + L"\\ReportArchive"));
  EXPECT_EQ(canary_.Damage(), L"");
}

// A Windows folder of our own, with the exact folder names the walk compares.
class LogWalkTest : public JunkWalkerTest {
 protected:
  void SetUp() override {
    JunkWalkerTest::SetUp();
    MakeDirs(win_ + L"\\Logs\\CBS");
    WriteFileBytes(win_ + L"\\Logs\\CBS\\CBS.log", std::string(1000, 'c'));
    WriteFileBytes(win_ + L"\\Logs\\CBS\\CbsPersist.LOG", std::string(24, 'p'));
    WriteFileBytes(win_ + L"\\Logs\\CBS\\notes.txt", "not a log");
    MakeDirs(win_ + L"\\System32\\LogFiles");
    WriteFileBytes(win_ + L"\\System32\\LogFiles\\x.log", "kept: System32 is never entered");
    MakeDirs(win_ + L"\\winsxs");
    WriteFileBytes(win_ + L"\\winsxs\\w.log", "kept");
    // The file system ignores case, so the capitals live in a folder of their own.
    MakeDirs(win_ + L"\\Apps\\SYSTEM32\\LogFiles");
    WriteFileBytes(win_ + L"\\Apps\\SYSTEM32\\LogFiles\\y.log", std::string(10, 'y'));
    MakeDirs(win_ + L"\\Hidden");
    WriteFileBytes(win_ + L"\\Hidden\\z.log", "kept: hidden folders are not entered");
    ::SetFileAttributesW((win_ + L"\\Hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
    ASSERT_TRUE(LinkToCanary(win_ + L"\\Linked"));
  }
  std::wstring win_ = dir_ / L"Windows";
};

TEST_F(LogWalkTest, ShredsLogsOutsideSkippedAndHiddenFolders) {
  // The scratch file system must keep the exact case and the hidden bit.
  ASSERT_NE(Attributes(win_ + L"\\Hidden") & FILE_ATTRIBUTE_HIDDEN, 0u);

  WriteFileBytes(win_ + L"\\held.log", "kept: fails the read-write probe");
  {
    UniqueHandleKernel held(
        ::CreateFileW((win_ + L"\\held.log").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    JunkWalker(JunkWalker::Mode::kErase).LogWalk(win_);
  }

  EXPECT_EQ(TakeTotals(), (Counted{0, 3, 1034.0f}));
  EXPECT_FALSE(PathExists(win_ + L"\\Logs\\CBS\\CBS.log"));
  EXPECT_FALSE(PathExists(win_ + L"\\Logs\\CBS\\CbsPersist.LOG"));
  EXPECT_FALSE(PathExists(win_ + L"\\Apps\\SYSTEM32\\LogFiles\\y.log"));
  EXPECT_TRUE(PathExists(win_ + L"\\Logs\\CBS\\notes.txt"));
  EXPECT_TRUE(PathExists(win_ + L"\\System32\\LogFiles\\x.log"));
  EXPECT_TRUE(PathExists(win_ + L"\\winsxs\\w.log"));
  EXPECT_TRUE(PathExists(win_ + L"\\Hidden\\z.log"));
  EXPECT_EQ(ReadFileBytes(win_ + L"\\held.log"), "kept: fails the read-write probe");
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(LogWalkTest, CrashDumpsAreCountedNeverErased) {
  MakeDirs(win_ + L"\\Minidump");
  WriteFileBytes(win_ + L"\\Minidump\\a.dmp", std::string(700, 'm'));
  WriteFileBytes(win_ + L"\\Minidump\\b.dmp", std::string(300, 'n'));
  JunkWalker(JunkWalker::Mode::kErase).CountCrashDumps(win_ + L"\\Minidump");
  EXPECT_EQ(TakeTotals(), (Counted{0, 2, 1000.0f}));
  EXPECT_TRUE(PathExists(win_ + L"\\Minidump\\a.dmp"));
  EXPECT_TRUE(PathExists(win_ + L"\\Minidump\\b.dmp"));
}

// What a measuring pass reports is what the erasing pass then reports, even
// where the places overlap (the log walk enters the Windows "temp" folder).
TEST_F(LogWalkTest, MeasureReportsWhatEraseThenDoes) {
  MakeDirs(win_ + L"\\temp\\nested");
  WriteFileBytes(win_ + L"\\temp\\setup.log", std::string(50, 's'));
  WriteFileBytes(win_ + L"\\temp\\nested\\x.tmp", std::string(60, 'x'));
  WriteFileBytes(win_ + L"\\temp\\ro.tmp", std::string(70, 'r'));
  MakeReadOnly(win_ + L"\\temp\\ro.tmp");
  const std::wstring wer = dir_ / L"WER";
  MakeDirs(wer + L"\\q");
  WriteFileBytes(wer + L"\\q\\ro.wer", std::string(80, 'w'));
  MakeReadOnly(wer + L"\\q\\ro.wer");
  WriteFileBytes(wer + L"\\q\\crash.log", std::string(90, 'l'));

  auto pass = [&](JunkWalker::Mode mode) {
    JunkWalker walker(mode);
    walker.TempFolderWalk(win_ + L"\\temp\\", false, true);
    walker.CountCrashDumps(win_ + L"\\Minidump");
    walker.LogWalk(win_);
    walker.ReportFolderStep(wer);
    return TakeTotals();
  };
  const Counted measured = pass(JunkWalker::Mode::kMeasure);
  EXPECT_TRUE(PathExists(win_ + L"\\temp\\setup.log"));
  EXPECT_NE(Attributes(win_ + L"\\temp\\ro.tmp") & FILE_ATTRIBUTE_READONLY, 0u);
  const Counted erased = pass(JunkWalker::Mode::kErase);
  EXPECT_EQ(measured, erased);
  // temp 50+60+70; logs 1000+24+10; reports 80+90.
  EXPECT_EQ(erased, (Counted{3, 5, 1384.0f}));
  EXPECT_FALSE(PathExists(win_ + L"\\temp\\setup.log"));
  EXPECT_FALSE(PathExists(wer + L"\\q"));
  EXPECT_EQ(canary_.Damage(), L"");
}

}  // namespace
}  // namespace scourel::test
