#include "common/known_folders.h"

namespace scourel {

std::wstring ShellFolderPath(int csidl) {
  wchar_t path[MAX_PATH] = {};
  if (FAILED(::SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path))) return {};
  path[MAX_PATH - 1] = L'\0';
  return path;
}

std::wstring SpecialFolder(int csidl) {
  wchar_t path[MAX_PATH] = {};
  if (!::SHGetSpecialFolderPathW(nullptr, path, csidl, FALSE)) return {};
  path[MAX_PATH - 1] = L'\0';
  return path;
}

std::wstring WindowsDirectory() {
  wchar_t buffer[MAX_PATH] = {};
  const UINT length = ::GetWindowsDirectoryW(buffer, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return {};
  return std::wstring(buffer, length);
}

std::wstring WindowsDirectoryWithBackslash() {
  const std::wstring windows = WindowsDirectory();
  return windows.empty() ? windows : WithBackslash(windows);
}

std::wstring TempFolder() {
  wchar_t buffer[MAX_PATH + 2] = {};
  const DWORD length = ::GetTempPathW(MAX_PATH + 2, buffer);
  return length > 0 && length <= MAX_PATH + 1 ? std::wstring(buffer, length) : std::wstring();
}

std::wstring WindowsDrive() {
  const std::wstring windows = WindowsDirectory();
  const auto colon = windows.find(L':');
  return colon == std::wstring::npos ? std::wstring() : windows.substr(0, colon);
}

std::wstring WithBackslash(std::wstring folder) {
  if (folder.empty() || folder.back() != L'\\') folder += L'\\';
  return folder;
}

}  // namespace scourel
