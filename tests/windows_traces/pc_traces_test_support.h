// Shared by the PC-traces tests: planting history lists and a registry
// canary that every clean must leave as it was.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "common/unique_handle.h"
#include "host/task_totals.h"
#include "support/fixtures.h"

namespace scourel::test {

inline constexpr wchar_t kExplorerKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
inline const std::wstring kRunMruKey = std::wstring(kExplorerKey) + L"\\RunMRU";
inline const std::wstring kStreamMruKey = std::wstring(kExplorerKey) + L"\\StreamMRU";
inline const std::wstring kTypedPathsKey = std::wstring(kExplorerKey) + L"\\TypedPaths";
inline const std::wstring kWordWheelKey = std::wstring(kExplorerKey) + L"\\WordWheelQuery";

// Writes the file, making its folder first.
inline void PlantFile(const std::wstring& path, const std::string& bytes) {
  MakeDirs(path.substr(0, path.rfind(L'\\')));
  WriteFileBytes(path, bytes);
}

// Wine cannot delete a host-side folder link from inside; the host can.
inline void ResetPcCounters() {
  for (auto& counter : g_totals.pcTraces) counter.set(0);
  g_totals.byteTotal.set(0.0f);
}

inline bool KeyPresent(const std::wstring& path) {
  UniqueRegKey key;
  return ::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, key.put()) == ERROR_SUCCESS;
}

inline void SetValue(const std::wstring& path, const std::wstring& name, DWORD type, const void* data,
                     DWORD bytes) {
  UniqueRegKey key;
  ::RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(), nullptr);
  ::RegSetValueExW(key.get(), name.c_str(), 0, type, static_cast<const BYTE*>(data), bytes);
}

inline void SetText(const std::wstring& path, const std::wstring& name, const std::wstring& text) {
  SetValue(path, name, REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

// Creates the key afresh with the values, in this order.
inline void PlantList(const std::wstring& path, const std::vector<std::pair<std::wstring, std::wstring>>& values) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
  UniqueRegKey key;
  ::RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(), nullptr);
  for (const auto& [name, text] : values) SetText(path, name, text);
}

inline void RemoveHistoryKeys() {
  for (const std::wstring* path : {&kRunMruKey, &kStreamMruKey, &kTypedPathsKey, &kWordWheelKey}) {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, path->c_str());
  }
}

// Keys and values next to the history lists, and a key of its own, that no
// clean may touch.
class RegistryCanary {
 public:
  RegistryCanary() : scratch_(L"pctraces-canary") {
    SetText(scratch_.path(), L"keep", L"canary");
    SetText(scratch_.path() + L"\\sub", L"keep", L"canary");
    SetText(kSiblingKey, L"keep", L"canary");
    // A value of the parent named like a history key.
    SetText(kExplorerKey, L"RunMRU", L"canary");
  }
  ~RegistryCanary() {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kSiblingKey);
    UniqueRegKey key;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, kExplorerKey, 0, KEY_ALL_ACCESS, key.put()) == ERROR_SUCCESS) {
      ::RegDeleteValueW(key.get(), L"RunMRU");
    }
  }
  RegistryCanary(const RegistryCanary&) = delete;
  RegistryCanary& operator=(const RegistryCanary&) = delete;

  // Empty when everything is still there.
  std::wstring Damage() const {
    std::wstring damage;
    const std::pair<std::wstring, std::wstring> expected[] = {
        {scratch_.path(), L"keep"}, {scratch_.path() + L"\\sub", L"keep"}, {kSiblingKey, L"keep"},
        {kExplorerKey, L"RunMRU"}};
    for (const auto& [path, name] : expected) {
      wchar_t text[64] = {};
      DWORD bytes = sizeof text;
      if (::RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr, text, &bytes) !=
              ERROR_SUCCESS ||
          std::wstring(text) != L"canary") {
        damage += path + L"\\" + name + L"; ";
      }
    }
    return damage;
  }

 private:
  static constexpr wchar_t kSiblingKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RunMRUKeep";
  ScratchKey scratch_;
};

}  // namespace scourel::test
