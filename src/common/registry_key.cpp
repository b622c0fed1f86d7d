#include "common/registry_key.h"

namespace scourel {

OpenedKey OpenRegKey(HKEY root, const std::wstring& path, REGSAM access) {
  OpenedKey opened;
  HKEY key = nullptr;
  opened.status = ::RegOpenKeyExW(root, path.c_str(), 0, access, &key);
  // Only a successful open hands out a handle of ours to close.
  if (opened.status == ERROR_SUCCESS) opened.key.reset(key);
  return opened;
}

KeyCounts CountsOf(HKEY key) {
  KeyCounts counts;
  if (::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &counts.subkeys, nullptr, nullptr, &counts.values, nullptr,
                         nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
    return {};
  }
  return counts;
}

}  // namespace scourel
