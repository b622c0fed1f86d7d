#include "registry_cleaner/installer_scans.h"

#include <algorithm>
#include <cwctype>

#include "common/registry_paths.h"
#include "registry_cleaner/registry_issues.h"
#include "registry_cleaner/scan_keys.h"

namespace scourel {

namespace {

const wchar_t kUninstall[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
const wchar_t kUninstall32[] = L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
const wchar_t kMachineData[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1-5-18\\";

// Records each subkey named by a packed code whose registration `present` does not find.
template <typename Present>
void ScanPackedCodes(const TaskContext& context, HKEY root, const std::wstring& path, int category, Present present) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring& name, const std::wstring& childPath) {
    const std::optional<std::wstring> code = UnpackGuid(name);
    if (code && !present(name, *code)) RecordIssue(category, parent.rootName(), childPath, {}, {});
  });
}

}  // namespace

std::optional<std::wstring> UnpackGuid(const std::wstring& packed) {
  if (packed.size() != 32 || !std::all_of(packed.begin(), packed.end(), ::iswxdigit)) return std::nullopt;
  // Group lengths in packed order; the first three groups are reversed whole,
  // the last eight bytes digit pair by digit pair.
  static constexpr int kGroups[] = {8, 4, 4, 2, 2, 2, 2, 2, 2, 2, 2};
  std::wstring guid = L"{";
  std::size_t at = 0;
  for (int i = 0; i < 11; ++i) {
    if (i == 1 || i == 2 || i == 3 || i == 5) guid += L'-';
    guid.append(packed.rbegin() + static_cast<std::ptrdiff_t>(packed.size() - at - kGroups[i]),
                packed.rbegin() + static_cast<std::ptrdiff_t>(packed.size() - at));
    at += kGroups[i];
  }
  return guid + L"}";
}

void UninstallScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring&, const std::wstring& entryPath) {
    const ScanKey entry(root, entryPath);
    if (!entry) return;
    const std::vector<ValueText> values = entry.Values();
    const std::wstring location = ScanKey::Find(values, L"InstallLocation");
    if (NamesMissingFile(ScanKey::Find(values, L"UninstallString")) &&
        (location.empty() || NamesMissingFile(location))) {
      entry.Record(category);
    }
  });
}

void InstallerFolderScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordValuesWhere(context, root, path, category, [](const ValueText& value) { return NamesMissingFile(value.name); });
}

void InstallerProductScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  ScanPackedCodes(context, root, path, category, [](const std::wstring& packed, const std::wstring& code) {
    return KeyExists(HKEY_LOCAL_MACHINE, kUninstall + code) || KeyExists(HKEY_LOCAL_MACHINE, kUninstall32 + code) ||
           KeyExists(HKEY_LOCAL_MACHINE, kMachineData + (L"Products\\" + packed));
  });
}

void InstallerPatchScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  ScanPackedCodes(context, root, path, category, [](const std::wstring& packed, const std::wstring&) {
    return KeyExists(HKEY_LOCAL_MACHINE, kMachineData + (L"Patches\\" + packed)) != 0;
  });
}

}  // namespace scourel
