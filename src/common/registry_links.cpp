#include "common/registry_links.h"

#include <vector>

#include "common/registry_paths.h"

namespace scourel {

namespace {

constexpr REGSAM kViewBits = KEY_WOW64_32KEY | KEY_WOW64_64KEY;
constexpr REGSAM kTreeAccess = DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE;

using NtDeleteKeyFn = LONG(WINAPI*)(HANDLE);
using NtStatusToErrorFn = ULONG(WINAPI*)(LONG);

template <typename Fn>
Fn NtdllProc(const char* name) {
  const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
  return ntdll ? reinterpret_cast<Fn>(reinterpret_cast<void*>(::GetProcAddress(ntdll, name))) : nullptr;
}

OpenedKey OpenOne(HKEY parent, const std::wstring& name, REGSAM access) {
  OpenedKey opened;
  opened.status = ::RegOpenKeyExW(parent, name.c_str(), REG_OPTION_OPEN_LINK, access, opened.key.put());
  if (opened.status != ERROR_SUCCESS) opened.key.reset();
  return opened;
}

}  // namespace

bool IsRegistryLink(HKEY key) {
  DWORD type = REG_NONE;
  return ::RegQueryValueExW(key, L"SymbolicLinkValue", nullptr, &type, nullptr, nullptr) == ERROR_SUCCESS &&
         type == REG_LINK;
}

UnfollowedKey OpenRegKeyUnfollowed(HKEY root, const std::wstring& path, REGSAM access) {
  const REGSAM view = access & kViewBits;
  UnfollowedKey result;
  OpenedKey current;
  std::size_t from = 0;
  for (;;) {
    const std::size_t slash = path.find(L'\\', from);
    const std::wstring name = path.substr(from, slash == std::wstring::npos ? std::wstring::npos : slash - from);
    const bool last = slash == std::wstring::npos || path.find_first_not_of(L'\\', slash) == std::wstring::npos;
    if (!name.empty() || last) {
      OpenedKey next = OpenOne(current ? current.get() : root, name,
                               last ? access | KEY_QUERY_VALUE : KEY_QUERY_VALUE | view);
      if (!next) {
        result.opened.status = next.status;
        return result;
      }
      result.isLink = IsRegistryLink(next.get());
      if (!last && result.isLink) {
        result.opened.status = ERROR_CANT_RESOLVE_FILENAME;
        return result;
      }
      current = std::move(next);
    }
    if (last) break;
    from = slash + 1;
  }
  result.opened = std::move(current);
  return result;
}

OpenedKey OpenRegKeyWithoutLinks(HKEY root, const std::wstring& path, REGSAM access) {
  UnfollowedKey unfollowed = OpenRegKeyUnfollowed(root, path, access);
  if (!unfollowed.isLink) return std::move(unfollowed.opened);
  OpenedKey refused;
  refused.status = ERROR_CANT_RESOLVE_FILENAME;
  return refused;
}

std::error_code DeleteOpenedKey(HKEY key) {
  static const auto deleteKey = NtdllProc<NtDeleteKeyFn>("NtDeleteKey");
  static const auto toError = NtdllProc<NtStatusToErrorFn>("RtlNtStatusToDosError");
  if (deleteKey == nullptr || toError == nullptr) return Win32Error(ERROR_PROC_NOT_FOUND);
  const LONG status = deleteKey(key);
  return status == 0 ? std::error_code() : Win32Error(toError(status));
}

std::error_code DeleteKeyTreeUnfollowed(HKEY root, const std::wstring& path, REGSAM view) {
  UnfollowedKey top = OpenRegKeyUnfollowed(root, path, kTreeAccess | view);
  if (!top.opened) return top.opened.error();
  if (top.isLink) return DeleteOpenedKey(top.opened.get());
  // Each level keeps its key and how many of its subkeys stayed behind, so a
  // key that cannot go is stepped over rather than tried forever.
  struct Level {
    UniqueRegKey key;
    DWORD kept = 0;
  };
  std::vector<Level> levels;
  levels.push_back({std::move(top.opened.key)});
  std::error_code result;
  while (!levels.empty()) {
    Level& level = levels.back();
    const std::wstring child = EnumSubkeyName(level.key.get(), level.kept);
    if (child.empty()) {
      result = DeleteOpenedKey(level.key.get());
      levels.pop_back();
      if (result && !levels.empty()) ++levels.back().kept;
      continue;
    }
    UnfollowedKey next = OpenRegKeyUnfollowed(level.key.get(), child, kTreeAccess | view);
    if (!next.opened || (next.isLink && DeleteOpenedKey(next.opened.get()))) {
      ++level.kept;
    } else if (!next.isLink) {
      levels.push_back({std::move(next.opened.key)});
    }
  }
  return result;
}

}  // namespace scourel
