#include "support/fixtures.h"

#include <cstdlib>
#include <stdexcept>

#include "common/win.h"

namespace scourel::test {

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) {
  if (!folder.empty() && folder.back() == L'\\') return folder + name;
  return folder + L"\\" + name;
}

bool PathExists(const std::wstring& path) {
  return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void MakeDirs(const std::wstring& path) {
  for (size_t i = 3; i <= path.size(); ++i) {
    if (i == path.size() || path[i] == L'\\') ::CreateDirectoryW(path.substr(0, i).c_str(), nullptr);
  }
}

void WriteFileBytes(const std::wstring& path, const std::string& bytes) {
  UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw std::runtime_error("cannot create test file");
  DWORD written = 0;
  ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::string ReadFileBytes(const std::wstring& path) {
  UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return {};
  std::string bytes;
  char buffer[65536];
  DWORD read = 0;
  while (::ReadFile(file.get(), buffer, sizeof buffer, &read, nullptr) && read > 0) bytes.append(buffer, read);
  return bytes;
}

void RemoveTree(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return;
  ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL | (attributes & FILE_ATTRIBUTE_DIRECTORY));
  if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
    ::DeleteFileW(path.c_str());
    return;
  }
  // A link to a folder goes, not what it points at.
  if (!(attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
    WIN32_FIND_DATAW entry;
    UniqueFindHandle find(::FindFirstFileW(JoinPath(path, L"*").c_str(), &entry));
    if (find) {
      do {
        const std::wstring name = entry.cFileName;
        if (name != L"." && name != L"..") RemoveTree(JoinPath(path, name));
      } while (::FindNextFileW(find.get(), &entry));
    }
  }
  if (!::RemoveDirectoryW(path.c_str()) && !::DeleteFileW(path.c_str()) &&
      (attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
    RemoveUnixLink(path);
  }
}

ScratchDir::ScratchDir(const std::wstring& name) : path_(L"C:\\scourel-tests\\" + name) {
  RemoveTree(path_);
  MakeDirs(path_);
}

ScratchDir::~ScratchDir() { RemoveTree(path_); }

CanaryTree::CanaryTree(const std::wstring& root) : root_(root) {
  files_ = {
      {L"canary.txt", "canary: must survive"},
      {L"sub\\keep.log", std::string(5000, 'k')},
      {L"sub\\deeper\\keep.tmp", "tmp canary"},
      {L"shortcut.lnk", "not really a shortcut"},
  };
  for (const auto& [name, bytes] : files_) {
    const std::wstring path = JoinPath(root_, name);
    MakeDirs(path.substr(0, path.rfind(L'\\')));
    WriteFileBytes(path, bytes);
  }
}

std::wstring CanaryTree::Damage() const {
  for (const auto& [name, bytes] : files_) {
    const std::wstring path = JoinPath(root_, name);
    if (!PathExists(path)) return L"missing: " + path;
    if (ReadFileBytes(path) != bytes) return L"changed: " + path;
  }
  return L"";
}

namespace {

std::string Narrow(const std::wstring& text) {
  std::string out;
  for (wchar_t c : text) out += static_cast<char>(c);
  return out;
}

std::string EnvNarrow(const wchar_t* name) {
  wchar_t value[4096];
  const DWORD n = ::GetEnvironmentVariableW(name, value, 4096);
  return n > 0 && n < 4096 ? Narrow(std::wstring(value, n)) : std::string();
}

// Runs a host command: Wine starts a Unix program handed to CreateProcess
// natively, but does not let us wait for it, so the caller polls for its effect.
bool RunUnix(const std::wstring& command, const std::wstring& expectedPath) {
  std::wstring line = L"start.exe /unix /bin/sh -c \"" + command + L"\"";
  if (RunAndWait(line) != 0) return false;
  for (int i = 0; i < 200; ++i) {
    if (PathExists(expectedPath)) return true;
    ::Sleep(25);
  }
  return false;
}

std::wstring Widen(const std::string& text) { return std::wstring(text.begin(), text.end()); }

}  // namespace

std::string UnixPath(const std::wstring& windowsPath) {
  std::string prefix = EnvNarrow(L"WINEPREFIX");
  std::string rest = Narrow(windowsPath);
  if (rest.size() >= 2 && (rest[0] == 'C' || rest[0] == 'c') && rest[1] == ':') rest = "/drive_c" + rest.substr(2);
  for (char& c : rest) {
    if (c == '\\') c = '/';
  }
  return prefix + rest;
}

bool MakeUnixSymlink(const std::wstring& target, const std::wstring& link) {
  return RunUnix(L"ln -s '" + Widen(UnixPath(target)) + L"' '" + Widen(UnixPath(link)) + L"'", link);
}

void RemoveUnixLink(const std::wstring& link) {
  if (!PathExists(link)) return;
  const std::string unix = UnixPath(link);
  RunAndWait(L"start.exe /unix /bin/rm -f \"" + std::wstring(unix.begin(), unix.end()) + L"\"");
  // start.exe does not wait for a Unix program: wait for its effect.
  for (int i = 0; i < 200 && PathExists(link); ++i) ::Sleep(25);
}

bool MakeUnixHardLink(const std::wstring& existing, const std::wstring& link) {
  return RunUnix(L"ln '" + Widen(UnixPath(existing)) + L"' '" + Widen(UnixPath(link)) + L"'", link);
}

ScratchKey::ScratchKey(const std::wstring& name) : path_(L"Software\\ScourelTests\\" + name) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
  ::RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key_.put(), nullptr);
}

ScratchKey::~ScratchKey() {
  key_.reset();
  ::RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
  // The shared parent goes with the last scratch key: an empty vendor key is
  // what the registry scan looks for.
  ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\ScourelTests");
}

int RunAndWait(const std::wstring& commandLine, unsigned timeoutMs) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info{};
  std::wstring mutableLine = commandLine;
  if (!::CreateProcessW(nullptr, mutableLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &info)) {
    return -1;
  }
  UniqueHandleKernel process(info.hProcess);
  UniqueHandleKernel thread(info.hThread);
  if (::WaitForSingleObject(process.get(), timeoutMs) != WAIT_OBJECT_0) {
    ::TerminateProcess(process.get(), 1);
    return -1;
  }
  DWORD code = 0;
  ::GetExitCodeProcess(process.get(), &code);
  return static_cast<int>(code);
}

void CloseRunningWorkers() {
  for (int i = 0; i < 50; ++i) {
    HWND stray = ::FindWindowW(L"SCOUREL_CLASS", nullptr);
    if (!stray) return;
    DWORD pid = 0;
    ::GetWindowThreadProcessId(stray, &pid);
    UniqueHandleKernel process(::OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, pid));
    ::PostMessageW(stray, WM_CLOSE, 0, 0);
    if (process && ::WaitForSingleObject(process.get(), 2000) != WAIT_OBJECT_0) ::TerminateProcess(process.get(), 1);
    ::Sleep(20);
  }
}

std::wstring ProgramDir() {
  wchar_t path[MAX_PATH] = {};
  ::GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring dir = path;
  return dir.substr(0, dir.rfind(L'\\'));
}

}  // namespace scourel::test
