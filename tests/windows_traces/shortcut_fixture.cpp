#include "shortcut_fixture.h"

#include "common/unique_handle.h"
#include "host/task_totals.h"
#include "windows_traces/dead_shortcuts.h"

namespace scourel::test {

bool CreateShortcut(const std::wstring& linkPath, const std::wstring& target) {
  ::CoInitialize(nullptr);
  ComPtr<IShellLinkW> link;
  if (FAILED(::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                link.put_void()))) {
    return false;
  }
  if (FAILED(link->SetPath(target.c_str()))) return false;
  ComPtr<IPersistFile> file;
  if (FAILED(link->QueryInterface(IID_IPersistFile, file.put_void()))) return false;
  return SUCCEEDED(file->Save(linkPath.c_str(), TRUE));
}

std::wstring ShortcutTarget(const std::wstring& linkPath) {
  ::CoInitialize(nullptr);
  ComPtr<IShellLinkW> link;
  if (FAILED(::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                link.put_void()))) {
    return {};
  }
  ComPtr<IPersistFile> file;
  if (FAILED(link->QueryInterface(IID_IPersistFile, file.put_void()))) return {};
  if (FAILED(file->Load(linkPath.c_str(), STGM_READ))) return {};
  wchar_t buffer[1024] = {};
  if (FAILED(link->GetPath(buffer, 1024, nullptr, 2))) return {};
  return buffer;
}

std::wstring ProfileDir() {
  wchar_t buffer[MAX_PATH] = {};
  ::SHGetFolderPathW(nullptr, CSIDL_PROFILE, nullptr, SHGFP_TYPE_CURRENT, buffer);
  return buffer;
}

std::wstring PublicDesktopDir() {
  const std::wstring profile = ProfileDir();
  return profile.substr(0, profile.rfind(L'\\')) + L"\\Public\\Desktop";
}

std::wstring WindowsDir() {
  wchar_t buffer[MAX_PATH] = {};
  ::GetWindowsDirectoryW(buffer, MAX_PATH);
  return buffer;
}

std::wstring CommonStartMenuDir() {
  return WindowsDir().substr(0, 1) + L":\\ProgramData\\Microsoft\\Windows\\Start Menu";
}

void CleanAwayExistingDeadShortcuts() {
  for (int i = 0; i < 3; ++i) {
    g_totals.junkSecond.set(0);
    CleanDeadShortcuts();
    if (g_totals.junkSecond.get() == 0) break;
  }
  g_totals.junkSecond.set(0);
  g_totals.byteTotal.set(0.0f);
}

}  // namespace scourel::test
