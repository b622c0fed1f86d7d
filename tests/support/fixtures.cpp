#include "support/fixtures.h"

#include <algorithm>
#include <cstring>
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
  MakeDirs(path.substr(0, path.rfind(L'\\')));
  UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw std::runtime_error("cannot create test file");
  DWORD written = 0;
  ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::string ReadFileBytes(const std::wstring& path, std::size_t limit) {
  // Shared for delete too: a worker may be shredding the file as we read it.
  UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return {};
  std::string bytes;
  char buffer[65536];
  DWORD read = 0;
  while (bytes.size() < limit) {
    const auto want = static_cast<DWORD>(std::min(sizeof buffer, limit - bytes.size()));
    if (!::ReadFile(file.get(), buffer, want, &read, nullptr) || read == 0) break;
    bytes.append(buffer, read);
  }
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

CanaryTree::CanaryTree(const std::wstring& root) : root_(root) {
  files_ = {
      {L"canary.txt", "canary: must survive"},
      {L"sub\\keep.log", std::string(5000, 'k')},
      {L"sub\\deeper\\keep.tmp", "tmp canary"},
      {L"shortcut.lnk", "not really a shortcut"},
  };
  for (const auto& [name, bytes] : files_) {
    WriteFileBytes(JoinPath(root_, name), bytes);
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

std::wstring UnixPath(const std::wstring& windowsPath) {
  // Wine's own mapping knows the case each folder has on the host; empty
  // (and every host command on it fails) where it maps nothing.
  using ToUnix = char* (*)(const wchar_t*);
  const auto toUnix = reinterpret_cast<ToUnix>(
      reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  char* unix = toUnix ? toUnix(windowsPath.c_str()) : nullptr;
  if (!unix) return L"";
  std::wstring path(unix, unix + std::strlen(unix));
  ::HeapFree(::GetProcessHeap(), 0, unix);
  return path;
}

// Wine starts a Unix program handed to start.exe natively but cannot wait
// for it, so we wait for its effect on `path`.
bool RunUnix(const std::wstring& command, const std::wstring& path, bool appears, unsigned timeoutMs) {
  if (RunAndWait(L"start.exe /unix /bin/sh -c \"" + command + L"\"") != 0) return false;
  for (unsigned i = 0; i < timeoutMs / 25 && PathExists(path) != appears; ++i) ::Sleep(25);
  return PathExists(path) == appears;
}

namespace {

bool Link(const wchar_t* how, const std::wstring& target, const std::wstring& link) {
  return RunUnix(L"ln " + std::wstring(how) + L"'" + UnixPath(target) + L"' '" + UnixPath(link) + L"'", link, true);
}

}  // namespace

bool MakeUnixSymlink(const std::wstring& target, const std::wstring& link) { return Link(L"-s ", target, link); }
bool MakeUnixHardLink(const std::wstring& existing, const std::wstring& link) { return Link(L"", existing, link); }

bool MakeRegistryLink(HKEY root, const std::wstring& path, const std::wstring& machinePath) {
  UniqueRegKey link;
  if (::RegCreateKeyExW(root, path.c_str(), 0, nullptr, REG_OPTION_CREATE_LINK, KEY_ALL_ACCESS | KEY_CREATE_LINK,
                        nullptr, link.put(), nullptr) != ERROR_SUCCESS) {
    return false;
  }
  const std::wstring target = L"\\Registry\\Machine\\" + machinePath;  // no closing null
  return ::RegSetValueExW(link.get(), L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(target.data()),
                          static_cast<DWORD>(target.size() * sizeof(wchar_t))) == ERROR_SUCCESS;
}

void RemoveUnixLink(const std::wstring& link) {
  if (PathExists(link)) RunUnix(L"rm -f '" + UnixPath(link) + L"'", link, false);
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

UniqueHandleKernel StartProgram(std::wstring commandLine, HANDLE out, HANDLE err) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  if (out || err) startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = out;
  startup.hStdError = err;
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, out || err, 0, nullptr, nullptr, &startup,
                        &info)) {
    return {};
  }
  const UniqueHandleKernel thread(info.hThread);
  return UniqueHandleKernel(info.hProcess);
}

int WaitAndEnd(HANDLE process, unsigned timeoutMs) {
  DWORD code = 0;
  if (::WaitForSingleObject(process, timeoutMs) == WAIT_OBJECT_0 && ::GetExitCodeProcess(process, &code)) {
    return static_cast<int>(code);
  }
  ::TerminateProcess(process, 1);
  ::WaitForSingleObject(process, 5000);
  return -1;
}

int RunAndWait(const std::wstring& commandLine, unsigned timeoutMs) {
  const UniqueHandleKernel process = StartProgram(commandLine);
  return process ? WaitAndEnd(process.get(), timeoutMs) : -1;
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

std::wstring InstallCopy(const std::wstring& root, const std::wstring& program) {
  MakeDirs(root + L"\\bin");
  const std::wstring exe = root + L"\\bin\\scourel.exe";
  ::CopyFileW((ProgramDir() + L"\\" + program).c_str(), exe.c_str(), FALSE);
  return exe;
}

}  // namespace scourel::test
