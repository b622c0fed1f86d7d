// What a run must leave exactly as it was: every file below some folders
// (attributes, size, creation and write times, a hash of its bytes), every
// folder, and every key and value below some registry keys. Compare two with
// testing::ContainerEq, which names what differs.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "common/unique_handle.h"
#include "support/fixtures.h"

namespace scourel::test {

using Snapshot = std::map<std::wstring, std::string>;

inline std::string Hash(const std::string& bytes) { return std::to_string(std::hash<std::string>{}(bytes)); }

inline void SnapshotFolder(const std::wstring& folder, Snapshot& out) {
  WIN32_FIND_DATAW entry;
  const UniqueFindHandle find(::FindFirstFileW((folder + L"\\*").c_str(), &entry));
  if (!find) return;
  do {
    const std::wstring name = entry.cFileName;
    if (name == L"." || name == L"..") continue;
    const std::wstring path = folder + L"\\" + name;
    const bool folderEntry = entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
    const bool link = entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT;
    std::string line = std::to_string(entry.dwFileAttributes) + " " + std::to_string(entry.nFileSizeLow) + " " +
                       std::to_string(entry.ftCreationTime.dwLowDateTime) + " " +
                       std::to_string(entry.ftLastWriteTime.dwLowDateTime);
    if (!folderEntry && !link) line += " " + Hash(ReadFileBytes(path));
    out[path] = line;
    if (folderEntry && !link) SnapshotFolder(path, out);
  } while (::FindNextFileW(find.get(), &entry));
}

inline void SnapshotKey(HKEY root, const std::wstring& path, Snapshot& out) {
  HKEY raw = nullptr;
  if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &raw) != ERROR_SUCCESS) return;
  const UniqueRegKey key(raw);
  out[L"key " + path] = "";
  for (DWORD i = 0;; ++i) {
    wchar_t name[16384];
    DWORD chars = 16384, type = 0, bytes = 0;
    if (::RegEnumValueW(raw, i, name, &chars, nullptr, &type, nullptr, &bytes) != ERROR_SUCCESS) break;
    std::string data(bytes, '\0');
    chars = 16384;
    ::RegEnumValueW(raw, i, name, &chars, nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &bytes);
    out[L"value " + path + L"\\" + name] = std::to_string(type) + " " + Hash(data);
  }
  for (DWORD i = 0;; ++i) {
    wchar_t name[256];
    DWORD chars = 256;
    if (::RegEnumKeyExW(raw, i, name, &chars, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    SnapshotKey(root, path + L"\\" + name, out);
  }
}

inline Snapshot TakeSnapshot(const std::vector<std::wstring>& folders,
                             const std::vector<std::pair<HKEY, std::wstring>>& keys) {
  Snapshot out;
  for (const std::wstring& folder : folders) SnapshotFolder(folder, out);
  for (const auto& [root, path] : keys) SnapshotKey(root, path, out);
  return out;
}

}  // namespace scourel::test
