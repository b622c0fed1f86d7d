#include "windows_traces/junk_files.h"

#include <string>

#include "common/task_stop.h"
#include "common/win.h"
#include "host/settings.h"
#include "host/task_totals.h"
#include "windows_traces/junk_paths.h"
#include "windows_traces/junk_walker.h"

namespace scourel {

namespace {

std::wstring WindowsFolder() {
  wchar_t buffer[MAX_PATH + 1] = {};
  const UINT n = ::GetWindowsDirectoryW(buffer, MAX_PATH + 1);
  return n > 0 && n <= MAX_PATH ? std::wstring(buffer, n) : std::wstring();
}

std::wstring TempFolder() {
  wchar_t buffer[MAX_PATH + 2] = {};
  const DWORD n = ::GetTempPathW(MAX_PATH + 2, buffer);
  return n > 0 && n <= MAX_PATH + 1 ? std::wstring(buffer, n) : std::wstring();
}

std::wstring LocalAppDataFolder() {
  wchar_t buffer[MAX_PATH] = {};
  if (FAILED(::SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, buffer))) return {};
  return buffer;
}

std::wstring WithBackslash(std::wstring folder) {
  if (folder.empty() || folder.back() != L'\\') folder += L'\\';
  return folder;
}

// The same places in the same order for the task and for the full scan; a
// place whose base folder is unknown is left out rather than walked from
// the root of a drive.
void WalkJunkPlaces(JunkWalker::Mode mode) {
  JunkWalker walker(mode);
  const std::wstring windows = WindowsFolder();

  const std::wstring temp = TempFolder();
  if (!temp.empty()) walker.TempFolderWalk(WithBackslash(temp), false, true);
  if (TaskStopRequested()) return;
  if (!windows.empty()) walker.TempFolderWalk(WithBackslash(windows + L"\\temp"), false, true);
  if (TaskStopRequested() || windows.empty()) return;

  walker.CountCrashDumps(windows + L"\\Minidump");
  if (TaskStopRequested()) return;
  walker.LogWalk(windows);
  if (TaskStopRequested()) return;

  walker.ReportFolderStep(DriveOf(windows) + L":\\ProgramData\\Microsoft\\Windows\\WER");
  if (TaskStopRequested()) return;
  const std::wstring local = LocalAppDataFolder();
  if (!local.empty()) walker.ReportFolderStep(local + L"\\Microsoft\\Windows\\WER");
}

}  // namespace

void CleanJunkFiles() {
  ResetForJunkFileScan();
  ReadWipeAlgorithm();
  WalkJunkPlaces(JunkWalker::Mode::kErase);
}

void MeasureJunkFiles() { WalkJunkPlaces(JunkWalker::Mode::kMeasure); }

}  // namespace scourel
