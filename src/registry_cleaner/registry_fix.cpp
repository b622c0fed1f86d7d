#include "registry_cleaner/registry_fix.h"

#include "common/relaxed.h"

namespace scourel {

namespace {
Relaxed<int> g_fixFlags[kRegistryCategoryTotal];
}

int FixFlag(int category) {
  return category >= 0 && category < kRegistryCategoryTotal ? g_fixFlags[category].get() : 0;
}

void SelectFixCategories(const TaskContext& context, KeyFamily family) {
  for (auto& flag : g_fixFlags) flag.set(0);
  const SettingsFile settings(context.settingsPath);
  for (const auto& registrySwitch : protocol::kRegistrySwitches) {
    if (settings.Switch(family, registrySwitch.keySuffix, kRegistryChars)) g_fixFlags[registrySwitch.category].set(1);
  }
  FixSelected(context);
}

// The scans that fill the found-entry tables are not built yet, so there is
// nothing to delete.
void FixSelected(const TaskContext&) {}
void FixFileExtensions(const TaskContext&) {}

void RunRegistryScan(const TaskContext& context) {
  for (auto& counter : context.totals.registry) counter.set(0);
}

int RunFileExtensionScan(const TaskContext&) { return 0; }

}  // namespace scourel
