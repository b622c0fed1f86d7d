#include "overseer/fix_scope.h"

#include <algorithm>

#include "task/settings.h"

namespace overseer {

namespace p = scourel::protocol;

std::vector<int> FixCategories(const Options& options, const std::wstring& settingsPath) {
  if (!options.task || options.task->task == p::Task::kExtensionFix) return {4};
  const scourel::SettingsFile settings(settingsPath);
  const scourel::KeyFamily family =
      options.secondSet ? scourel::FamilyForSecondSet(options.mode) : scourel::KeyFamily::kFirstSet;
  std::vector<int> categories;
  for (std::size_t i = 0; i < p::kRegistrySwitchCount; ++i) {
    const p::RegistrySwitchSpec& registrySwitch = p::kRegistrySwitches[i];
    const bool on = options.registry ? (*options.registry)[i]
                                     : settings.Switch(family, registrySwitch.keySuffix, scourel::kRegistryChars);
    if (on) categories.push_back(registrySwitch.category);
  }
  std::sort(categories.begin(), categories.end());
  return categories;
}

std::string FixScopeText(const std::vector<int>& categories) {
  if (categories.empty()) return "nothing (no registry switch is on)";
  std::string text;
  for (int category : categories) {
    text += text.empty() ? "" : ", ";
    text += category == 4 ? std::string("file extensions") : std::string(p::RegistryCategoryName(category));
  }
  return text;
}

}  // namespace overseer
