// Five browsers' profiles in their real layouts, planted in the sandbox
// profile's application data from one table of rows: files of known sizes
// where the browser cleaners look, and decoys beside them that must survive.
// Shared by the browser tests and the demo's planting program; a further
// category is a further set of rows.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>

#include "common/unique_handle.h"
#include "protocol/categories.h"
#include "support/fixtures.h"
#include "task/task_context.h"

namespace scourel::test {

enum class Root { kLocal, kRoaming };

// Which scenarios plant a row, and in which its category takes it.
enum class Group {
  kCore,      // planted and taken always
  kDecoy,     // beside a named location: planted always, never taken
  kHeld,      // a decoy held open without share read while the fixture lives
  kOldOpera,  // the old Opera layout: taken whenever planted
  kNewOpera,  // the new Opera layout: taken only without the old one
  kProfile1,  // Chrome's first "Profile" folder: taken when the version searches for it
  kProfile2,  // a later "Profile" folder: planted with the first, never taken
  kSafariGate,  // taken when the current directory holds the Firefox profile's name
};

struct TraceRow {
  Root root;
  const wchar_t* path;  // a closing backslash plants an empty folder
  std::uint32_t size;
  protocol::Browser browser;
  Group group;
  int scanCount = 1;  // a scan counts it once for every step that reaches it
  protocol::BrowserCategory category = protocol::BrowserCategory::kCache;
};

// The first row is planted read-only.
std::span<const TraceRow> BrowserTraceRows();

struct BrowserScenario {
  bool operaOld = true;
  bool operaNew = true;
  bool profiles = true;      // "Profile 1" and "Profile 2" beside "Default"
  bool extraProfile = true;  // the version searches for the extra profile
  bool safariGate = true;    // run from a folder holding one named as the Firefox profile
  const wchar_t* profilePath = L"Profiles/abcd.default";  // "Path" of [Profile0]
};

struct Expected {
  std::int32_t count = 0;
  float bytes = 0.0f;
  bool operator==(const Expected&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Expected& e) {
    return out << e.count << " files, " << e.bytes << " bytes";
  }
};

bool Plants(const BrowserScenario& scenario, const TraceRow& row);
// The rows and profiles.ini, left in place.
void PlantBrowserTraces(const BrowserScenario& scenario);
// Removes every folder the rows plant in, whatever left it there.
void RemoveBrowserRoots();
std::wstring PathOf(const TraceRow& row);

// The planted profiles, a file held open inside a cache, a link inside a
// cache to a canary, and the current directory the scenario asks for; all
// removed or restored on destruction.
class BrowserFixture {
 public:
  explicit BrowserFixture(const BrowserScenario& scenario = {});
  ~BrowserFixture();
  BrowserFixture(const BrowserFixture&) = delete;
  BrowserFixture& operator=(const BrowserFixture&) = delete;

  bool Takes(const TraceRow& row, protocol::BrowserCategory category) const;
  Expected Of(protocol::Browser browser, protocol::BrowserCategory category, Mode mode) const;
  // The category's total over the five browsers, as the replies carry it.
  Expected Total(protocol::BrowserCategory category, Mode mode) const;
  // Empty when every row is as it should be after a run of `category` in
  // `mode` and the canary is intact; otherwise what is not.
  std::wstring Damage(protocol::BrowserCategory category, Mode mode) const;

 private:
  BrowserScenario scenario_;
  std::wstring previousDirectory_;
  UniqueHandleKernel held_;
  CanaryTree canary_;
  std::wstring link_;
};

// Wine's Windows version for one program, removed again.
class WineVersionOf {
 public:
  WineVersionOf(const std::wstring& program, const std::wstring& version);
  ~WineVersionOf();
  WineVersionOf(const WineVersionOf&) = delete;
  WineVersionOf& operator=(const WineVersionOf&) = delete;

 private:
  std::wstring key_;
};

// "\Cache" at the root of drive C:, where the extra-profile cache step lands
// when no "Profile" folder exists: every test program plants a canary tree
// there, which every scan counts and must leave as it was.
inline constexpr wchar_t kRootCache[] = L"C:\\Cache";
inline constexpr Expected kRootCacheFiles{4, 5051.0f};  // CanaryTree's files

}  // namespace scourel::test
