#include "windows_traces/junk_files.h"

#include <string>

#include "common/known_folders.h"
#include "windows_traces/junk_walker.h"

namespace scourel {

void JunkFiles(const TaskContext& context) {
  // A place whose base folder is unknown is left out rather than walked from
  // the root of a drive.
  JunkWalker walker(context);
  const std::wstring windows = WindowsDirectory();

  const std::wstring temp = TempFolder();
  if (!temp.empty()) walker.TempFolderWalk(WithBackslash(temp), false, true);
  if (context.stopped()) return;
  if (!windows.empty()) walker.TempFolderWalk(WithBackslash(windows + L"\\temp"), false, true);
  if (context.stopped() || windows.empty()) return;

  walker.CountCrashDumps(windows + L"\\Minidump");
  if (context.stopped()) return;
  walker.LogWalk(windows);
  if (context.stopped()) return;

  walker.ReportFolderStep(WindowsDrive() + L":\\ProgramData\\Microsoft\\Windows\\WER");
  if (context.stopped()) return;
  const std::wstring local = ShellFolderPath(CSIDL_LOCAL_APPDATA);
  if (!local.empty()) walker.ReportFolderStep(local + L"\\Microsoft\\Windows\\WER");
}

}  // namespace scourel
