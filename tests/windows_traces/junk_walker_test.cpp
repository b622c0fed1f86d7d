#include "windows_traces/junk_walker.h"

#include <gtest/gtest.h>

#include <tuple>

#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// A measuring pass reports what the erasing pass then reports, even where the
// places overlap (the log walk enters the Windows "temp" folder). Temporary
// files go, read-only or nested, and their emptied folders; logs go except in
// skipped (case-exact) or hidden folders; files held open stay
// uncounted; crash dumps are counted, never erased. A stopped task first
// counts and changes nothing.
TEST(JunkWalkerTest, MeasureReportsWhatEraseThenDoes) {
  const ScratchDir dir(L"junk-walker");
  const std::wstring win = dir / L"Windows", wer = dir / L"WER", temp = win + L"\\temp\\";
  // The file system ignores case, so the capitals live in a folder of their own.
  const SizedFiles gone = {
      {win + L"\\Logs\\CBS\\CBS.log", 1000}, {win + L"\\Logs\\CBS\\CbsPersist.LOG", 24},
      {win + L"\\Apps\\SYSTEM32\\LogFiles\\y.log", 10}, {temp + L"setup.log", 50}, {temp + L"nested\\x.tmp", 60},
      {temp + L"ro.tmp", 70}, {temp + L"a\\b\\c\\deep.tmp", 300}, {temp + L"smile-\U0001F600.tmp", 5},
      {wer + L"\\q\\crash.log", 90}, {wer + L"\\q\\ro.wer", 80}};
  const SizedFiles kept = {
      {win + L"\\Logs\\CBS\\notes.txt", 1}, {win + L"\\System32\\LogFiles\\x.log", 1},
      {win + L"\\winsxs\\w.log", 1}, {win + L"\\Hidden\\z.log", 1}, {win + L"\\held.log", 1},
      {temp + L"sub\\held.tmp", 1}, {win + L"\\Minidump\\a.dmp", 700}, {win + L"\\Minidump\\b.dmp", 300}};
  PlantSized(gone, 'g');
  PlantSized(kept, 'k');
  MakeDirs(temp + L"empty\\inner");
  for (const std::wstring& ro : {temp + L"ro.tmp", wer + L"\\q\\ro.wer"}) MakeReadOnly(ro);
  ::SetFileAttributesW((win + L"\\Hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
  ASSERT_NE(::GetFileAttributesW((win + L"\\Hidden").c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
  // The log fails the read-write probe, the temporary file the read probe.
  const UniqueHandleKernel heldLog = HoldWithoutSharing(win + L"\\held.log");
  const UniqueHandleKernel heldTemp = HoldWithoutSharing(temp + L"sub\\held.tmp");
  ASSERT_TRUE(heldLog && heldTemp);

  auto pass = [&](const TaskContext& context) {
    JunkWalker walker(context);
    walker.TempFolderWalk(temp, false, true);
    walker.CountCrashDumps(win + L"\\Minidump");
    walker.LogWalk(win);
    walker.ReportFolderStep(wer);
    // {first counter, second counter, bytes}, read and reset.
    const std::tuple totals{g_totals.junkFirst.get(), g_totals.junkSecond.get(), g_totals.byteTotal.get()};
    ResetForJunkFileScan(g_totals);
    return totals;
  };
  ResetForJunkFileScan(g_totals);
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

}  // namespace
}  // namespace scourel::test
