#include "host/settings.h"

#include <vector>

#include "common/win.h"
#include "host/worker_state.h"

namespace scourel {

Relaxed<std::uint32_t> g_wipeMethod{0};

KeyFamily FamilyForSecondSet(std::wstring_view modeArgument) {
  return modeArgument == L"o" ? KeyFamily::kO : KeyFamily::kPlain;
}

std::wstring KeyName(KeyFamily family, std::wstring_view suffix) {
  std::wstring name = L"IDS_";
  if (family == KeyFamily::kFirstSet) name += L'C';
  if (family == KeyFamily::kO) name += L'O';
  name += suffix;
  return name;
}

bool IsSwitchOn(std::wstring_view value) { return value == L"TRUE"; }

std::optional<std::uint32_t> ParseWipeIndex(std::wstring_view value) {
  if (value.size() == 1 && value[0] >= L'0' && value[0] <= L'8') {
    return static_cast<std::uint32_t>(value[0] - L'0');
  }
  return std::nullopt;
}

std::wstring ReadSetting(const std::wstring& iniPath, const std::wstring& key, unsigned bufferChars) {
  std::vector<wchar_t> buffer(bufferChars, L'\0');
  const DWORD length = ::GetPrivateProfileStringW(kSettingsSection, key.c_str(), L"", buffer.data(),
                                                  bufferChars, iniPath.c_str());
  return std::wstring(buffer.data(), length);
}

bool ReadSwitch(KeyFamily family, std::wstring_view suffix, unsigned bufferChars) {
  return IsSwitchOn(ReadSetting(g_settingsPath, KeyName(family, suffix), bufferChars));
}

void ReadWipeAlgorithm() {
  if (auto index = ParseWipeIndex(ReadSetting(g_settingsPath, kWipeAlgorithmKey, kWipeAlgorithmChars))) {
    g_wipeMethod.set(*index);
  }
}

}  // namespace scourel
