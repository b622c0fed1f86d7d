#include "windows_traces/dead_shortcuts.h"

#include <string>

#include "common/com_init.h"
#include "common/known_folders.h"
#include "common/unique_handle.h"
#include "common/win.h"
#include "task/folder_walk.h"
#include "task/link_rule.h"
#include "task/trace_file.h"
#include "windows_traces/junk_paths.h"

namespace scourel {

namespace {

constexpr DWORD kTargetChars = 1024;
constexpr DWORD kTargetFlags = 2;  // SLGP_UNCPRIORITY

// The target a shortcut file names; empty when the file does not load. False
// when no shell link object can be made at all.
bool ReadShortcutTarget(const std::wstring& path, std::wstring& target) {
  target.clear();
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

// A target that cannot name a real path is unknown, never missing: "?"
// stands in for what the shell could not spell (Wine's GetPath gives it for
// every character outside the ANSI page), "*" names no file, and a drive
// that is not mapped may be a disk not plugged in.
bool Resolvable(const std::wstring& target) {
  if (target.find_first_of(L"?*") != std::wstring::npos) return false;
  if (target[1] != L':') return true;
  const wchar_t root[] = {target[0], L':', L'\\', L'\0'};
  return ::GetDriveTypeW(root) != DRIVE_NO_ROOT_DIR;
}

struct ShortcutWalk {
  const TaskContext& context;
  bool rewriteSystem32;

  void Walk(const std::wstring& folder, int depth = 0) const {
    // The Start Menu folder is given with its backslash; the paths handed on
    // (to the shredder above all) get a single one.
    const std::wstring prefix = WithBackslash(folder);
    ForEachEntry(context, prefix + L"*.*", [&](const WIN32_FIND_DATAW& entry) {
      if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
      const std::wstring path = prefix + entry.cFileName;
      if (!HasShortcutMark(entry.cFileName)) {
        if (IsFolder(entry) && depth < kMaxFolderDepth) Walk(path, depth + 1);
        return;
      }
      if (ContainsAfterFirst(path, L"Accessories")) return;
      std::wstring target;
      if (!ReadShortcutTarget(path, target)) {
        // Blocks this task until dismissed; the walk then goes on.
        ::MessageBoxW(nullptr, L"Instance fails", L"Corvane Vellum", MB_OK);
        return;
      }
      if (target.size() < 2 || !Resolvable(target)) return;
      if (rewriteSystem32) target = SysnativeTarget(target);
      if (::PathFileExistsW(target.c_str())) return;
      // Dead: the measuring walk counts it without its size.
      const SizeFrom size = context.erasing() ? SizeFrom::kListing : SizeFrom::kNothing;
      TakeTraceFile(context, FromListing(path, entry), {Probe::kNone, size},
                    context.totals.byteTotalWith(context.totals.junkSecond));
    });
  }
};

}  // namespace

bool TargetsNeedSysnative() {
  BOOL wow64 = FALSE;
  return ::IsWow64Process(::GetCurrentProcess(), &wow64) && wow64;
}

void DeadShortcuts(const TaskContext& context) {
  context.Record([&] { context.totals.byteTotal.set(0.0f); });
  const ScopedComInit com;
  // The measuring walk reads targets as they stand.
  const ShortcutWalk walk{context, context.erasing() && TargetsNeedSysnative()};
  // The Start Menu of all users, the public desktop, then the whole profile.
  // Each is walked only when no link leads to it from its base folder.
  const std::wstring drive = WindowsDrive();
  const std::wstring startMenu = drive + L":\\ProgramData\\Microsoft\\Windows\\Start Menu\\";
  if (!drive.empty() && ReachedWithoutLinks(context.io, drive + L":\\", startMenu)) walk.Walk(startMenu);
  if (context.stopped()) return;
  const std::wstring profile = ShellFolderPath(CSIDL_PROFILE);
  if (profile.empty()) return;
  const std::wstring publicDesktop = ParentOf(profile) + L"\\Public\\Desktop";
  if (ReachedWithoutLinks(context.io, ParentOf(profile), publicDesktop)) walk.Walk(publicDesktop);
  if (context.stopped()) return;
  walk.Walk(profile);
}

}  // namespace scourel
