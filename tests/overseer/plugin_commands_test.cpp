// overseer plugins import and list on a worker's install root.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "overseer_runner.h"
#include "support/fixtures.h"

namespace scourel::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST(OverseerPluginsTest, ImportsRulesThenListsThePluginsAndTheirRefusals) {
  ScratchDir root(L"overseer-plugins");
  WriteFileBytes(root / L"rules.ini",
                 "\xEF\xBB\xBF[Caf\xC3\xA9 *]\r\nDetect=HKCU\\Software\\Cafe\r\nFileKey1=%AppData%\\Cafe|*.log\r\n"
                 "RegKey1=HKLM\\Software\\Cafe\r\n");
  const std::wstring worker = L"--worker " + (root / L"bin\\scourel.exe") + L" ";
  OverseerRun run = RunOverseer(worker + L"plugins import " + (root / L"rules.ini"));
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("section   Caf\xC3\xA9 *"), HasSubstr("wrote     Caf\xC3\xA9.cv (keys 0, values 0, files 1)"),
                             HasSubstr("skipped   RegKey1: the root HKLM is out of a plug-in's reach"),
                             HasSubstr("1 plug-in files written")));
  WriteFileBytes(root / L"plugins\\mine.cv", "[Info]\r\nDescription=Mine\r\nDeleteFile4=%AppData%\r\nDelRegKey2=x\\y");
  run = RunOverseer(worker + L"plugins list");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("plugin    Caf\xC3\xA9: \"Caf\xC3\xA9 *\" (keys 0, values 0, files 1)"),
                             HasSubstr("plugin    mine: \"Mine\" (keys 1, values 0, files 1)"),
                             HasSubstr("refused   mine DeleteFile4: a whole special folder"), HasSubstr("found     2 plug-ins")));
  EXPECT_EQ(RunOverseer(worker + L"plugins import " + (root / L"absent.ini")).exitCode, 1);
}

}  // namespace
}  // namespace scourel::test
