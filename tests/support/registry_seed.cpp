#include "support/registry_seed.h"

#include <algorithm>

#include "common/unique_handle.h"

namespace scourel::test {

PlantedRegistry::~PlantedRegistry() {
  for (auto it = values_.rbegin(); it != values_.rend(); ++it) {
    ::RegDeleteKeyValueW(it->root, it->path.c_str(), it->name.c_str());
  }
  for (auto it = keys_.rbegin(); it != keys_.rend(); ++it) {
    ::RegDeleteTreeW(it->root, it->path.c_str());
    ::RegDeleteKeyW(it->root, it->path.c_str());
  }
}

void PlantedRegistry::Plant(HKEY root, const std::wstring& path, const std::optional<std::wstring>& name,
                            const std::wstring& data) {
  for (std::size_t end = path.find(L'\\');; end = path.find(L'\\', end + 1)) {
    const std::wstring step = path.substr(0, end);
    UniqueRegKey key;
    DWORD disposition = 0;
    ::RegCreateKeyExW(root, step.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(), &disposition);
    if (disposition == REG_CREATED_NEW_KEY) keys_.push_back({root, step, {}});
    if (end == std::wstring::npos) break;
  }
  if (!name) return;
  const bool ownKey = std::any_of(keys_.begin(), keys_.end(), [&](const Place& p) {
    return p.root == root && (path == p.path || path.rfind(p.path + L"\\", 0) == 0);
  });
  if (!ownKey && !ValuePresent(root, path, *name)) values_.push_back({root, path, *name});
  ::RegSetKeyValueW(root, path.c_str(), name->c_str(), REG_SZ, data.c_str(),
                    static_cast<DWORD>((data.size() + 1) * sizeof(wchar_t)));
}

bool KeyPresent(HKEY root, const std::wstring& path) {
  UniqueRegKey key;
  return ::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.put()) == ERROR_SUCCESS;
}

bool ValuePresent(HKEY root, const std::wstring& path, const std::wstring& name) {
  return ::RegGetValueW(root, path.c_str(), name.c_str(), RRF_RT_ANY, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

namespace {

const HKEY HKCR = HKEY_CLASSES_ROOT, HKCU = HKEY_CURRENT_USER, HKLM = HKEY_LOCAL_MACHINE;
const std::wstring kVersion = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\";
const std::wstring kClass = L"{5C0E1000-0000-4000-8000-0000000000";  // + two digits and "}"
std::wstring Class(const wchar_t* digits) { return kClass + digits + L"}"; }

}  // namespace

SeededRegistry::SeededRegistry() {
  const std::wstring p = files_.path() + L"\\present", m = files_.path() + L"\\missing";
  for (const wchar_t* file : {L"app.exe", L"lib.dll", L"font.ttf", L"help.hlp"}) WriteFileBytes(p + L"\\" + file, "x");
  const std::wstring r1 = Class(L"01"), m1 = Class(L"02");
  const std::wstring nt = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\", fonts = nt + L"Fonts";
  const std::wstring store = nt + L"AppCompatFlags\\Compatibility Assistant\\Store";
  const std::wstring fileExts = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts\\";
  const std::wstring mui = L"Software\\Classes\\Local Settings\\Software\\Microsoft\\Windows\\Shell\\MuiCache";
  using F = Fate;
  entries_ = {
      {0, F::kCanary, HKCR, L"CLSID\\" + r1 + L"\\InprocServer32", L"", p + L"\\lib.dll"},
      {0, F::kKeyGoes, HKCR, L"CLSID\\" + Class(L"03") + L"\\InprocServer32", L"", m + L"\\gone.dll"},
      {0, F::kValueGoes, HKCR, L"CLSID\\" + Class(L"04"), L"AppID", m1},
      {0, F::kCanary, HKCR, L"CLSID\\" + Class(L"04"), L"Name", L"x"},
      {1, F::kKeyGoes, HKLM, kVersion + L"App Paths\\scourel-gone.exe", L"", m + L"\\gone.exe"},
      {1, F::kCanary, HKLM, kVersion + L"App Paths\\scourel-path.exe", L"", p + L"\\app.exe"},
      {1, F::kValueGoes, HKLM, kVersion + L"App Paths\\scourel-path.exe", L"Path", m + L"\\folder"},
      {1, F::kCanary, HKLM, kVersion + L"App Paths\\scourel-ok.exe", L"", p + L"\\app.exe"},
      {1, F::kValueGoes, HKCU, store, (m + L"\\old.exe"), L"1"},
      {1, F::kCanary, HKCU, store, (p + L"\\app.exe"), L"1"},
      {2, F::kKeyGoes, HKCR, L"CLSID\\" + Class(L"05"), std::nullopt, {}},
      {2, F::kKeyGoes, HKCU, L"Software\\Classes\\ScourelEmpty.Document", std::nullopt, {}},
      {2, F::kKeyGoes, HKCU, L"AppEvents\\Schemes\\Apps\\ScourelApp", std::nullopt, {}},
      {2, F::kCanary, HKCU, L"AppEvents\\Schemes\\Apps\\ScourelKeptApp\\Event\\.Current", L"", L""},
      {3, F::kKeyGoes, HKCR, L"FileType\\" + m1, std::nullopt, {}},
      {3, F::kCanary, HKCR, L"FileType\\" + r1, L"0", L"x"},
      {3, F::kKeyGoes, HKCR, L".scourelbad", L"", L"ScourelMissing.Type"},
      {3, F::kCanary, HKCR, L".scourelgood", L"", L"ScourelGood.Type"},
      {3, F::kCanary, HKCR, L".scourelkeep", L"", L"ScourelMissing.Type"},
      {3, F::kPart, HKCR, L".scourelkeep\\ShellNew", L"NullFile", L""},
      {4, F::kKeyGoes, HKCR, L".scourelhollow", std::nullopt, {}},
      {4, F::kKeyGoes, HKCU, fileExts + L".scourelext\\OpenWithProgids", L"ScourelMissing.Type", L""},
      {4, F::kCanary, HKCU, fileExts + L".scourelok\\OpenWithProgids", L"ScourelMissing.Type", L""},
      {4, F::kCanary, HKCU, fileExts + L".scourelok\\OpenWithProgids", L"ScourelGood.Type", L""},
      {5, F::kKeyGoes, HKCR, L"ScourelBad.Type\\CLSID", L"", m1},
      {5, F::kKeyGoes, HKCR, L"ScourelBadVerb.Type\\shell\\open\\command", L"", L"\"" + m + L"\\gone.exe\" \"%1\""},
      {5, F::kCanary, HKCR, L"ScourelGood.Type\\CLSID", L"", r1},
      {5, F::kCanary, HKCR, L"ScourelGood.Type\\shell\\open\\command", L"", L"\"" + p + L"\\app.exe\" \"%1\""},
      {6, F::kValueGoes, HKLM, fonts, L"Scourel Gone (TrueType)", m + L"\\gone.ttf"},
      {6, F::kCanary, HKLM, fonts, L"Scourel Kept (TrueType)", p + L"\\font.ttf"},
      {6, F::kCanary, HKLM, fonts, L"Scourel Bare (TrueType)", L"scourel-bare.ttf"},
      {7, F::kValueGoes, HKLM, L"SOFTWARE\\Microsoft\\Windows\\Help", L"gone.hlp", p},
      {7, F::kCanary, HKLM, L"SOFTWARE\\Microsoft\\Windows\\Help", L"help.hlp", p + L"\\"},
      {8, F::kValueGoes, HKLM, kVersion + L"SharedDLLs", (m + L"\\gone.dll"), L"1"},
      {8, F::kCanary, HKLM, kVersion + L"SharedDLLs", (p + L"\\lib.dll"), L"1"},
      {8, F::kValueGoes, HKLM, kVersion + L"Shell Extensions\\Approved", m1, L"Scourel gone"},
      {8, F::kCanary, HKLM, kVersion + L"Shell Extensions\\Approved", r1, L"Scourel kept"},
      {10, F::kKeyGoes, HKLM, kVersion + L"Uninstall\\ScourelGone", L"UninstallString", m + L"\\uninst.exe"},
      {10, F::kPart, HKLM, kVersion + L"Uninstall\\ScourelGone", L"InstallLocation", m},
      {10, F::kCanary, HKLM, kVersion + L"Uninstall\\ScourelMsi", L"UninstallString", L"MsiExec.exe /X" + r1},
      {10, F::kCanary, HKLM, kVersion + L"Uninstall\\ScourelKept", L"UninstallString", m + L"\\uninst.exe"},
      {10, F::kPart, HKLM, kVersion + L"Uninstall\\ScourelKept", L"InstallLocation", p},
      {10, F::kValueGoes, HKLM, kVersion + L"Installer\\Folders", (m + L"\\folder\\"), L""},
      {10, F::kCanary, HKLM, kVersion + L"Installer\\Folders", (p + L"\\"), L""},
      {10, F::kKeyGoes, HKCR, L"Installer\\Products\\1000E0C50000000408000000000000A1", L"ProductName", L"Gone"},
      // Packed, the GUID of the uninstall key below.
      {10, F::kCanary, HKCR, L"Installer\\Products\\1000E0C50000000408000000000000B2", L"ProductName", L"Kept"},
      {10, F::kPart, HKLM, kVersion + L"Uninstall\\{5C0E0001-0000-4000-8000-00000000002B}", L"DisplayName", L"Kept"},
      {10, F::kKeyGoes, HKCR, L"Installer\\Patches\\1000E0C50000000408000000000000C3", L"State", L"1"},
      {11, F::kValueGoes, HKCU, L"AppEvents\\EventLabels\\ScourelEvent", L"DispFileName", L"@" + m + L"\\res.dll,-5"},
      {11, F::kPart, HKCU, L"AppEvents\\EventLabels\\ScourelEvent", L"", L"Scourel event"},
      {11, F::kCanary, HKCU, L"AppEvents\\EventLabels\\ScourelKeptEvent", L"DispFileName", L"@" + p + L"\\lib.dll,-5"},
      {14, F::kKeyGoes, HKCU, L"Software\\ScourelEmptyVendor", std::nullopt, {}},
      {14, F::kCanary, HKCU, L"Software\\ScourelVendor", L"Kept", L"1"},
      {14, F::kValueGoes, HKCU, mui, (m + L"\\gone.exe.FriendlyAppName"), L"Gone"},
      {14, F::kCanary, HKCU, mui, (p + L"\\app.exe.FriendlyAppName"), L"App"},
  };
  for (const SeedEntry& e : entries_) planted_.Plant(e.root, e.path, e.name, e.data);
}

std::wstring SeededRegistry::Damage(const std::vector<int>& fixed) const {
  for (const SeedEntry& e : entries_) {
    const bool isFixed = std::find(fixed.begin(), fixed.end(), e.category) != fixed.end();
    const bool keyWanted = e.fate != Fate::kKeyGoes || !isFixed;
    const bool valueWanted = e.fate == Fate::kCanary || (e.fate == Fate::kValueGoes && !isFixed);
    const std::wstring where = std::to_wstring(e.category) + L" " + e.path + L" [" + e.name.value_or(L"") + L"]";
    if (e.fate == Fate::kPart) continue;
    if (KeyPresent(e.root, e.path) != keyWanted) return (keyWanted ? L"key gone: " : L"key kept: ") + where;
    if (e.name && e.fate != Fate::kKeyGoes && ValuePresent(e.root, e.path, *e.name) != valueWanted) {
      return (valueWanted ? L"value gone: " : L"value kept: ") + where;
    }
  }
  return L"";
}

std::vector<std::pair<HKEY, std::wstring>> SeededRegistry::Keys() const {
  std::vector<std::pair<HKEY, std::wstring>> keys;
  for (const SeedEntry& e : entries_) keys.emplace_back(e.root, e.path);
  return keys;
}

}  // namespace scourel::test
