#include "host/worker_state.h"

#include <gtest/gtest.h>

namespace scourel {
namespace {

TEST(WorkerStateTest, SettingsLiveTwoFoldersAboveTheExe) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"C:\\A\\B\\scourel.exe", L"C:\\A\\Settings.INI"},
      {L"S:\\bin\\scourel.exe", L"S:\\Settings.INI"},
      {L"C:\\Program Files\\Corvane\\bin\\scourel.exe", L"C:\\Program Files\\Corvane\\Settings.INI"},
  };
  const std::wstring saved = g_settingsPath;
  for (const auto& [exe, settings] : cases) {
    LocateSettings(exe);
    EXPECT_EQ(g_settingsPath, settings);
  }
  g_settingsPath = saved;
}

}  // namespace
}  // namespace scourel
