// overseer plugins import and list on a worker's install root.
#include <gtest/gtest.h>

#include "overseer_runner.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

TEST(OverseerPluginsTest, ImportsRulesThenListsThePluginsAndTheirRefusals) {
  ScratchDir root(L"overseer-plugins");
  WriteFileBytes(root / L"rules.ini",
                 "\xEF\xBB\xBF[Caf\xC3\xA9 *]\r\nDetect=HKCU\\Software\\Cafe\r\nFileKey1=%AppData%\\Cafe|*.log\r\n"
                 "RegKey1=HKLM\\Software\\Cafe\r\n");
  const std::wstring worker = L"--worker " + (root / L"bin\\scourel.exe") + L" ";
  OverseerRun run = RunOverseer(worker + L"plugins import " + (root / L"rules.ini"));
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  for (const char* line : {"section   Caf\xC3\xA9 *", "wrote     Caf\xC3\xA9.cv (keys 0, values 0, files 1)",
                           "skipped   RegKey1: the root HKLM is out of a plug-in's reach", "1 plug-in files written"}) {
    EXPECT_NE(run.out.find(line), std::string::npos) << line << run.out;
  }
  WriteFileBytes(root / L"plugins\\mine.cv", "[Info]\r\nDescription=Mine\r\nDeleteFile4=%AppData%\r\nDelRegKey2=x\\y");
  run = RunOverseer(worker + L"plugins list");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  for (const char* line : {"plugin    Caf\xC3\xA9: \"Caf\xC3\xA9 *\" (keys 0, values 0, files 1)",
                           "plugin    mine: \"Mine\" (keys 1, values 0, files 1)",
                           "refused   mine DeleteFile4: a whole special folder", "found     2 plug-ins"}) {
    EXPECT_NE(run.out.find(line), std::string::npos) << line << run.out;
  }
  EXPECT_EQ(RunOverseer(worker + L"plugins import " + (root / L"absent.ini")).exitCode, 1);
}

}  // namespace
}  // namespace scourel::test
