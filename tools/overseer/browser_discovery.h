// Finding every profile of the browsers people use today: the Chromium
// family by its "Local State" (or, when that is unreadable, by its profile
// folders), the Firefox family by its "profiles.ini". Whatever a profile
// list names that could lead outside the user's folders is refused, with a
// line saying why.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "overseer/browser_locations.h"

namespace overseer {

struct BrowserInstall {
  std::wstring_view name;  // as the user knows it; starts the plug-in names
  BrowserFamily family;
  bool roaming;             // below roaming application data, else local
  std::wstring_view folder;  // Chromium: "User Data"; Firefox: the folder of profiles.ini
  std::wstring_view process;  // its executable, to tell whether it runs
};
std::span<const BrowserInstall> BrowserInstalls();

struct BrowserProfile {
  const BrowserInstall* browser = nullptr;
  std::wstring displayName;  // the name the browser shows, else the folder's
  std::wstring folder;       // absolute: where its databases are
  std::wstring cacheFolder;  // absolute: its twin below local application data, or the folder itself
};

struct Discovery {
  std::vector<BrowserProfile> profiles;
  std::vector<std::string> notes;  // what was refused or passed over, and why
};

// "rest" when the path is "folder\rest", compared without case; else nothing.
std::optional<std::wstring> Below(const std::wstring& path, const std::wstring& folder);

// Every browser of BrowserInstalls below the user's application data.
Discovery DiscoverBrowsers();

}  // namespace overseer
