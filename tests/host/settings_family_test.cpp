// Which settings family a command reads, seen from outside: the run-history
// switch of exactly one family is on, and the Run box history is erased only
// when that family is the one the command and mode argument select.
#include <gtest/gtest.h>

#include "common/win.h"
#include "support/registry_seed.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

constexpr wchar_t kRunMru[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RunMRU";

struct FamilyCase {
  const wchar_t* mode;
  UINT command;
  const wchar_t* prefixOn;  // the one family whose switch reads TRUE
  bool erased;
};

TEST(SettingsFamilyTest, CommandSetAndModeArgumentChooseTheKeys) {
  const FamilyCase cases[] = {
      {L"", 2049, L"IDS_C", true},  {L"o", 2049, L"IDS_C", true}, {L"", 2049, L"IDS_", false},
      {L"", 2073, L"IDS_", true},   {L"", 2073, L"IDS_O", false}, {L"", 2073, L"IDS_C", false},
      {L"o", 2073, L"IDS_O", true}, {L"o", 2073, L"IDS_", false},
  };
  for (const FamilyCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.command << " mode \"" << c.mode << "\" " << c.prefixOn << " on");
    PlantedRegistry runHistory;
    runHistory.Plant(HKEY_CURRENT_USER, kRunMru, L"a", L"notepad\\1");
    WorkerHarness worker(L"family", c.mode);
    ASSERT_TRUE(worker.Started());
    for (const wchar_t* prefix : {L"IDS_C", L"IDS_", L"IDS_O"}) {
      worker.WriteSetting(std::wstring(prefix) + L"PCRUNHISTORY", prefix == std::wstring(c.prefixOn) ? L"TRUE" : L"FALSE");
    }
    worker.Send(c.command);
    ASSERT_TRUE(c.command == 2049 ? worker.WaitForCopyData(303) : worker.WaitFor(2074));
    EXPECT_EQ(KeyPresent(HKEY_CURRENT_USER, kRunMru), !c.erased);
  }
}

}  // namespace
}  // namespace scourel::test
