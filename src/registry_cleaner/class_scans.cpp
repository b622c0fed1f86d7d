#include "registry_cleaner/class_scans.h"

#include "registry_cleaner/registry_issues.h"
#include "registry_cleaner/scan_keys.h"

namespace scourel {

void EmptyChildKeysScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring&, const std::wstring& childPath) {
    const ScanKey child(root, childPath);
    if (child && child.Empty()) child.Record(category);
  });
}

void FileTypeScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring& name, const std::wstring& childPath) {
    if (LooksLikeClassId(name) && !ClassRegistered(name)) RecordIssue(category, parent.rootName(), childPath, {}, {});
  });
}

void AssociationScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring& name, const std::wstring& extensionPath) {
    if (name[0] != L'.') return;
    const ScanKey extension(root, extensionPath);
    if (!extension) return;
    const std::wstring progId = ScanKey::Find(extension.Values(), L"");
    if (ProgIdRegistered(progId)) return;
    if (extension.counts().subkeys == 0 || extension.counts().values > 1) extension.Record(category, L"", progId);
  });
}

void ProgIdScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  const ScanKey parent(root, path);
  if (!parent) return;
  ForEachSubkey(context, parent, [&](const std::wstring& name, const std::wstring& progIdPath) {
    if (name[0] == L'.') return;
    if (const ScanKey classKey(root, progIdPath + L"\\CLSID"); classKey) {
      const std::wstring classId = ScanKey::Find(classKey.Values(), L"");
      if (LooksLikeClassId(classId) && !ClassRegistered(classId)) classKey.Record(category, L"", classId);
    }
    const ScanKey shell(root, progIdPath + L"\\shell");
    if (!shell) return;
    for (const std::wstring& verb : shell.SubkeyNames()) {
      const ScanKey command(root, shell.Child(verb) + L"\\command");
      if (command && NamesMissingFile(ScanKey::Find(command.Values(), L""))) {
        RecordIssue(category, parent.rootName(), shell.Child(verb), {}, {});
      }
    }
  });
}

void ApprovedExtensionScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordValuesWhere(context, root, path, category, [](const ValueText& value) {
    return LooksLikeClassId(value.name) && !ClassRegistered(value.name);
  });
}

}  // namespace scourel
