// What the registry scans find, kept for the whole run of the worker: one
// table of rows per category, the fix list the fix step copies them into,
// and the progress figures. Task threads and the main thread share it; the
// controller runs one task at a time, the lock only keeps the sharing sound.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "common/relaxed.h"
#include "protocol/categories.h"

namespace scourel {

using protocol::kRegistryCategoryTotal;

// Category numbers of the tables. 9 is never filled; 4 and 12 have no switch.
enum RegistryCategory : int {
  kCatCom = 0,
  kCatAppPaths = 1,
  kCatEmptyKeys = 2,
  kCatAssociations = 3,
  kCatExtensions = 4,
  kCatTypes = 5,
  kCatFonts = 6,
  kCatHelp = 7,
  kCatSharedDlls = 8,
  kCatNone = 9,
  kCatSoftware = 10,
  kCatSounds = 11,
  kCatAdditional = 12,
  kCatDeepScan = 13,
  kCatCurrentUser = 14,
};

struct RegistryIssue {
  std::wstring rootName;   // "HKEY_CLASSES_ROOT" ... "HKEY_CURRENT_CONFIG"
  std::wstring keyPath;    // below the root, no leading backslash
  std::wstring valueName;  // the offending value; empty for the whole key
  std::wstring valueData;  // its text, as a rule the reference that failed

  // A row naming neither value nor data stands for the whole key.
  bool IsKeyEntry() const { return valueName.empty() && valueData.empty(); }
  bool operator==(const RegistryIssue&) const = default;
};

// A category holds at most this many rows; recording stops there.
inline constexpr int kIssueRowCap = 10000;

// Rows per category with a count of rows in use. Rows are kept past a reset
// and written over, so a table only grows to the most rows it ever held.
class IssueTables {
 public:
  // False when the category is full or not one of the fifteen.
  bool Append(int category, RegistryIssue issue);
  void ResetCounts();
  std::int32_t Count(int category) const;
  // Rows 0 .. count-1.
  std::vector<RegistryIssue> Rows(int category) const;

 private:
  mutable std::mutex lock_;
  std::array<std::vector<RegistryIssue>, kRegistryCategoryTotal> rows_;
  std::array<Relaxed<std::int32_t>, kRegistryCategoryTotal> counts_;
};

struct RegistryFindings {
  IssueTables found;
  Relaxed<std::int32_t> foundTotal;  // every row recorded since the worker started
  Relaxed<std::int32_t> examined;    // values enumerated by the scans
  // Filled by each general fix and never emptied: a later fix in the same run
  // works through the earlier rows again.
  IssueTables fixList;
  Relaxed<std::int32_t> fixTotal;
  Relaxed<int> fixFlags[kRegistryCategoryTotal];

  void SetProgress(std::wstring keyText);
  std::wstring Progress() const;
  // Key texts ("HKEY_CURRENT_USER\Software\Kept") never recorded, ignoring case.
  void SetIgnoreList(std::vector<std::wstring> keyTexts);
  bool Ignored(const std::wstring& keyText) const;

 private:
  mutable std::mutex lock_;
  std::wstring progress_;
  std::vector<std::wstring> ignore_;
};

// The one set of findings of the process.
extern RegistryFindings g_registry;

// Appends a row to the category unless its key is on the ignore list or the
// category is full; true when the row was recorded.
bool RecordIssue(int category, const std::wstring& rootName, const std::wstring& keyPath, const std::wstring& valueName,
                 const std::wstring& valueData);

}  // namespace scourel
