#include "registry_cleaner/scan_keys.h"

#include <cwctype>

#include "common/registry_paths.h"
#include "registry_cleaner/file_reference.h"
#include "registry_cleaner/registry_issues.h"

namespace scourel {

namespace {

// An empty path opens the root itself: the handle given back is the
// predefined one, so success is told by the status.
OpenedKey OpenForScan(HKEY root, const std::wstring& path) {
  OpenedKey opened = OpenRegKey(root, path, KEY_READ);
  if (opened.status == ERROR_SUCCESS) return opened;
  return OpenRegKey(root, path, KEY_ALL_ACCESS | KEY_WOW64_32KEY);
}

// The program a command line starts: the quoted part when it begins with a
// quote, else the text up to the first program extension followed by a blank.
std::wstring LeadingProgram(const std::wstring& text) {
  if (!text.empty() && text[0] == L'"') {
    const std::size_t close = text.find(L'"', 1);
    return close == std::wstring::npos ? text.substr(1) : text.substr(1, close - 1);
  }
  std::wstring lower = text;
  for (auto& c : lower) c = static_cast<wchar_t>(::towlower(c));
  for (const wchar_t* extension : {L".exe ", L".com ", L".bat ", L".cmd "}) {
    const std::size_t at = lower.find(extension);
    if (at != std::wstring::npos) return text.substr(0, at + 4);
  }
  return text;
}

}  // namespace

ScanKey::ScanKey(HKEY root, std::wstring path) : root_(root), rootName_(RootKeyName(root)), path_(std::move(path)) {
  OpenedKey opened = OpenForScan(root_, path_);
  if (opened.status != ERROR_SUCCESS) return;
  open_ = true;
  key_ = std::move(opened.key);
  g_registry.SetProgress(rootName_ + L"\\" + path_);
  counts_ = CountsOf(key_.get());
}

std::vector<ValueText> ScanKey::Values() const {
  std::vector<ValueText> values(counts_.values);
  for (DWORD index = 0; index < counts_.values; ++index) {
    g_registry.examined.add(1);
    EnumValueText(key_.get(), index, values[index].name, values[index].text);
  }
  return values;
}

std::vector<std::wstring> ScanKey::SubkeyNames() const {
  std::vector<std::wstring> names;
  names.reserve(counts_.subkeys);
  for (DWORD index = 0; index < counts_.subkeys; ++index) {
    std::wstring name = EnumSubkeyName(key_.get(), index);
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

std::wstring ScanKey::Find(const std::vector<ValueText>& values, const std::wstring& name) {
  for (const auto& value : values) {
    if (SameTextIgnoringCase(value.name, name)) return value.text;
  }
  return {};
}

std::wstring ScanKey::Child(const std::wstring& name) const { return path_.empty() ? name : path_ + L"\\" + name; }

bool ScanKey::Record(int category, const std::wstring& valueName, const std::wstring& valueData) const {
  return RecordIssue(category, rootName_, path_, valueName, valueData);
}

bool IsExcludedPath(const std::wstring& path) {
  if (path.find(L"SOFTWARE\\CLASSES", 1) != std::wstring::npos) return true;
  return SameTextIgnoringCase(path, L"INTERFACE") || SameTextIgnoringCase(path, L"TYPELIB") || SameTextIgnoringCase(path, L"CLSID");
}

bool NamesMissingFile(const std::wstring& text) {
  if (text.find(L":\\") == std::wstring::npos) return false;
  return !IsFileReferenceValid(text) && !IsFileReferenceValid(LeadingProgram(text));
}

bool LooksLikeClassId(const std::wstring& text) {
  if (text.size() != 38 || text.front() != L'{' || text.back() != L'}') return false;
  for (std::size_t i = 1; i < 37; ++i) {
    const wchar_t c = text[i];
    const bool dash = i == 9 || i == 14 || i == 19 || i == 24;
    if (dash ? c != L'-' : !::iswxdigit(c)) return false;
  }
  return true;
}

bool ClassRegistered(const std::wstring& classId) {
  return KeyExists(HKEY_CLASSES_ROOT, L"CLSID\\" + classId) ||
         KeyExists(HKEY_CLASSES_ROOT, L"Wow6432Node\\CLSID\\" + classId);
}

bool ProgIdRegistered(const std::wstring& progId) {
  if (progId.empty() || progId.find(L'\\') != std::wstring::npos) return true;
  return KeyExists(HKEY_CLASSES_ROOT, progId) != 0;
}

bool EndsWithText(const std::wstring& text, const std::wstring& tail) {
  return text.size() >= tail.size() && SameTextIgnoringCase(text.substr(text.size() - tail.size()), tail);
}

}  // namespace scourel
