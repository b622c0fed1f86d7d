// Which settings family a command reads, seen from outside: the run-history
// switch of exactly one family is on, and the Run box history is erased only
// when that family is the one the command and mode argument select.
#include <gtest/gtest.h>

#include "common/win.h"
#include "support/fixtures.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

constexpr wchar_t kRunMru[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RunMRU";

void PlantRunHistory() {
  HKEY key = nullptr;
  ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, kRunMru, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            ERROR_SUCCESS);
  UniqueRegKey owned(key);
  const wchar_t data[] = L"notepad\\1";
  ::RegSetValueExW(key, L"a", 0, REG_SZ, reinterpret_cast<const BYTE*>(data), sizeof data);
}

bool RunHistoryPresent() {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, kRunMru, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  UniqueRegKey owned(key);
  return true;
}

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
  const Cleanup runHistory([] { ::RegDeleteTreeW(HKEY_CURRENT_USER, kRunMru); });
  for (const FamilyCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.mode)) + " " + std::to_string(c.command) + " " +
                 testing::PrintToString(std::wstring(c.prefixOn)));
    PlantRunHistory();
    WorkerHarness worker(L"family", c.mode);
    ASSERT_TRUE(worker.Started());
    for (const wchar_t* prefix : {L"IDS_C", L"IDS_", L"IDS_O"}) {
      worker.WriteSetting(std::wstring(prefix) + L"PCRUNHISTORY", prefix == std::wstring(c.prefixOn) ? L"TRUE" : L"FALSE");
    }
    worker.Send(c.command);
    if (c.command == 2049) {
      ASSERT_TRUE(worker.WaitForCopyData(303));
    } else {
      ASSERT_TRUE(worker.WaitFor(2074));
    }
    EXPECT_EQ(RunHistoryPresent(), !c.erased);
  }
}

}  // namespace
}  // namespace scourel::test
