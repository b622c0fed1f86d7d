// A generated browser cache for the benchmarks: folders of 25 files of 100
// bytes, 50 folders to a parent, and its removal afterwards.
#pragma once

#include <string>

#include "common/unique_handle.h"

namespace scourel {

inline constexpr int kFilesPerFolder = 25;

inline void RemoveAll(const std::wstring& folder) {
  WIN32_FIND_DATAW entry;
  {
    const UniqueFindHandle find(::FindFirstFileW((folder + L"\\*").c_str(), &entry));
    if (find) {
      do {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = folder + L"\\" + name;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && !(entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
          RemoveAll(path);
        } else {
          ::DeleteFileW(path.c_str());
        }
      } while (::FindNextFileW(find.get(), &entry));
    }
  }
  ::RemoveDirectoryW(folder.c_str());
}

inline void MakeFolders(const std::wstring& path) {
  for (size_t i = 3; i <= path.size(); ++i) {
    if (i == path.size() || path[i] == L'\\') ::CreateDirectoryW(path.substr(0, i).c_str(), nullptr);
  }
}

// Folders [from, to) below root.
inline void PlantCacheTree(const std::wstring& root, int from, int to) {
  const std::string bytes(100, 'c');
  for (int f = from; f < to; ++f) {
    const std::wstring folder = root + L"\\" + std::to_wstring(f / 50) + L"\\f_" + std::to_wstring(f);
    MakeFolders(folder);
    for (int i = 0; i < kFilesPerFolder; ++i) {
      UniqueHandleKernel file(::CreateFileW((folder + L"\\data_" + std::to_wstring(i)).c_str(), GENERIC_WRITE, 0,
                                            nullptr, CREATE_ALWAYS, 0, nullptr));
      DWORD written = 0;
      ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    }
  }
}

}  // namespace scourel
