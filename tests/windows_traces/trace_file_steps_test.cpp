// The PC-traces steps that find files, each over a scratch folder: the
// measuring pass counts what the erasing pass then takes, and decoys, a file
// in use and a link to a canary beside the targets stay as they were.
#include <gtest/gtest.h>

#include "windows_traces/credentials.h"
#include "windows_traces/recent_documents.h"
#include "windows_traces/scan_disk_files.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// The system's calls, but the shell's list is only counted when cleared.
struct CountedClears : CleanerIo {
  int clears = 0;
  void ClearRecentDocuments() override { ++clears; }
};

struct FileStep {
  const char* name;
  void (*visit)(const TaskContext&, const std::wstring& base);
  protocol::PcStep counter;
  SizedFiles gone;                 // below the base folder
  std::vector<std::wstring> kept;  // decoys holding "keep"
  std::wstring held, link;         // a file in use; a link to the canary
  int count;
  float bytes;
  std::vector<std::wstring> removed;  // folders the erasing pass emptied and removed
  int clears;                         // calls to clear the shell's list per erasing pass
};

const FileStep kSteps[] = {
    // Only files directly in the folder that open for reading and writing.
    {"credentials", VisitCredentialFiles, protocol::PcStep::kNetwork,
     {{L"Microsoft\\Credentials\\DFBE70A7E5CC19A398EBF1B96859CE5D", 100}},
     {L"Microsoft\\Credentials\\sub\\inner", L"Microsoft\\Protect\\neighbour"},
     L"Microsoft\\Credentials\\2C1B3F7E", L"Microsoft\\Credentials\\linked", 1, 100.0f, {}, 0},
    // Every name holding ".lnk" counts, whatever the shredder makes of it: a
    // file in use and a folder or link so named are counted and left whole.
    {"recent documents", VisitRecentDocuments, protocol::PcStep::kDocuments,
     {{L"report.docx.lnk", 300}, {L"notes.lnk.old", 200}}, {L"readme.txt", L"link.txt", L"album.lnk\\photo.lnk"},
     L"busy.lnk", L"elsewhere.lnk", 5, 504.0f, {}, 1},
    // "*.CHK" files directly in "FOUND.nnn" folders; only emptied folders go.
    {"scan-disk files", VisitScanDiskFiles, protocol::PcStep::kScanDiskFiles,
     {{L"FOUND.000\\FILE0000.CHK", 1000}, {L"found.123\\file0001.chk", 24}, {L"Found.999\\FILE0000.ChK", 100}},
     {L"Found.999\\keep.txt", L"FOUND.002\\sub\\deep.CHK", L"FOUND.000x\\FILE0000.CHK", L"FOUND.00\\a.CHK",
      L"FOUND.00a\\a.CHK", L"XFOUND.001\\a.CHK", L"FOUND.0000\\a.CHK", L"FOUND_000\\a.CHK", L"FOUND.003\\.CHK",
      L"FOUND.003\\a.CHKX", L"FOUND.003\\notes.CHK.txt", L"loose.CHK"},
     L"FOUND.001\\busy.CHK", L"FOUND.004", 3, 1124.0f, {L"FOUND.000", L"found.123"}, 0},
};

TEST(TraceFileStepsTest, MeasureCountsWhatEraseTakesAndEverythingBesideStays) {
  for (const FileStep& step : kSteps) {
    SCOPED_TRACE(step.name);
    // The links' folder goes first, while what they name is still there:
    // Wine cannot see a dangling link to remove it.
    ScratchDir outside(L"pctraces-files-canary"), base(L"pctraces-files");
    CanaryTree canary(outside / L"tree");
    WriteFileBytes(canary.root() + L"\\bait.lnk.CHK", "bait");  // matches every step's pattern
    for (const auto& [name, size] : step.gone) WriteFileBytes(base / name, std::string(size, 'g'));
    for (const std::wstring& name : step.kept) WriteFileBytes(base / name, "keep");
    WriteFileBytes(base / step.held, "held");
    ASSERT_TRUE(MakeUnixSymlink(canary.root(), base / step.link));
    auto& counter = g_totals.pc(step.counter);
    CountedClears io;
    TaskContext context{g_totals, io, nullptr, 0, Mode::kMeasure, nullptr, L"", L""};
    UniqueHandleKernel held = HoldWithoutSharing(base / step.held);
    ASSERT_TRUE(held);
    for (const Mode mode : {Mode::kMeasure, Mode::kErase}) {
      ResetForJunkFileScan(g_totals);
      context.mode = mode;
      step.visit(context, base.path());
      EXPECT_EQ(counter.get(), step.count);
      EXPECT_EQ(g_totals.byteTotal.get(), step.bytes);
      for (const auto& [name, size] : step.gone) EXPECT_EQ(PathExists(base / name), mode == Mode::kMeasure) << name;
    }
    held.reset();
    EXPECT_EQ(io.clears, step.clears);
    for (const std::wstring& name : step.kept) EXPECT_EQ(ReadFileBytes(base / name), "keep") << name;
    for (const std::wstring& name : step.removed) EXPECT_FALSE(PathExists(base / name)) << name;
    EXPECT_EQ(ReadFileBytes(base / step.held), "held");
    EXPECT_EQ(ReadFileBytes(canary.root() + L"\\bait.lnk.CHK"), "bait");
    EXPECT_EQ(canary.Damage(), L"");

    // A folder with nothing in it counts nothing; the shell's list is still cleared.
    MakeDirs(base / L"empty");
    ResetForJunkFileScan(g_totals);
    step.visit(context.With(Mode::kErase), base / L"empty");
    EXPECT_EQ(counter.get(), 0);
    EXPECT_EQ(g_totals.byteTotal.get(), 0.0f);
    EXPECT_EQ(io.clears, 2 * step.clears);
  }
}

}  // namespace
}  // namespace scourel::test
