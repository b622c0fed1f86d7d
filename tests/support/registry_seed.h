// A test-owned set of registry entries in the places the registry scans
// look: for every category invalid entries, and look-alike canaries that are
// valid and must survive every fix. Everything planted is removed again,
// exactly: keys the seed created and values it added to keys that were there.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <string>
#include <vector>

#include "common/win.h"
#include "protocol/categories.h"
#include "support/fixtures.h"

namespace scourel::test {

// Keys and values planted, undone on destruction.
class PlantedRegistry {
 public:
  PlantedRegistry() = default;
  PlantedRegistry(const PlantedRegistry&) = delete;
  PlantedRegistry& operator=(const PlantedRegistry&) = delete;
  ~PlantedRegistry();

  // Creates the key and its missing parents; with a name, sets a string value.
  void Plant(HKEY root, const std::wstring& path, const std::optional<std::wstring>& name = std::nullopt,
             const std::wstring& data = {});

 private:
  struct Place {
    HKEY root;
    std::wstring path, name;
  };
  std::vector<Place> keys_;    // created, in order
  std::vector<Place> values_;  // added to keys that were there before
};

bool KeyPresent(HKEY root, const std::wstring& path);
bool ValuePresent(HKEY root, const std::wstring& path, const std::wstring& name);

enum class Fate {
  kKeyGoes,    // invalid: the fix of its category deletes the key
  kValueGoes,  // invalid: the fix deletes the value, the key stays
  kCanary,     // valid: survives every fix
  kPart,       // planted with the row above it and checked with it
};

struct SeedEntry {
  int category;
  Fate fate;
  HKEY root;
  std::wstring path;
  std::optional<std::wstring> name;  // none: the key alone
  std::wstring data;
};

// Counts of the seed in the order the scan reports them (kind 107), and the
// file-extension pass's count (kind 108).
inline constexpr std::array<std::int32_t, protocol::kRegistryReportCount> kSeedReport = {2, 3, 3, 2, 2, 1,
                                                                                         1, 2, 4, 1, 2, 0};
inline constexpr std::int32_t kSeedExtensions = 3;

// Files the canaries name (present) and the folder invalid entries point into (missing).
class SeededRegistry {
 public:
  SeededRegistry();
  // Empty when every entry stands as it must after fixing the categories
  // given; otherwise the first entry that does not.
  std::wstring Damage(const std::vector<int>& fixedCategories) const;
  // Every key an entry names, for a snapshot of all it holds.
  std::vector<std::pair<HKEY, std::wstring>> Keys() const;

 private:
  ScratchDir files_{L"registry-seed"};
  std::vector<SeedEntry> entries_;
  PlantedRegistry planted_;
};

}  // namespace scourel::test
