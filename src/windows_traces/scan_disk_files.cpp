#include "windows_traces/scan_disk_files.h"

#include "common/win.h"
#include "task/folder_walk.h"
#include "task/trace_file.h"
#include "windows_traces/pc_traces.h"

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

void VisitFoundFolder(const TaskContext& context, const std::wstring& folder) {
  const Tally tally = context.totals.byteTotalWith(context.totals.pc(protocol::PcStep::kScanDiskFiles));
  // The pattern alone is not trusted: short names can match it too.
  ForEachEntry(context, folder + L"\\*.CHK", [&](const WIN32_FIND_DATAW& entry) {
    if (!IsPlainFile(entry) || !IsChkFileName(entry.cFileName)) return;
    TakeTraceFile(context, FromListing(folder + L"\\" + entry.cFileName, entry), {}, tally);
  });
  // Only an emptied folder goes; anything else in it keeps it.
  if (context.erasing() && !context.stopped()) (void)context.io.RemoveFolder(folder);
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

void VisitScanDiskFiles(const TaskContext& context, const std::wstring& root) {
  ForEachEntry(context, root + L"\\FOUND.*", [&](const WIN32_FIND_DATAW& entry) {
    // A link named like the folder could lead anywhere: never entered.
    if (!IsFolder(entry) || IsReparsePoint(entry) || !IsFoundFolderName(entry.cFileName)) return;
    VisitFoundFolder(context, root + L"\\" + entry.cFileName);
  });
}

void ScanDiskFiles(const TaskContext& context) {
  for (const std::wstring& root : FixedDriveRoots()) {
    if (context.stopped()) break;
    VisitScanDiskFiles(context, root);
  }
}

}  // namespace scourel
