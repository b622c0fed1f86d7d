// A browser category as data: its steps in order, each naming the browser
// whose totals it fills, the condition it runs under, the folder it starts
// from, the path below it and the treatment. One runner takes every table,
// in either mode.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "browsers/browser_profiles.h"
#include "browsers/location_walker.h"
#include "protocol/categories.h"
#include "task/task_context.h"

namespace scourel {

// Each condition is tested once per run of a category, when its first step
// comes, and holds for the rest of that run.
enum class Gate {
  kAlways,
  kFirefoxData,       // local "Mozilla\Firefox\Profiles\<profile>" exists
  kFirefoxProfile,    // roaming "Mozilla\Firefox\Profiles\<profile>" exists
  kChromeDefault,     // local "Google\Chrome\User Data\Default" exists
  kSafariNamedProfile,  // the bare Firefox profile name exists, relative to the current directory
  kSafariRoaming,     // roaming "Apple Computer\Safari" exists
  kSafariCookies,     // roaming "Apple Computer\Safari\Cookies" exists
  kExtraChromeProfile,  // the version searches for Chrome's extra profile
  kOperaOld,          // the Opera layout chosen is the old one
  kOperaNew,          // the Opera layout chosen is the new one
  kOperaNewFolder,    // local "Opera Software\Opera Stable" exists, whatever the old layout
};

enum class Base {
  kLocal,
  kRoaming,
  kFirefoxLocal,    // local "Mozilla\Firefox\Profiles\<profile>"
  kFirefoxRoaming,  // roaming "Mozilla\Firefox\Profiles\<profile>"
  kChromeDefaultProfile,  // local "Google\Chrome\User Data\Default"
  kChromeExtra,     // what the search found; empty leads to the root of the current drive
  kWindows,         // the Windows folder, with one closing backslash
  kCurrentUser,     // the path is a key under HKEY_CURRENT_USER
  kUrlCache,        // the path is a URL-cache search pattern
};

// A counter beside the grid that a step adds its count to as well.
enum class AlsoCounted { kNowhere, kFirefoxOfflineCacheCounter, kIconsCounter };

// Folder paths are given without their closing backslash: the runner adds it
// (all but kIndexFilesBare). A single file's path is used as it stands.
struct BrowserStep {
  protocol::Browser browser;
  Gate gate;
  Base base;
  std::wstring_view path;
  Treatment treatment;
  // The category whose total the step fills, when not the one it runs in.
  std::optional<protocol::BrowserCategory> column = std::nullopt;
  AlsoCounted also = AlsoCounted::kNowhere;
};

struct CategorySteps {
  protocol::BrowserCategory category;
  std::span<const BrowserStep> steps;
};

// The steps of every category, in the order of the browser switches.
CategorySteps StepsOf(protocol::BrowserCategory category);
std::span<const BrowserStep> CacheSteps();
std::span<const BrowserStep> CookieSteps();
std::span<const BrowserStep> HistorySteps();
std::span<const BrowserStep> LoginSteps();
std::span<const BrowserStep> SessionSteps();
std::span<const BrowserStep> DownloadSteps();
std::span<const BrowserStep> AddressBarSteps();
std::span<const BrowserStep> ProgramFileSteps();
std::span<const BrowserStep> TrackingCacheSteps();
std::span<const BrowserStep> IconSteps();

// Runs one category's steps in the context's mode. Each folder location
// starts the current-location pair at zero and adds it to its browser's cell
// afterwards; a single file and a key count on the cell directly.
void RunCategorySteps(const TaskContext& context, const CategorySteps& steps, OsVersion version);

}  // namespace scourel
