// The settings file as the controller writes it and the worker reads it: its
// section, the wipe-method key, and the three key families.
#pragma once

#include <string>
#include <string_view>

namespace scourel::protocol {

inline constexpr wchar_t kSettingsSection[] = L"Corvane Suite";
inline constexpr wchar_t kWipeAlgorithmKey[] = L"IDS_WIPEALGORITHM";

// The first command set reads the IDS_C keys; the second the plain IDS_
// keys, or the IDS_O keys when the worker was started with mode argument "o".
inline std::wstring KeyPrefix(bool secondSet, bool modeO) {
  if (!secondSet) return L"IDS_C";
  return modeO ? L"IDS_O" : L"IDS_";
}

}  // namespace scourel::protocol
