#include "windows_traces/junk_walker.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "common/unique_handle.h"
#include "task/task_totals.h"
#include "support/fixtures.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// {first counter, second counter, bytes}, read and reset.
std::tuple<std::int32_t, std::int32_t, float> TakeTotals() {
  std::tuple totals{g_totals.junkFirst.get(), g_totals.junkSecond.get(), g_totals.byteTotal.get()};
  ResetForJunkFileScan(g_totals);
  return totals;
}

class JunkWalkerTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetForJunkFileScan(g_totals); }
  void TearDown() override {
    for (const std::wstring& link : links_) RemoveUnixLink(link);
    ResetForJunkFileScan(g_totals);
  }
  bool LinkToCanary(const std::wstring& link) {
    links_.push_back(link);
    return MakeUnixSymlink(canary_.root(), link);
  }
  ScratchDir dir_{L"junk-walker"};
  CanaryTree canary_{dir_ / L"canary"};
  std::vector<std::wstring> links_;
  std::wstring temp_ = dir_ / L"temp\\";
  std::wstring win_ = dir_ / L"Windows";
};

TEST_F(JunkWalkerTest, TempWalkShredsNestedAndReadOnlyKeepsHeldFilesAndTopFolder) {
  MakeDirs(temp_ + L"empty\\inner");
  PlantSized({{temp_ + L"plain.tmp", 100}, {temp_ + L"readonly.tmp", 200}, {temp_ + L"a\\b\\c\\deep.tmp", 300}}, 'p');
  MakeReadOnly(temp_ + L"readonly.tmp");
  PlantFile(temp_ + L"sub\\held.tmp", "held");
  ASSERT_TRUE(LinkToCanary(temp_ + L"link"));
  {
    UniqueHandleKernel held = HoldWithoutSharing(temp_ + L"sub\\held.tmp");
    ASSERT_TRUE(held);
    JunkWalker(kErase).TempFolderWalk(temp_, false, true);
  }
  EXPECT_EQ(TakeTotals(), std::tuple(3, 0, 600.0f));
  EXPECT_TRUE(PathExists(temp_));
  for (const wchar_t* gone : {L"plain.tmp", L"readonly.tmp", L"a", L"empty"}) EXPECT_FALSE(PathExists(temp_ + gone));
  EXPECT_EQ(ReadFileBytes(temp_ + L"sub\\held.tmp"), "held");
  EXPECT_EQ(canary_.Damage(), L"");
}

TEST_F(JunkWalkerTest, OddNamesAndDeepPathsDoNotStopTheWalk) {
  MakeDirs(temp_);
  WriteFileBytes(temp_ + L"smile-\U0001F600.tmp", "12345");
  std::wstring deep = temp_ + L"deep";  // well past MAX_PATH, made through the long-path prefix
  ::CreateDirectoryW(deep.c_str(), nullptr);
  for (int i = 0; i < 12; ++i) {
    deep += L"\\" + std::wstring(30, static_cast<wchar_t>(L'a' + i));
    ::CreateDirectoryW((L"\\\\?\\" + deep).c_str(), nullptr);
  }
  ASSERT_GT(deep.size(), static_cast<size_t>(MAX_PATH));
  ASSERT_TRUE(UniqueHandleKernel(::CreateFileW((L"\\\\?\\" + deep + L"\\far.tmp").c_str(), GENERIC_WRITE, 0,
                                               nullptr, CREATE_ALWAYS, 0, nullptr)));
  WriteFileBytes(temp_ + L"zzz-last.tmp", "1234567");

  JunkWalker(kErase).TempFolderWalk(temp_, false, true);

  EXPECT_GE(std::get<0>(TakeTotals()), 2);  // the far file may or may not be reachable
  EXPECT_FALSE(PathExists(temp_ + L"smile-\U0001F600.tmp"));
  EXPECT_FALSE(PathExists(temp_ + L"zzz-last.tmp"));
}

TEST_F(JunkWalkerTest, StoppedTaskChangesNothing) {
  PlantFile(temp_ + L"a.tmp", "a");
  PlantFile(temp_ + L"sub\\b.log", "b");
  StopFlag stop;
  stop.Raise();
  TaskContext stopped = kErase;
  stopped.stop = &stop;
  JunkWalker(stopped).TempFolderWalk(temp_, false, true);
  JunkWalker(stopped).LogWalk(dir_.path());
  EXPECT_EQ(TakeTotals(), std::tuple(0, 0, 0.0f));
  EXPECT_TRUE(PathExists(temp_ + L"a.tmp"));
  EXPECT_TRUE(PathExists(temp_ + L"sub\\b.log"));
}

// A measuring pass reports what the erasing pass then reports, even where the
// places overlap (the log walk enters the Windows "temp" folder). Logs go
// except in skipped (case-exact), hidden or linked folders or when held;
// crash dumps are counted, never erased.
TEST_F(JunkWalkerTest, MeasureReportsWhatEraseThenDoes) {
  const std::wstring wer = dir_ / L"WER";
  // The file system ignores case, so the capitals live in a folder of their own.
  const SizedFiles gone = {
      {win_ + L"\\Logs\\CBS\\CBS.log", 1000}, {win_ + L"\\Logs\\CBS\\CbsPersist.LOG", 24},
      {win_ + L"\\Apps\\SYSTEM32\\LogFiles\\y.log", 10}, {win_ + L"\\temp\\setup.log", 50},
      {win_ + L"\\temp\\nested\\x.tmp", 60}, {wer + L"\\q\\crash.log", 90},
      {win_ + L"\\temp\\ro.tmp", 70}, {wer + L"\\q\\ro.wer", 80}};
  const SizedFiles kept = {
      {win_ + L"\\Logs\\CBS\\notes.txt", 1}, {win_ + L"\\System32\\LogFiles\\x.log", 1},
      {win_ + L"\\winsxs\\w.log", 1}, {win_ + L"\\Hidden\\z.log", 1}, {win_ + L"\\held.log", 1},
      {win_ + L"\\Minidump\\a.dmp", 700}, {win_ + L"\\Minidump\\b.dmp", 300}};
  PlantSized(gone, 'g');
  PlantSized(kept, 'k');
  for (const std::wstring& ro : {win_ + L"\\temp\\ro.tmp", wer + L"\\q\\ro.wer"}) MakeReadOnly(ro);
  ::SetFileAttributesW((win_ + L"\\Hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
  ASSERT_NE(::GetFileAttributesW((win_ + L"\\Hidden").c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
  ASSERT_TRUE(LinkToCanary(win_ + L"\\Linked"));
  ASSERT_TRUE(LinkToCanary(wer + L"\\ReportQueue"));
  UniqueHandleKernel held = HoldWithoutSharing(win_ + L"\\held.log");  // fails the read-write probe
  ASSERT_TRUE(held);

  auto pass = [&](const TaskContext& context) {
    JunkWalker walker(context);
    walker.TempFolderWalk(win_ + L"\\temp\\", false, true);
    walker.CountCrashDumps(win_ + L"\\Minidump");
    walker.LogWalk(win_);
    walker.ReportFolderStep(wer);
    return TakeTotals();
  };
  const auto measured = pass(kMeasure);
  for (const auto& [path, size] : gone) EXPECT_TRUE(PathExists(path)) << path;
  EXPECT_NE(::GetFileAttributesW((win_ + L"\\temp\\ro.tmp").c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
  const auto erased = pass(kErase);
  EXPECT_EQ(measured, erased);
  // temp 50+60+70; dumps 700+300; logs 1000+24+10; reports 80+90.
  EXPECT_EQ(erased, std::tuple(3, 7, 2384.0f));
  for (const auto& [path, size] : gone) EXPECT_FALSE(PathExists(path)) << path;
  for (const auto& [path, size] : kept) EXPECT_TRUE(PathExists(path)) << path;
  EXPECT_FALSE(PathExists(wer + L"\\q"));
  EXPECT_TRUE(PathExists(wer));
  EXPECT_TRUE(PathExists(win_ + L"\\temp"));
  EXPECT_EQ(canary_.Damage(), L"");
}

}  // namespace
}  // namespace scourel::test
