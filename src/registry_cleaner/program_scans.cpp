#include "registry_cleaner/program_scans.h"

#include "registry_cleaner/scan_keys.h"

namespace scourel {

void AppPathsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring&, const std::wstring& appPath) {
    const ScanKey app(root, appPath);
    if (!app) return;
    const std::vector<ValueText> values = app.Values();
    if (NamesMissingFile(ScanKey::Find(values, L""))) {
      app.Record(category);
      return;
    }
    const std::wstring folder = ScanKey::Find(values, L"Path");
    if (NamesMissingFile(folder)) app.Record(category, L"Path", folder);
  });
}

void CompatibilityFlagsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordValuesWhere(context, root, path, category, [](const ValueText& value) { return NamesMissingFile(value.name); });
}

}  // namespace scourel
