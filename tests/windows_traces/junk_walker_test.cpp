#include "windows_traces/junk_walker.h"

#include <gtest/gtest.h>

#include <tuple>

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
  void TearDown() override { ResetForJunkFileScan(g_totals); }
  ScratchDir dir_{L"junk-walker"};
  std::wstring temp_ = dir_ / L"temp\\";
  std::wstring win_ = dir_ / L"Windows";
};

// A measuring pass reports what the erasing pass then reports, even where the
// places overlap (the log walk enters the Windows "temp" folder). Temporary
// files go, read-only or nested, and their emptied folders; logs go except in
// skipped (case-exact) or hidden folders; files held open stay
// uncounted; crash dumps are counted, never erased. A stopped task first
// counts and changes nothing.
TEST_F(JunkWalkerTest, MeasureReportsWhatEraseThenDoes) {
  const std::wstring wer = dir_ / L"WER", temp = win_ + L"\\temp\\";
  // The file system ignores case, so the capitals live in a folder of their own.
  const SizedFiles gone = {
      {win_ + L"\\Logs\\CBS\\CBS.log", 1000}, {win_ + L"\\Logs\\CBS\\CbsPersist.LOG", 24},
      {win_ + L"\\Apps\\SYSTEM32\\LogFiles\\y.log", 10}, {temp + L"setup.log", 50}, {temp + L"nested\\x.tmp", 60},
      {temp + L"ro.tmp", 70}, {temp + L"a\\b\\c\\deep.tmp", 300}, {temp + L"smile-\U0001F600.tmp", 5},
      {wer + L"\\q\\crash.log", 90}, {wer + L"\\q\\ro.wer", 80}};
  const SizedFiles kept = {
      {win_ + L"\\Logs\\CBS\\notes.txt", 1}, {win_ + L"\\System32\\LogFiles\\x.log", 1},
      {win_ + L"\\winsxs\\w.log", 1}, {win_ + L"\\Hidden\\z.log", 1}, {win_ + L"\\held.log", 1},
      {temp + L"sub\\held.tmp", 1}, {win_ + L"\\Minidump\\a.dmp", 700}, {win_ + L"\\Minidump\\b.dmp", 300}};
  PlantSized(gone, 'g');
  PlantSized(kept, 'k');
  MakeDirs(temp + L"empty\\inner");
  for (const std::wstring& ro : {temp + L"ro.tmp", wer + L"\\q\\ro.wer"}) MakeReadOnly(ro);
  ::SetFileAttributesW((win_ + L"\\Hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
  ASSERT_NE(::GetFileAttributesW((win_ + L"\\Hidden").c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
  // The log fails the read-write probe, the temporary file the read probe.
  const UniqueHandleKernel heldLog = HoldWithoutSharing(win_ + L"\\held.log");
  const UniqueHandleKernel heldTemp = HoldWithoutSharing(temp + L"sub\\held.tmp");
  ASSERT_TRUE(heldLog && heldTemp);

  auto pass = [&](const TaskContext& context) {
    JunkWalker walker(context);
    walker.TempFolderWalk(temp, false, true);
    walker.CountCrashDumps(win_ + L"\\Minidump");
    walker.LogWalk(win_);
    walker.ReportFolderStep(wer);
    return TakeTotals();
  };
  StopFlag stop;
  stop.Raise();
  TaskContext stopped = kErase;
  stopped.stop = &stop;
  EXPECT_EQ(pass(stopped), std::tuple(0, 0, 0.0f));
  const auto measured = pass(kMeasure);
  for (const auto& [path, size] : gone) EXPECT_TRUE(PathExists(path)) << path;
  EXPECT_NE(::GetFileAttributesW((temp + L"ro.tmp").c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
  const auto erased = pass(kErase);
  EXPECT_EQ(measured, erased);
  // temp 50+60+70+300+5; dumps 700+300; logs 1000+24+10; reports 90+80.
  EXPECT_EQ(erased, std::tuple(5, 7, 2689.0f));
  for (const auto& [path, size] : gone) EXPECT_FALSE(PathExists(path)) << path;
  for (const auto& [path, size] : kept) EXPECT_TRUE(PathExists(path)) << path;
  for (const wchar_t* folder : {L"nested", L"a", L"empty"}) EXPECT_FALSE(PathExists(temp + folder)) << folder;
  EXPECT_FALSE(PathExists(wer + L"\\q"));
  EXPECT_TRUE(PathExists(wer) && PathExists(temp));
}

TEST_F(JunkWalkerTest, PathsPastMaxPathDoNotStopTheWalk) {
  std::wstring deep = temp_ + L"deep";  // made through the long-path prefix
  MakeDirs(deep);
  for (int i = 0; i < 12; ++i) {
    deep += L"\\" + std::wstring(30, static_cast<wchar_t>(L'a' + i));
    ::CreateDirectoryW((L"\\\\?\\" + deep).c_str(), nullptr);
  }
  ASSERT_GT(deep.size(), static_cast<size_t>(MAX_PATH));
  ASSERT_TRUE(UniqueHandleKernel(::CreateFileW((L"\\\\?\\" + deep + L"\\far.tmp").c_str(), GENERIC_WRITE, 0,
                                               nullptr, CREATE_ALWAYS, 0, nullptr)));
  WriteFileBytes(temp_ + L"zzz-last.tmp", "1234567");
  JunkWalker(kErase).TempFolderWalk(temp_, false, true);
  EXPECT_GE(std::get<0>(TakeTotals()), 1);  // the far file may or may not be reachable
  EXPECT_FALSE(PathExists(temp_ + L"zzz-last.tmp"));
}

}  // namespace
}  // namespace scourel::test
