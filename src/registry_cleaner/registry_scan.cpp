#include "registry_cleaner/registry_scan.h"

#include "registry_cleaner/class_scans.h"
#include "registry_cleaner/com_scan.h"
#include "registry_cleaner/extension_scan.h"
#include "registry_cleaner/installer_scans.h"
#include "registry_cleaner/program_scans.h"
#include "registry_cleaner/registry_issues.h"
#include "registry_cleaner/scan_keys.h"
#include "registry_cleaner/system_file_scans.h"
#include "registry_cleaner/user_scans.h"

namespace scourel {

namespace {

struct ScanStep {
  ScanFunction scan;
  HKEY root;
  const wchar_t* path;
  int category;
};

void ComScan(const TaskContext& context, HKEY root, const std::wstring& path, int) { ScanComKey(context, root, path); }

const HKEY HKCR = HKEY_CLASSES_ROOT;
const HKEY HKCU = HKEY_CURRENT_USER;
const HKEY HKLM = HKEY_LOCAL_MACHINE;
#define CURRENT_VERSION L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\"
#define COMPAT_FLAGS L"Software\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\"

// The 32-bit twins are keys of their own, scanned by path.
const ScanStep kMainPass[] = {
    {ComScan, HKCR, L"CLSID", kCatCom},
    {ComScan, HKCR, L"TypeLib", kCatCom},
    {ComScan, HKCR, L"Interface", kCatCom},
    {ComScan, HKCR, L"Wow6432Node\\CLSID", kCatCom},
    {ComScan, HKCR, L"Wow6432Node\\TypeLib", kCatCom},
    {ComScan, HKCR, L"Wow6432Node\\Interface", kCatCom},
    {AppPathsScan, HKLM, CURRENT_VERSION L"App Paths", kCatAppPaths},
    {CompatibilityFlagsScan, HKCU, COMPAT_FLAGS L"Compatibility Assistant\\Store", kCatAppPaths},
    {CompatibilityFlagsScan, HKCU, COMPAT_FLAGS L"Compatibility Assistant\\Persisted", kCatAppPaths},
    {CompatibilityFlagsScan, HKLM, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Layers",
     kCatAppPaths},
    {CompatibilityFlagsScan, HKCU, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Layers",
     kCatAppPaths},
    {EmptyChildKeysScan, HKCR, L"Wow6432Node\\CLSID", kCatEmptyKeys},
    {EmptyChildKeysScan, HKCR, L"Wow6432Node\\TypeLib", kCatEmptyKeys},
    {EmptyChildKeysScan, HKCR, L"Wow6432Node\\Interface", kCatEmptyKeys},
    {EmptyChildKeysScan, HKCR, L"CLSID", kCatEmptyKeys},
    {EmptyChildKeysScan, HKCR, L"TypeLib", kCatEmptyKeys},
    {EmptyChildKeysScan, HKCR, L"Interface", kCatEmptyKeys},
    {EmptyChildKeysScan, HKCU, L"Software\\Classes", kCatEmptyKeys},
    {EmptyAppEventsScan, HKCU, L"AppEvents", kCatEmptyKeys},
    {FileTypeScan, HKCR, L"FileType", kCatAssociations},
    {AssociationScan, HKCR, L"", kCatAssociations},
    {ProgIdScan, HKCR, L"", kCatTypes},
    {FontScan, HKLM, CURRENT_VERSION L"Fonts", kCatFonts},
    {FontScan, HKLM, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Fonts", kCatFonts},
    {HelpScan, HKLM, L"SOFTWARE\\Microsoft\\Windows\\Help", kCatHelp},
    {HelpScan, HKLM, L"SOFTWARE\\Microsoft\\Windows\\HTML Help", kCatHelp},
    {HelpScan, HKLM, L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\Help", kCatHelp},
    {HelpScan, HKLM, L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\HTML Help", kCatHelp},
    {SharedDllScan, HKLM, L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs", kCatSharedDlls},
    {SharedDllScan, HKLM, CURRENT_VERSION L"SharedDLLs", kCatSharedDlls},
    {ApprovedExtensionScan, HKLM, CURRENT_VERSION L"Shell Extensions\\Approved", kCatSharedDlls},
    {UninstallScan, HKLM, CURRENT_VERSION L"Uninstall", kCatSoftware},
    {InstallerFolderScan, HKLM, CURRENT_VERSION L"Installer\\Folders", kCatSoftware},
    {InstallerPatchScan, HKCR, L"Installer\\Patches", kCatSoftware},
    {InstallerProductScan, HKCR, L"Installer\\Products", kCatSoftware},
    {SoundLabelScan, HKCU, L"AppEvents\\EventLabels", kCatSounds},
    {UserSoftwareScan, HKCU, L"Software", kCatCurrentUser},
    {MuiCacheScan, HKCU, L"Software\\Classes\\Local Settings\\Software\\Microsoft\\Windows\\Shell\\MuiCache",
     kCatCurrentUser},
};

const ScanStep kExtensionPass[] = {
    {ProfileExtensionsScan, HKLM, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList", kCatExtensions},
    {ExtensionKeysScan, HKCR, L"", kCatExtensions},
    {ExtensionKeysScan, HKCU, L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts", kCatExtensions},
};

#undef CURRENT_VERSION
#undef COMPAT_FLAGS

template <std::size_t N>
void RunSteps(const TaskContext& context, const ScanStep (&steps)[N]) {
  for (const ScanStep& step : steps) {
    if (context.stopped()) return;
    step.scan(context, step.root, step.path, step.category);
  }
}

}  // namespace

void RunRegistryScan(const TaskContext& context) {
  g_registry.found.ResetCounts();
  RunSteps(context, kMainPass);
}

int RunFileExtensionScan(const TaskContext& context) {
  RunSteps(context, kExtensionPass);
  return g_registry.found.Count(kCatExtensions);
}

std::array<std::int32_t, protocol::kRegistryReportCount> RegistryReportCounts() {
  std::array<std::int32_t, protocol::kRegistryReportCount> counts{};
  for (int i = 0; i < protocol::kRegistryReportCount; ++i) {
    counts[i] = g_registry.found.Count(protocol::kRegistryReportOrder[i]);
  }
  return counts;
}

}  // namespace scourel
