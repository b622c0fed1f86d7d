// The registry cleaner's fix step and the full scan's registry passes.
#pragma once

#include "host/settings.h"

namespace scourel {

inline constexpr int kRegistryCategoryTotal = 15;

// Category numbers of the found-entry tables.
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

// The category each registry switch selects, in the switches' reading order.
inline constexpr int kRegistrySwitchCategory[] = {
    kCatCurrentUser, kCatCom, kCatFonts, kCatAssociations, kCatTypes, kCatAppPaths,
    kCatSharedDlls, kCatEmptyKeys, kCatSounds, kCatHelp, kCatSoftware, kCatDeepScan};

// Fix flags, one per category, 0 or 1.
int FixFlag(int category);

// Clears all fifteen flags, reads the twelve switches of the family, then fixes.
void SelectFixCategories(KeyFamily family);
// Deletes the found entries of the flagged categories.
void FixSelected();
// Deletes the found entries of the file-extension category.
void FixFileExtensions();

// The full scan's main registry pass and its file-extension pass.
void RunRegistryScan();
// Returns the file-extension pass's found count.
int RunFileExtensionScan();

}  // namespace scourel
