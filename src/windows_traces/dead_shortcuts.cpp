#include "windows_traces/dead_shortcuts.h"

#include <string>

#include "common/task_stop.h"
#include "common/unique_handle.h"
#include "common/win.h"
#include "host/settings.h"
#include "host/task_totals.h"
#include "wipe/file_shred.h"
#include "windows_traces/folder_walk.h"
#include "windows_traces/junk_paths.h"

namespace scourel {

namespace {

enum class Mode { kErase, kMeasure };

constexpr DWORD kTargetChars = 1024;
constexpr DWORD kTargetFlags = 2;  // SLGP_UNCPRIORITY

bool IsWindows62() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#endif
  const BOOL known = ::GetVersionExW(&version);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
  return known && version.dwMajorVersion == 6 && version.dwMinorVersion == 2;
}

// The target a shortcut file names; empty when the file does not load. False
// when no shell link object can be made at all.
bool ReadShortcutTarget(const std::wstring& path, std::wstring& target) {
  target.clear();
  // Once per shortcut and never undone: a second call on this thread only
  // adds a reference.
  ::CoInitialize(nullptr);
  ComPtr<IShellLinkW> link;
  if (FAILED(::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                link.put_void()))) {
    return false;
  }
  ComPtr<IPersistFile> file;
  if (FAILED(link->QueryInterface(IID_IPersistFile, file.put_void()))) return true;
  if (FAILED(file->Load(path.c_str(), STGM_READ))) return true;
  wchar_t buffer[kTargetChars] = {};
  if (FAILED(link->GetPath(buffer, kTargetChars, nullptr, kTargetFlags))) return true;
  buffer[kTargetChars - 1] = L'\0';
  target = buffer;
  return true;
}

struct ShortcutWalk {
  Mode mode;
  std::uint32_t method;
  bool rewriteSystem32;

  void Walk(const std::wstring& folder) {
    // The Start Menu folder is given with its backslash; the paths handed on
    // (to the shredder above all) get a single one.
    const std::wstring prefix = folder.empty() || folder.back() != L'\\' ? folder + L"\\" : folder;
    ForEachEntry(prefix + L"*.*", [&](const WIN32_FIND_DATAW& entry) {
      if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
      const std::wstring path = prefix + entry.cFileName;
      if (!HasShortcutMark(entry.cFileName)) {
        if (IsFolder(entry)) Walk(path);
        return;
      }
      if (ContainsAfterFirst(path, L"Accessories")) return;
      std::wstring target;
      if (!ReadShortcutTarget(path, target)) {
        // Blocks this task until dismissed; the walk then goes on.
        ::MessageBoxW(nullptr, L"Instance fails", L"Corvane Vellum", MB_OK);
        return;
      }
      if (target.size() < 2) return;
      if (rewriteSystem32) target = SysnativeTarget(target);
      if (::PathFileExistsW(target.c_str())) return;
      g_totals.junkSecond.add(1);
      if (mode == Mode::kErase) {
        AddBytes(g_totals.byteTotal, EntrySize(entry));
        CFileShred{}.Shred(path, method);
      }
    });
  }
};

std::wstring ProfileFolder() {
  wchar_t buffer[MAX_PATH] = {};
  if (FAILED(::SHGetFolderPathW(nullptr, CSIDL_PROFILE, nullptr, SHGFP_TYPE_CURRENT, buffer))) return {};
  return buffer;
}

std::wstring WindowsDrive() {
  wchar_t buffer[MAX_PATH + 1] = {};
  const UINT n = ::GetWindowsDirectoryW(buffer, MAX_PATH + 1);
  return n > 0 && n <= MAX_PATH ? DriveOf(std::wstring(buffer, n)) : std::wstring();
}

// The Start Menu of all users, the public desktop, then the whole profile.
void WalkShortcutFolders(ShortcutWalk walk) {
  const std::wstring drive = WindowsDrive();
  if (!drive.empty()) walk.Walk(drive + L":\\ProgramData\\Microsoft\\Windows\\Start Menu\\");
  if (TaskStopRequested()) return;
  const std::wstring profile = ProfileFolder();
  if (profile.empty()) return;
  walk.Walk(ParentOf(profile) + L"\\Public\\Desktop");
  if (TaskStopRequested()) return;
  walk.Walk(profile);
}

}  // namespace

void CleanDeadShortcuts() {
  g_totals.byteTotal.set(0.0f);
  ReadWipeAlgorithm();
  WalkShortcutFolders({Mode::kErase, g_wipeMethod.get(), IsWindows62()});
}

void MeasureDeadShortcuts() {
  g_totals.byteTotal.set(0.0f);
  WalkShortcutFolders({Mode::kMeasure, 0, false});
}

}  // namespace scourel
