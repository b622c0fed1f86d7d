// Shared by the Windows-traces tests: shortcuts, Recycle Bin items, history
// lists and a registry canary that every clean must leave as it was.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/com_init.h"
#include "common/known_folders.h"
#include "common/unique_handle.h"
#include "support/fixtures.h"
#include "support/registry_seed.h"
#include "support/task_fixture.h"

namespace scourel::test {

// Saves a shell link to `target` and checks that it reads back unchanged.
inline bool CreateShortcut(const std::wstring& linkPath, const std::wstring& target) {
  const ScopedComInit com;
  ComPtr<IShellLinkW> link;
  ComPtr<IPersistFile> file;
  wchar_t back[1024] = {};
  return SUCCEEDED(::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                      link.put_void())) &&
         SUCCEEDED(link->SetPath(target.c_str())) &&
         SUCCEEDED(link->QueryInterface(IID_IPersistFile, file.put_void())) &&
         SUCCEEDED(file->Save(linkPath.c_str(), TRUE)) && SUCCEEDED(file->Load(linkPath.c_str(), STGM_READ)) &&
         SUCCEEDED(link->GetPath(back, 1024, nullptr, 2)) && target == back;
}

// Writes `count` files of `size` bytes in `folder` and deletes them to the Recycle Bin.
inline bool PlantRecycledFiles(const std::wstring& folder, int count, std::size_t size) {
  MakeDirs(folder);
  std::wstring from;  // double-zero-terminated list
  for (int i = 0; i < count; ++i) {
    const std::wstring path = JoinPath(folder, L"recycled" + std::to_wstring(i) + L".bin");
    WriteFileBytes(path, std::string(size, static_cast<char>('a' + i)));
    from += path + L'\0';
  }
  from += L'\0';
  SHFILEOPSTRUCTW op{};
  op.wFunc = FO_DELETE;
  op.pFrom = from.c_str();
  op.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
  return ::SHFileOperationW(&op) == 0 && !op.fAnyOperationsAborted;
}

// The items SHQueryRecycleBinW reports for C:.
inline std::int64_t BinItems() {
  SHQUERYRBINFO info{sizeof info, 0, 0};
  return SUCCEEDED(::SHQueryRecycleBinW(L"C:\\", &info)) ? info.i64NumItems : -1;
}

inline constexpr wchar_t kExplorerKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
inline const std::wstring kRunMruKey = std::wstring(kExplorerKey) + L"\\RunMRU";
inline const std::wstring kStreamMruKey = std::wstring(kExplorerKey) + L"\\StreamMRU";
inline const std::wstring kTypedPathsKey = std::wstring(kExplorerKey) + L"\\TypedPaths";
inline const std::wstring kWordWheelKey = std::wstring(kExplorerKey) + L"\\WordWheelQuery";
inline const std::wstring kHistoryKeys[] = {kRunMruKey, kStreamMruKey, kTypedPathsKey, kWordWheelKey};

// Files of known sizes, as the junk walks meet them in temp, log and report folders.
using SizedFiles = std::vector<std::pair<std::wstring, std::size_t>>;
inline void PlantSized(const SizedFiles& files, char fill) {
  for (const auto& [path, size] : files) WriteFileBytes(path, std::string(size, fill));
}
inline void MakeReadOnly(const std::wstring& path) { ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY); }
inline UniqueHandleKernel HoldWithoutSharing(const std::wstring& path) {
  return UniqueHandleKernel(::CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

// Creates the key afresh with the values, in this order.
inline void PlantList(const std::wstring& path, const std::vector<std::pair<std::wstring, std::wstring>>& values) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
  for (const auto& [name, text] : values) {
    ::RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), REG_SZ, text.c_str(),
                      static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
}

// Removes the history lists on both ends, and beside them plants a key of its
// own, a sibling of the lists and a value of their parent named like one: no
// clean may touch those.
class RegistryCanary {
 public:
  RegistryCanary() {
    RemoveLists();
    for (const auto& [path, name] : places_) planted_.Plant(HKEY_CURRENT_USER, path, name, L"canary");
  }
  ~RegistryCanary() { RemoveLists(); }
  // Empty when everything is still there.
  std::wstring Damage() const {
    std::wstring damage;
    for (const auto& [path, name] : places_) {
      wchar_t text[64] = {};
      DWORD bytes = sizeof text;
      if (::RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr, text, &bytes) ||
          std::wstring(text) != L"canary") {
        damage += path + L"\\" + name + L"; ";
      }
    }
    return damage;
  }

 private:
  static void RemoveLists() {
    for (const std::wstring& path : kHistoryKeys) ::RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
  }
  ScratchKey scratch_{L"pctraces-canary"};
  const std::vector<std::pair<std::wstring, std::wstring>> places_{
      {scratch_.path(), L"keep"}, {scratch_.path() + L"\\sub", L"keep"}, {kRunMruKey + L"Keep", L"keep"},
      {kExplorerKey, L"RunMRU"}};
  PlantedRegistry planted_;
};

}  // namespace scourel::test
