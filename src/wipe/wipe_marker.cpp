#include "wipe/wipe_marker.h"

#include <cwchar>

#include "common/registry_key.h"
#include "common/win.h"
#include "wipe/directory_slack.h"
#include "wipe/fill_names.h"
#include "wipe/volume_facts.h"

namespace scourel {

namespace {

bool SetMarker(const wchar_t* name, const std::wstring& value, bool flush) {
  HKEY raw = nullptr;
  if (::RegCreateKeyExW(HKEY_CURRENT_USER, kWipeMarkerKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &raw, nullptr) !=
      ERROR_SUCCESS) {
    return false;
  }
  UniqueRegKey key(raw);
  return ::RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                          static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS &&
         (!flush || ::RegFlushKey(key.get()) == ERROR_SUCCESS);
}

void ClearMarker(const wchar_t* name, bool flush) {
  const OpenedKey key = OpenRegKey(HKEY_CURRENT_USER, kWipeMarkerKey, KEY_SET_VALUE);
  if (!key) return;
  ::RegDeleteValueW(key.get(), name);
  if (flush) ::RegFlushKey(key.get());
}

std::wstring SlackFolder() {
  const OpenedKey key = OpenRegKey(HKEY_CURRENT_USER, kWipeMarkerKey, KEY_QUERY_VALUE);
  if (!key) return {};
  std::wstring value(32768, L'\0');
  DWORD type = 0;
  DWORD bytes = static_cast<DWORD>((value.size() - 1) * sizeof(wchar_t));
  if (::RegQueryValueExW(key.get(), kSlackFolderValue, nullptr, &type, reinterpret_cast<BYTE*>(value.data()),
                         &bytes) != ERROR_SUCCESS ||
      type != REG_SZ) {
    return {};
  }
  value.resize(::wcsnlen(value.c_str(), bytes / sizeof(wchar_t)));
  return value;
}

}  // namespace

bool RecordWipedDrive(wchar_t letter) { return SetMarker(kWipeMarkerValue, std::wstring{letter, L':'}, true); }

void ClearWipedDrive() { ClearMarker(kWipeMarkerValue, true); }

// Not flushed: set and cleared once a folder, and a killed process loses
// nothing written to the registry, only a power cut may.
bool RecordSlackFolder(const std::wstring& folder) { return SetMarker(kSlackFolderValue, folder, false); }

void ClearSlackFolder() { ClearMarker(kSlackFolderValue, false); }

std::optional<wchar_t> LastWipedDrive() {
  const OpenedKey key = OpenRegKey(HKEY_CURRENT_USER, kWipeMarkerKey, KEY_QUERY_VALUE);
  if (!key) return std::nullopt;
  wchar_t value[8] = {};
  DWORD type = 0;
  DWORD bytes = sizeof value - sizeof(wchar_t);
  if (::RegQueryValueExW(key.get(), kWipeMarkerValue, nullptr, &type, reinterpret_cast<BYTE*>(value), &bytes) !=
          ERROR_SUCCESS ||
      type != REG_SZ) {
    return std::nullopt;
  }
  return DriveLetterOf(value);
}

bool CleanUpInterruptedWipe() {
  // A folder path ends in a backslash; anything else is not ours.
  const std::wstring folder = SlackFolder();
  if (!folder.empty() && folder.back() == L'\\') RemoveSlackEntries(folder);
  ClearSlackFolder();
  const std::optional<wchar_t> letter = LastWipedDrive();
  if (!letter) {
    ClearWipedDrive();  // an unreadable value is cleared as well
    return false;
  }
  RemoveFillLeftovers(*letter);
  ClearWipedDrive();
  return true;
}

}  // namespace scourel
