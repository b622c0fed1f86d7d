#include "windows_traces/junk_files.h"

#include <string>

#include "common/known_folders.h"
#include "task/link_rule.h"
#include "windows_traces/junk_walker.h"

namespace scourel {

void JunkFiles(const TaskContext& context) {
  // A place whose base folder is unknown is left out rather than walked from
  // the root of a drive.
  JunkWalker walker(context);
  const std::wstring windows = WindowsDirectory();

  // Each place is walked only when no link leads to it from its base folder.
  const std::wstring temp = TempFolder();
  if (!temp.empty()) walker.TempFolderWalk(WithBackslash(temp), false, true);
  if (context.stopped()) return;
  const std::wstring windowsTemp = windows + L"\\temp";
  if (!windows.empty() && ReachedWithoutLinks(context.io, windows, windowsTemp)) {
    walker.TempFolderWalk(WithBackslash(windowsTemp), false, true);
  }
  if (context.stopped() || windows.empty()) return;

  const std::wstring minidump = windows + L"\\Minidump";
  if (ReachedWithoutLinks(context.io, windows, minidump)) walker.CountCrashDumps(minidump);
  if (context.stopped()) return;
  walker.LogWalk(windows);
  if (context.stopped()) return;

  const std::wstring root = WindowsDrive() + L":\\";
  const std::wstring sharedReports = root + L"ProgramData\\Microsoft\\Windows\\WER";
  if (ReachedWithoutLinks(context.io, root, sharedReports)) walker.ReportFolderStep(sharedReports);
  if (context.stopped()) return;
  const std::wstring local = ShellFolderPath(CSIDL_LOCAL_APPDATA);
  const std::wstring ownReports = local + L"\\Microsoft\\Windows\\WER";
  if (!local.empty() && ReachedWithoutLinks(context.io, local, ownReports)) walker.ReportFolderStep(ownReports);
}

}  // namespace scourel
