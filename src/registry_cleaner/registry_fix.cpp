#include "registry_cleaner/registry_fix.h"

#include "common/relaxed.h"
#include "host/task_totals.h"

namespace scourel {

namespace {
Relaxed<int> g_fixFlags[kRegistryCategoryTotal];
}

int FixFlag(int category) {
  return category >= 0 && category < kRegistryCategoryTotal ? g_fixFlags[category].get() : 0;
}

void SelectFixCategories(KeyFamily family) {
  for (auto& flag : g_fixFlags) flag.set(0);
  int index = 0;
  for (auto suffix : kRegistryKeys) {
    if (ReadSwitch(family, suffix, kRegistryChars)) g_fixFlags[kRegistrySwitchCategory[index]].set(1);
    ++index;
  }
  FixSelected();
}

// The scans that fill the found-entry tables are not built yet, so there is
// nothing to delete.
void FixSelected() {}
void FixFileExtensions() {}

void RunRegistryScan() {
  for (auto& counter : g_totals.registry) counter.set(0);
}

int RunFileExtensionScan() { return 0; }

}  // namespace scourel
