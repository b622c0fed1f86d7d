// Five browsers' profiles in their real layouts, planted in the sandbox
// profile's application data from one table of rows: files of known sizes
// and registry keys of known value counts where the browser cleaners look,
// and decoys beside them that must survive. Shared by the browser tests and
// the demo's planting program; a further place is a further row.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "common/unique_handle.h"
#include "protocol/categories.h"
#include "support/fixtures.h"
#include "task/task_context.h"

namespace scourel::test {

enum class Root {
  kLocal,
  kRoaming,
  kWindows,
  kDrive,  // the root of C:, planted by every test program for its whole run
  kKey,    // a key under HKEY_CURRENT_USER; its size is its number of values
};

// Which scenarios plant a row, and in which its category takes it. A row
// without a category is a decoy: planted with its group, never taken.
enum class Group {
  kAlways,        // planted always; taken always
  kHeld,          // held open without share read, unless the scenario holds nothing: then taken
  kOldOpera,      // the old Opera layout: taken whenever planted
  kNewOpera,      // the new Opera layout: taken only without the old one
  kNewOperaAny,   // the new Opera layout: taken whenever planted
  kProfiles,      // Chrome's "Profile" folders: taken when the version searches for the first
  kSafariGate,    // taken when the current directory holds the Firefox profile's name
  kSafariRoaming,  // Safari's roaming folder: taken whenever planted
  kSafariLocal,   // planted always, taken when Safari's roaming folder is planted
  kDriveRoot,     // taken when the version searches for an extra profile and there is none
  kDriveRootHere,  // the same, when the current directory is the root of C:
};

struct TraceRow {
  Root root;
  std::wstring path;  // a closing backslash plants an empty folder
  std::uint32_t size;
  protocol::Browser browser;
  Group group;
  std::optional<protocol::BrowserCategory> category = std::nullopt;  // the first that takes it
  int scanCount = 1;  // a scan counts it once for every step of its category that reaches it
  std::optional<protocol::BrowserCategory> alsoScanned = std::nullopt;  // a later category whose scan counts it
  std::optional<protocol::BrowserCategory> column = std::nullopt;  // where it is counted, when not its category
};

// The first row, planted read-only.
std::wstring ReadOnlyTracePath();

struct BrowserScenario {
  bool operaOld = true;
  bool operaNew = true;
  bool profiles = true;      // "Profile 1" and "Profile 2" beside "Default"
  bool extraProfile = true;  // the version searches for the extra profile
  bool safariGate = true;    // run from a folder holding one named as the Firefox profile
  bool safari = true;        // Safari's roaming folder
  bool held = true;          // the held rows are held open
  const wchar_t* profilePath = L"Profiles/abcd.default";  // "Path" of [Profile0]
};

// The categories a run goes through: one, or all of them but downloaded
// program files for a scan and all of them for a clean.
struct Run {
  Mode mode;
  std::optional<protocol::BrowserCategory> only = std::nullopt;
};
inline Run ScanRun() { return {Mode::kMeasure}; }
inline Run CleanRun(protocol::BrowserCategory category) { return {Mode::kErase, category}; }
inline Run CleanEverything() { return {Mode::kErase}; }

struct Expected {
  std::int32_t count = 0;
  float bytes = 0.0f;
  bool operator==(const Expected&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Expected& e) {
    return out << e.count << " items, " << e.bytes << " bytes";
  }
};

// The rows (but those at the root of C:) and profiles.ini, left in place.
void PlantBrowserTraces(const BrowserScenario& scenario);
// Removes every folder and key the rows plant in, whatever left it there.
void RemoveBrowserRoots();

// The rows at the root of C:, where the extra-profile steps land when no
// "Profile" folder exists. Every test program plants them for its whole run
// and checks them byte for byte at its end.
void PlantDriveRootTraces();
std::wstring DriveRootDamage();
void RemoveDriveRootTraces();

// The planted profiles, the held files and the current directory the
// scenario asks for; all removed or restored on destruction.
class BrowserFixture {
 public:
  explicit BrowserFixture(const BrowserScenario& scenario = {});
  ~BrowserFixture();
  BrowserFixture(const BrowserFixture&) = delete;
  BrowserFixture& operator=(const BrowserFixture&) = delete;

  // Whether the scenario lets the row's category take it.
  bool Takes(const TraceRow& row) const;
  // Every file a clean of all categories takes, by its full path.
  std::vector<std::wstring> TakenFiles() const;
  // What a run counts in one browser's cell of one category (none: in all five).
  Expected Of(std::optional<protocol::Browser> browser, protocol::BrowserCategory category, const Run& run) const;
  // The category's total over the five browsers, as the replies carry it.
  Expected Total(protocol::BrowserCategory category, const Run& run) const { return Of({}, category, run); }
  // Empty when every row is as it should be after the run; otherwise the
  // first that is not.
  std::wstring Damage(const Run& run) const;

 private:
  BrowserScenario scenario_;
  std::wstring previousDirectory_;
  std::vector<UniqueHandleKernel> held_;
};

// Wine's Windows version for one program, removed again.
struct WineVersionOf : Cleanup {
  WineVersionOf(const std::wstring& program, const std::wstring& version);
};

}  // namespace scourel::test
