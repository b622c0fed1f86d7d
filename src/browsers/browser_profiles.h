// Where the five browsers keep their data: the base folders, the Firefox
// profile named in profiles.ini, Chrome's extra profile and Opera's layout.
#pragma once

#include <string>
#include <string_view>

#include "task/task_context.h"

namespace scourel {

// The Windows version as GetVersionExW reports it to this program.
struct OsVersion {
  unsigned long major = 0;
  unsigned long minor = 0;
};
OsVersion SystemVersion();

// Chrome's extra profile is searched for on 6.2 and 6.3 only: both parts
// compared on their own, so 6.1 fails and so does 10.0.
constexpr bool SearchesExtraChromeProfile(OsVersion version) { return version.major >= 6 && version.minor >= 2; }

// Local (CSIDL 28) and roaming (CSIDL 26) application data, fetched afresh
// on every call; empty when the shell has none.
std::wstring LocalAppData();
std::wstring RoamingAppData();

// The profile folder name of a profiles.ini "Path" value: the text after the
// last "/", or the whole value.
std::wstring ProfileFolderName(std::wstring_view pathValue);
// "Path" of "[Profile0]" in roaming "Mozilla\Firefox\profiles.ini", reduced
// to the folder name; empty when any part is missing.
std::wstring FirefoxProfileName();
// A name that stays inside the Profiles folder: not empty, no ".." part.
bool IsUsableProfileName(std::wstring_view name);

// Lists local "Google\Chrome\User Data", clearing read-only on every entry,
// and returns User Data joined with the first folder whose name begins with
// "Profile"; empty when there is none. Links are neither cleared nor chosen.
std::wstring FindExtraChromeProfile(const TaskContext& context);

enum class OperaLayout { kNone, kOld, kNew };
// The old layout when local "Opera\Opera" exists, else the new one when local
// "Opera Software\Opera Stable" exists.
OperaLayout ChooseOperaLayout();

// PathFileExistsW: a file or a folder.
bool PathPresent(const std::wstring& path);

}  // namespace scourel
