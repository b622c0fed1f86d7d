// The registry cleaner's fix step and the full scan's registry passes.
#pragma once

#include "protocol/categories.h"
#include "task/settings.h"
#include "task/task_context.h"

namespace scourel {

using protocol::kRegistryCategoryTotal;

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

// Fix flags, one per category, 0 or 1.
int FixFlag(int category);

// Clears all fifteen flags, reads the twelve switches of the family, then fixes.
void SelectFixCategories(const TaskContext& context, KeyFamily family);
// Deletes the found entries of the flagged categories.
void FixSelected(const TaskContext& context);
// Deletes the found entries of the file-extension category.
void FixFileExtensions(const TaskContext& context);

// The full scan's main registry pass and its file-extension pass.
void RunRegistryScan(const TaskContext& context);
// Returns the file-extension pass's found count.
int RunFileExtensionScan(const TaskContext& context);

}  // namespace scourel
