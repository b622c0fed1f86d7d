#include "host/worker_state.h"

namespace scourel {

std::wstring g_settingsDir;
std::wstring g_settingsPath;
std::wstring g_modeArgument;
HWND g_commandWindow = nullptr;

void LocateSettings(const std::wstring& exePath) {
  // Two folders up: <root>\<bin>\scourel.exe reads <root>\Settings.INI.
  // A path with fewer than two separators is not supported.
  std::wstring dir = exePath;
  for (int i = 0; i < 2; ++i) {
    const auto slash = dir.rfind(L'\\');
    if (slash != std::wstring::npos) dir.resize(slash);
  }
  g_settingsDir = dir;
  g_settingsPath = g_settingsDir + L"\\Settings.INI";
}

}  // namespace scourel
