#include "registry_cleaner/registry_fix.h"

#include "common/registry_key.h"
#include "common/registry_links.h"
#include "common/registry_paths.h"
#include "registry_cleaner/key_tree_delete.h"

namespace scourel {

namespace {

constexpr REGSAM kViewBits = KEY_WOW64_32KEY | KEY_WOW64_64KEY;

// The row's key, for full access, with the view it opened in; none for a row
// that is a registry link or is reached through one.
struct RowKey {
  OpenedKey key;
  REGSAM view = 0;
};

RowKey OpenRow(HKEY root, const std::wstring& path) {
  for (REGSAM mask : {KEY_ALL_ACCESS, KEY_ALL_ACCESS | KEY_WOW64_32KEY, KEY_ALL_ACCESS | KEY_WOW64_64KEY}) {
    if (OpenedKey opened = OpenRegKeyWithoutLinks(root, path, mask)) return {std::move(opened), mask & kViewBits};
  }
  return {};
}

// The one parent level above a deleted key goes too when nothing is left in it.
void DeleteParentIfEmpty(CleanerIo& io, HKEY root, const std::wstring& path, REGSAM view) {
  const std::size_t slash = path.rfind(L'\\');
  if (slash == std::wstring::npos || slash == 0) return;
  const OpenedKey parent = OpenRegKeyWithoutLinks(root, path.substr(0, slash), KEY_ALL_ACCESS | view);
  if (!parent) return;
  const KeyCounts counts = CountsOf(parent.get());
  // Through its own handle, so the key deleted is the key found empty.
  if (counts.values == 0 && counts.subkeys == 0) (void)io.DeleteKey(parent.get(), L"", view);
}

void DeleteKeyOrValue(CleanerIo& io, HKEY root, const RegistryIssue& row, const RowKey& opened) {
  if (DeleteKeyTree(io, root, row.keyPath, opened.view) == 0) return;
  (void)io.DeleteValue(opened.key.get(), row.valueName);
  DeleteKeyTree(io, root, row.keyPath, opened.view);
}

void FixRow(CleanerIo& io, const RegistryIssue& row, bool extensionRow) {
  const HKEY root = RootKeyNamed(row.rootName);
  if (!root || row.keyPath.empty()) return;
  const RowKey opened = OpenRow(root, row.keyPath);
  if (!opened.key) {
    // A key row that is itself a registry link goes as a link, so the scan
    // stops finding it; what it names stays. Through a link on the way,
    // the delete refuses.
    if (row.IsKeyEntry() && !extensionRow && OpenRegKeyUnfollowed(root, row.keyPath, DELETE).isLink) {
      (void)io.DeleteKey(root, row.keyPath, 0);
    }
    return;
  }
  const KeyCounts counts = CountsOf(opened.key.get());
  if (extensionRow) {
    DeleteKeyOrValue(io, root, row, opened);
  } else if (row.IsKeyEntry()) {
    DeleteKeyTree(io, root, row.keyPath, opened.view);
    DeleteParentIfEmpty(io, root, row.keyPath, opened.view);
  } else if (counts.values == 1) {
    DeleteKeyOrValue(io, root, row, opened);
  } else if (counts.values > 1) {
    (void)io.DeleteValue(opened.key.get(), row.valueName);
  }
}

}  // namespace

int FixFlag(int category) {
  return category >= 0 && category < kRegistryCategoryTotal ? g_registry.fixFlags[category].get() : 0;
}

void SelectFixCategories(const TaskContext& context, KeyFamily family) {
  for (auto& flag : g_registry.fixFlags) flag.set(0);
  const SettingsFile settings(context.settingsPath);
  for (const auto& registrySwitch : protocol::kRegistrySwitches) {
    if (settings.Switch(family, registrySwitch.keySuffix, kRegistryChars)) {
      g_registry.fixFlags[registrySwitch.category].set(1);
    }
  }
  FixSelected(context);
}

void FixSelected(const TaskContext& context) {
  for (int category = 0; category < kRegistryCategoryTotal; ++category) {
    if (!FixFlag(category)) continue;
    for (RegistryIssue& row : g_registry.found.Rows(category)) {
      if (g_registry.fixList.Append(category, std::move(row))) g_registry.fixTotal.add(1);
    }
  }
  for (int category = 0; category < kRegistryCategoryTotal; ++category) {
    for (const RegistryIssue& row : g_registry.fixList.Rows(category)) {
      if (context.stopped()) return;
      FixRow(context.io, row, false);
    }
  }
}

void FixFileExtensions(const TaskContext& context) {
  for (const RegistryIssue& row : g_registry.found.Rows(kCatExtensions)) FixRow(context.io, row, true);
}

}  // namespace scourel
