#include "windows_traces/scan_disk_files.h"

#include "common/task_stop.h"
#include "common/win.h"
#include "host/settings.h"
#include "host/task_totals.h"
#include "windows_traces/file_probe.h"
#include "windows_traces/folder_walk.h"
#include "windows_traces/pc_traces.h"
#include "wipe/file_shred.h"

namespace scourel {

namespace {

bool EqualsIgnoringCase(std::wstring_view a, std::wstring_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const wchar_t x = (a[i] >= L'a' && a[i] <= L'z') ? static_cast<wchar_t>(a[i] - 32) : a[i];
    const wchar_t y = (b[i] >= L'a' && b[i] <= L'z') ? static_cast<wchar_t>(b[i] - 32) : b[i];
    if (x != y) return false;
  }
  return true;
}

bool IsPlainFile(const WIN32_FIND_DATAW& entry) { return !IsFolder(entry) && !IsReparsePoint(entry); }

void VisitFoundFolder(const std::wstring& folder, bool erase) {
  // The pattern alone is not trusted: short names can match it too.
  ForEachEntry(folder + L"\\*.CHK", [&folder, erase](const WIN32_FIND_DATAW& entry) {
    if (!IsPlainFile(entry) || !IsChkFileName(entry.cFileName)) return;
    const std::wstring path = folder + L"\\" + entry.cFileName;
    if (!ReadWriteProbe(path)) return;
    if (erase) CFileShred{}.Shred(path, g_wipeMethod.get());
    g_totals.pcTraces[kPcScanDiskFiles].add(1);
    AddBytes(g_totals.byteTotal, EntrySize(entry));
  });
  // Only an emptied folder goes; anything else in it keeps it.
  if (erase && !TaskStopRequested()) ::RemoveDirectoryW(folder.c_str());
}

void VisitAllScanDiskFiles(bool erase) {
  for (const std::wstring& root : FixedDriveRoots()) {
    if (TaskStopRequested()) break;
    VisitScanDiskFiles(root, erase);
  }
}

}  // namespace

bool IsFoundFolderName(std::wstring_view name) {
  if (name.size() != 9 || !EqualsIgnoringCase(name.substr(0, 6), L"FOUND.")) return false;
  for (const wchar_t c : name.substr(6)) {
    if (c < L'0' || c > L'9') return false;
  }
  return true;
}

bool IsChkFileName(std::wstring_view name) {
  return name.size() > 4 && EqualsIgnoringCase(name.substr(name.size() - 4), L".CHK");
}

std::vector<std::wstring> FixedDriveRoots() {
  std::vector<std::wstring> roots;
  const DWORD drives = ::GetLogicalDrives();
  for (int i = 0; i < 26; ++i) {
    if (!(drives & (1u << i))) continue;
    const std::wstring root{static_cast<wchar_t>(L'A' + i), L':'};
    if (::GetDriveTypeW((root + L"\\").c_str()) == DRIVE_FIXED) roots.push_back(root);
  }
  return roots;
}

void VisitScanDiskFiles(const std::wstring& root, bool erase) {
  ForEachEntry(root + L"\\FOUND.*", [&root, erase](const WIN32_FIND_DATAW& entry) {
    // A link named like the folder could lead anywhere: never entered.
    if (!IsFolder(entry) || IsReparsePoint(entry) || !IsFoundFolderName(entry.cFileName)) return;
    VisitFoundFolder(root + L"\\" + entry.cFileName, erase);
  });
}

int ScanScanDiskFiles() {
  VisitAllScanDiskFiles(false);
  return 0;
}

int CleanScanDiskFiles() {
  VisitAllScanDiskFiles(true);
  return 0;
}

}  // namespace scourel
