#include "windows_traces/credentials.h"

#include "common/win.h"
#include "host/settings.h"
#include "host/task_totals.h"
#include "windows_traces/file_probe.h"
#include "windows_traces/folder_walk.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/shell_folder.h"
#include "wipe/file_shred.h"

namespace scourel {

namespace {

constexpr wchar_t kCredentialsFolder[] = L"Microsoft\\Credentials";

// Roaming first, then local.
constexpr int kCredentialBases[] = {CSIDL_APPDATA, CSIDL_LOCAL_APPDATA};

void VisitAllCredentialFiles(bool shred) {
  for (const int csidl : kCredentialBases) {
    const std::wstring base = ShellFolderPath(csidl);
    if (!base.empty()) VisitCredentialFiles(base, shred);
  }
}

}  // namespace

void VisitCredentialFiles(const std::wstring& baseFolder, bool shred) {
  const std::wstring folder = baseFolder + L"\\" + kCredentialsFolder;
  ForEachEntry(folder + L"\\*.*", [&folder, shred](const WIN32_FIND_DATAW& entry) {
    // Folders (and "." and "..") do not open under the probe; neither do
    // files in use. Both are passed over.
    const std::wstring path = folder + L"\\" + entry.cFileName;
    if (IsFolder(entry) || !ReadWriteProbe(path)) return;
    if (shred) CFileShred{}.Shred(path, g_wipeMethod.get());
    g_totals.pcTraces[kPcNetwork].add(1);
    AddBytes(g_totals.byteTotal, EntrySize(entry));
  });
}

int ScanCredentials() {
  VisitAllCredentialFiles(false);
  return 0;
}

int CleanCredentials() {
  VisitAllCredentialFiles(true);
  return 0;
}

}  // namespace scourel
