#include "windows_traces/recent_documents.h"

#include "common/task_stop.h"
#include "common/win.h"
#include "host/settings.h"
#include "host/task_totals.h"
#include "windows_traces/folder_walk.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/shell_folder.h"
#include "wipe/file_shred.h"

namespace scourel {

namespace {

// Text after ".lnk" still matches (notes.lnk.old).
constexpr wchar_t kShortcutPattern[] = L"*.lnk*";

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) { return folder + L"\\" + name; }

void CountEntry(const WIN32_FIND_DATAW& entry) {
  AddBytes(g_totals.byteTotal, EntrySize(entry));
  g_totals.pcTraces[kPcDocuments].add(1);
}

void ClearShellRecentList() { ::SHAddToRecentDocs(0, nullptr); }

}  // namespace

void ScanRecentDocumentsIn(const std::wstring& folder) {
  ForEachEntry(JoinPath(folder, kShortcutPattern), [](const WIN32_FIND_DATAW& entry) {
    if (!IsDotEntry(entry)) CountEntry(entry);
  });
}

void CleanRecentDocumentsIn(const std::wstring& folder, void (*clearShellList)()) {
  ForEachEntry(JoinPath(folder, kShortcutPattern), [&folder](const WIN32_FIND_DATAW& entry) {
    if (IsDotEntry(entry)) return;
    // Counted before the shred, whatever the shred does.
    CountEntry(entry);
    // A folder is never handed to the shredder, a link to one least of all.
    if (IsFolder(entry)) return;
    CFileShred{}.Shred(JoinPath(folder, entry.cFileName), g_wipeMethod.get());
  });
  if (!TaskStopRequested()) clearShellList();
}

int ScanRecentDocuments() {
  const std::wstring folder = ShellFolderPath(CSIDL_RECENT);
  if (!folder.empty()) ScanRecentDocumentsIn(folder);
  return 0;
}

int CleanRecentDocuments() {
  const std::wstring folder = ShellFolderPath(CSIDL_RECENT);
  if (folder.empty()) {
    ClearShellRecentList();
  } else {
    CleanRecentDocumentsIn(folder, ClearShellRecentList);
  }
  return 0;
}

}  // namespace scourel
