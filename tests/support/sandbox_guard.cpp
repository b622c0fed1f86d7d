#include "support/sandbox_guard.h"

#include <cwctype>

#include "common/win.h"
#include "support/fixtures.h"

namespace scourel::test {

namespace {

std::wstring Env(const wchar_t* name) {
  wchar_t value[4096];
  const DWORD n = ::GetEnvironmentVariableW(name, value, 4096);
  return n > 0 && n < 4096 ? std::wstring(value, n) : std::wstring();
}

}  // namespace

std::wstring SandboxProblem() {
  // Wine passes the Unix environment through; the sandbox script sets these.
  const std::wstring sandbox = Env(L"SCOUREL_SANDBOX");
  const std::wstring home = Env(L"SCOUREL_UNIX_HOME");
  const std::wstring prefix = Env(L"WINEPREFIX");
  if (sandbox.empty() || prefix.empty()) return L"not started through the build's wine-run (SCOUREL_SANDBOX unset)";
  if (home.rfind(sandbox, 0) != 0) return L"HOME is not inside the sandbox: " + home;
  if (prefix.rfind(sandbox, 0) != 0) return L"WINEPREFIX is not inside the sandbox: " + prefix;
  if (Env(L"XDG_DATA_HOME").rfind(sandbox, 0) != 0) return L"XDG_DATA_HOME is not inside the sandbox";

  // No drive may reach "/" of the host.
  wchar_t drives[512] = {};
  ::GetLogicalDriveStringsW(511, drives);
  for (const wchar_t* d = drives; *d; d += wcslen(d) + 1) {
    const std::wstring root = d;
    if (std::towlower(root[0]) == L'z') return L"drive z: is mapped";
    if (PathExists(root + L"proc\\self") || PathExists(root + L"etc\\passwd")) return L"drive " + root + L" reaches /";
  }
  return L"";
}

}  // namespace scourel::test
