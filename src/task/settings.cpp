#include "task/settings.h"

#include <vector>

#include "common/win.h"

namespace scourel {

Relaxed<std::uint32_t> g_wipeMethod{0};

KeyFamily FamilyForSecondSet(std::wstring_view modeArgument) {
  return modeArgument == L"o" ? KeyFamily::kO : KeyFamily::kPlain;
}

std::wstring KeyName(KeyFamily family, std::wstring_view suffix) {
  return protocol::KeyPrefix(family != KeyFamily::kFirstSet, family == KeyFamily::kO) + std::wstring(suffix);
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
  const DWORD length = ::GetPrivateProfileStringW(kSettingsSection, key.c_str(), L"", buffer.data(), bufferChars,
                                                  iniPath.c_str());
  return std::wstring(buffer.data(), length);
}

bool SettingsFile::Switch(KeyFamily family, std::wstring_view suffix, unsigned bufferChars) const {
  return IsSwitchOn(Read(KeyName(family, suffix), bufferChars));
}

std::uint32_t SettingsFile::ReadWipeAlgorithm() const {
  if (auto index = ParseWipeIndex(Read(kWipeAlgorithmKey, kWipeAlgorithmChars))) g_wipeMethod.set(*index);
  return g_wipeMethod.get();
}

}  // namespace scourel
