#include "registry_cleaner/user_scans.h"

#include <cwchar>

#include "registry_cleaner/scan_keys.h"

namespace scourel {

namespace {

// Records the subkeys of root\path that hold nothing; with nested set, the
// subkeys of each of them too.
void RecordEmptyBelow(const TaskContext& context, HKEY root, const std::wstring& path, int category, bool nested) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring&, const std::wstring& childPath) {
    const ScanKey child(root, childPath);
    if (child && child.Empty()) child.Record(category);
    if (child && nested) RecordEmptyBelow(context, root, childPath, category, false);
  });
}

}  // namespace

void EmptyAppEventsScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordEmptyBelow(context, root, path + L"\\Schemes\\Apps", category, true);
  RecordEmptyBelow(context, root, path + L"\\EventLabels", category, false);
}

void SoundLabelScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey labels(root, path);
  if (!labels) return;
  ForEachSubkey(context, labels, [&](const std::wstring&, const std::wstring& labelPath) {
    RecordValuesWhere(context, root, labelPath, category,
                      [](const ValueText& value) { return NamesMissingFile(value.text); });
  });
}

void UserSoftwareScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey software(root, path);
  if (!software) return;
  ForEachSubkey(context, software, [&](const std::wstring& name, const std::wstring& vendorPath) {
    for (const wchar_t* kept : {L"Classes", L"Microsoft", L"Policies", L"Wow6432Node"}) {
      if (SameTextIgnoringCase(name, kept)) return;
    }
    const ScanKey vendor(root, vendorPath);
    if (vendor && vendor.Empty()) vendor.Record(category);
  });
}

void MuiCacheScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordValuesWhere(context, root, path, category, [](const ValueText& value) {
    std::wstring program = value.name;
    for (const wchar_t* suffix : {L".FriendlyAppName", L".ApplicationCompany"}) {
      if (EndsWithText(program, suffix)) program.resize(program.size() - std::wcslen(suffix));
    }
    return NamesMissingFile(program);
  });
}

}  // namespace scourel
