#include "browsers/browser_profiles.h"

#include <vector>

#include "common/known_folders.h"
#include "task/folder_walk.h"

namespace scourel {

OsVersion SystemVersion() {
  OSVERSIONINFOW info{};
  info.dwOSVersionInfoSize = sizeof info;
  if (!::GetVersionExW(&info)) return {};
  return {info.dwMajorVersion, info.dwMinorVersion};
}

std::wstring LocalAppData() { return ShellFolderPath(CSIDL_LOCAL_APPDATA); }
std::wstring RoamingAppData() { return ShellFolderPath(CSIDL_APPDATA); }

std::wstring ProfileFolderName(std::wstring_view pathValue) {
  const auto slash = pathValue.rfind(L'/');
  return std::wstring(slash == std::wstring_view::npos ? pathValue : pathValue.substr(slash + 1));
}

std::wstring FirefoxProfileName() {
  const std::wstring roaming = RoamingAppData();
  if (roaming.empty()) return {};
  std::vector<wchar_t> value(1000, L'\0');
  const DWORD length = ::GetPrivateProfileStringW(L"Profile0", L"Path", L"", value.data(), 1000,
                                                  (roaming + L"\\Mozilla\\Firefox\\profiles.ini").c_str());
  return ProfileFolderName(std::wstring_view(value.data(), length));
}

bool IsUsableProfileName(std::wstring_view name) {
  if (name.empty()) return false;
  // A ".." part would lead out of the Profiles folder, to places no browser keeps a cache.
  for (size_t start = 0; start <= name.size();) {
    const size_t end = name.find_first_of(L"\\/", start);
    const std::wstring_view part = name.substr(start, end == std::wstring_view::npos ? name.npos : end - start);
    if (part == L"..") return false;
    if (end == std::wstring_view::npos) break;
    start = end + 1;
  }
  return true;
}

std::wstring FindExtraChromeProfile(const TaskContext& context) {
  const std::wstring local = LocalAppData();
  if (local.empty()) return {};
  const std::wstring userData = local + L"\\Google\\Chrome\\User Data\\";
  std::wstring chosen;
  ForEachEntry(context, userData + L"*.*", [&](const WIN32_FIND_DATAW& entry) {
    ClearReadOnly(context, userData, entry);
    if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
    const std::wstring path = userData + entry.cFileName;
    if (chosen.empty() && IsFolder(entry) && std::wstring_view(entry.cFileName).starts_with(L"Profile")) {
      chosen = path;
    }
  });
  return chosen;
}

bool PathPresent(const std::wstring& path) { return ::PathFileExistsW(path.c_str()) != FALSE; }

OperaLayout ChooseOperaLayout() {
  const std::wstring local = LocalAppData();
  if (local.empty()) return OperaLayout::kNone;
  if (PathPresent(local + L"\\Opera\\Opera")) return OperaLayout::kOld;
  if (PathPresent(local + L"\\Opera Software\\Opera Stable")) return OperaLayout::kNew;
  return OperaLayout::kNone;
}

}  // namespace scourel
