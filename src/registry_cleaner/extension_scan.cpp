#include "registry_cleaner/extension_scan.h"

#include "registry_cleaner/scan_keys.h"

namespace scourel {

namespace {

const wchar_t kFileExts[] = L"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts";

bool ListsOnlyMissingProgIds(const ScanKey& list) {
  if (list.counts().subkeys != 0) return false;
  bool named = false;
  for (const ValueText& value : list.Values()) {
    if (value.name.empty()) continue;
    if (ProgIdRegistered(value.name)) return false;
    named = true;
  }
  return named;
}

}  // namespace

void ExtensionKeysScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring& name, const std::wstring& extensionPath) {
    if (name[0] != L'.') return;
    const ScanKey extension(root, extensionPath);
    if (!extension) return;
    if (extension.Empty()) {
      extension.Record(category);
      return;
    }
    const ScanKey list(root, extensionPath + L"\\OpenWithProgids");
    if (list && ListsOnlyMissingProgIds(list)) list.Record(category);
  });
}

void ProfileExtensionsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey profiles(root, path);
  if (!profiles) return;
  ForEachSubkey(context, profiles, [&](const std::wstring& sid, const std::wstring&) {
    if (sid.rfind(L"S-1-5-21", 0) == 0) ExtensionKeysScan(context, HKEY_USERS, sid + kFileExts, category);
  });
}

}  // namespace scourel
