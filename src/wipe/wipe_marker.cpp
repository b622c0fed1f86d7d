#include "wipe/wipe_marker.h"

#include "common/registry_key.h"
#include "common/win.h"
#include "wipe/fill_names.h"
#include "wipe/volume_facts.h"

namespace scourel {

bool RecordWipedDrive(wchar_t letter) {
  HKEY raw = nullptr;
  if (::RegCreateKeyExW(HKEY_CURRENT_USER, kWipeMarkerKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &raw, nullptr) !=
      ERROR_SUCCESS) {
    return false;
  }
  UniqueRegKey key(raw);
  const wchar_t value[] = {letter, L':', 0};
  return ::RegSetValueExW(key.get(), kWipeMarkerValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                          sizeof value) == ERROR_SUCCESS &&
         ::RegFlushKey(key.get()) == ERROR_SUCCESS;
}

void ClearWipedDrive() {
  const OpenedKey key = OpenRegKey(HKEY_CURRENT_USER, kWipeMarkerKey, KEY_SET_VALUE);
  if (!key) return;
  ::RegDeleteValueW(key.get(), kWipeMarkerValue);
  ::RegFlushKey(key.get());
}

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
