#include "wipe/fill_names.h"

#include <cwctype>

#include "common/folder_entry.h"
#include "common/unique_handle.h"
#include "common/win.h"

namespace scourel {

namespace {

std::wstring Root(wchar_t letter) { return std::wstring{letter, L':', L'\\'}; }

// "XE8AQU.tmp" or "XE8AQU" digits ".tmp", whatever the case.
bool IsFillFileName(const std::wstring& name) {
  constexpr std::wstring_view stem = L"XE8AQU";
  constexpr std::wstring_view extension = L".tmp";
  if (name.size() < stem.size() + extension.size()) return false;
  if (::CompareStringOrdinal(name.c_str(), static_cast<int>(stem.size()), stem.data(), static_cast<int>(stem.size()),
                             TRUE) != CSTR_EQUAL) {
    return false;
  }
  const std::size_t end = name.size() - extension.size();
  if (::CompareStringOrdinal(name.c_str() + end, -1, extension.data(), static_cast<int>(extension.size()), TRUE) !=
      CSTR_EQUAL) {
    return false;
  }
  for (std::size_t i = stem.size(); i < end; ++i) {
    if (!std::iswdigit(name[i])) return false;
  }
  return true;
}

}  // namespace

std::wstring FillFilePath(wchar_t letter, std::uint32_t index) {
  return Root(letter) + L"XE8AQU" + (index == 0 ? L"" : std::to_wstring(index)) + L".tmp";
}

std::wstring FillFolderPath(wchar_t letter) { return Root(letter) + L"$$XE8AQU"; }

std::uint32_t RemoveFolderTree(const std::wstring& folder) {
  std::uint32_t removed = 0;
  WIN32_FIND_DATAW found{};
  UniqueFindHandle find(::FindFirstFileW((folder + L"\\*").c_str(), &found));
  if (find) {
    do {
      if (IsDotEntry(found)) continue;
      const std::wstring path = folder + L"\\" + found.cFileName;
      if (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) {
        ::SetFileAttributesW(path.c_str(), found.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
      }
      const bool link = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && !link) {
        removed += RemoveFolderTree(path);
      } else if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
        ::RemoveDirectoryW(path.c_str());  // the link itself, never what it points to
      } else if (::DeleteFileW(path.c_str())) {
        ++removed;
      }
    } while (::FindNextFileW(find.get(), &found));
  }
  find.reset();
  ::RemoveDirectoryW(folder.c_str());
  return removed;
}

std::uint32_t RemoveFillLeftovers(wchar_t letter) {
  std::uint32_t removed = 0;
  WIN32_FIND_DATAW found{};
  UniqueFindHandle find(::FindFirstFileW((Root(letter) + L"XE8AQU*.tmp").c_str(), &found));
  if (find) {
    do {
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) || !IsFillFileName(found.cFileName)) continue;
      if (::DeleteFileW((Root(letter) + found.cFileName).c_str())) ++removed;
    } while (::FindNextFileW(find.get(), &found));
  }
  const std::wstring folder = FillFolderPath(letter);
  const DWORD attributes = ::GetFileAttributesW(folder.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) &&
      !(attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
    removed += RemoveFolderTree(L"\\\\?\\" + folder);  // the tree can be deeper than MAX_PATH
  }
  return removed;
}

}  // namespace scourel
