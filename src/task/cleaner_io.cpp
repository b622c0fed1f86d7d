#include "task/cleaner_io.h"

#include "common/final_path.h"
#include "common/registry_links.h"
#include "common/status.h"
#include "common/unique_handle.h"
#include "task/file_probe.h"

namespace scourel {

namespace {

std::error_code Checked(BOOL ok) { return ok ? std::error_code() : LastError(); }
std::error_code Registry(LSTATUS status) { return Win32Error(static_cast<DWORD>(status)); }

}  // namespace

void CleanerIo::ListFolder(const std::wstring& pattern, const std::function<bool(const WIN32_FIND_DATAW&)>& visit) {
  WIN32_FIND_DATAW entry;
  const UniqueFindHandle find(::FindFirstFileW(pattern.c_str(), &entry));
  if (!find) return;
  while (visit(entry) && ::FindNextFileW(find.get(), &entry)) {
  }
}

std::error_code CleanerIo::RemoveFolder(const std::wstring& path) {
  return Checked(::RemoveDirectoryW(path.c_str()));
}

std::error_code CleanerIo::DeleteKeyTree(HKEY root, const std::wstring& subkey) {
  return DeleteKeyTreeUnfollowed(root, subkey, 0);
}

std::error_code CleanerIo::DeleteKey(HKEY root, const std::wstring& subkey, REGSAM view) {
  if (subkey.empty()) return DeleteOpenedKey(root);
  const UnfollowedKey key = OpenRegKeyUnfollowed(root, subkey, DELETE | view);
  return key.opened ? DeleteOpenedKey(key.opened.get()) : key.opened.error();
}

std::error_code CleanerIo::DeleteValue(HKEY key, const std::wstring& name) {
  return Registry(::RegDeleteValueW(key, name.c_str()));
}

std::error_code CleanerIo::SetValue(HKEY key, const std::wstring& name, DWORD type, const BYTE* data, DWORD bytes) {
  return Registry(::RegSetValueExW(key, name.c_str(), 0, type, data, bytes));
}

void CleanerIo::EmptyClipboard(HWND owner) {
  if (::OpenClipboard(owner)) {
    ::EmptyClipboard();
    ::CloseClipboard();
  }
}

void CleanerIo::EmptyRecycleBins() {
  ::SHEmptyRecycleBinW(nullptr, nullptr, SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND);
}

void CleanerIo::ClearRecentDocuments() { ::SHAddToRecentDocs(0, nullptr); }

std::error_code CleanerIo::DeleteUrlCacheEntry(const wchar_t* url) { return Checked(::DeleteUrlCacheEntryW(url)); }

std::wstring CleanerIo::FinalPathOf(const std::wstring& path) { return scourel::FinalPathOf(path); }

bool CleanerIo::ProbeReadWrite(const std::wstring& path) { return ReadWriteProbe(path); }

void CleanerIo::EnterBrowserStep(protocol::Browser) {}

CleanerIo& SystemCleanerIo() {
  static CleanerIo io;
  return io;
}

}  // namespace scourel
