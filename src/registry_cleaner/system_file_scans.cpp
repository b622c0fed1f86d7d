#include "registry_cleaner/system_file_scans.h"

#include "common/known_folders.h"
#include "registry_cleaner/scan_keys.h"

namespace scourel {

void FontScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordValuesWhere(context, root, path, category, [](const ValueText& value) { return NamesMissingFile(value.text); });
}

void HelpScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordValuesWhere(context, root, path, category, [](const ValueText& value) {
    if (value.text.empty() || value.name.empty()) return false;
    return NamesMissingFile(EndsWithText(value.text, value.name) ? value.text : WithBackslash(value.text) + value.name);
  });
}

void SharedDllScan(const TaskContext& context, HKEY root, const std::wstring& path, int category) {
  RecordValuesWhere(context, root, path, category, [](const ValueText& value) { return NamesMissingFile(value.name); });
}

}  // namespace scourel
