#include "registry_cleaner/com_scan.h"

#include "common/registry_paths.h"
#include "registry_cleaner/file_reference.h"
#include "registry_cleaner/registry_issues.h"
#include "registry_cleaner/scan_keys.h"

namespace scourel {

namespace {

// Registered under HKEY_CLASSES_ROOT in the folder or its 32-bit twin.
bool RegisteredIn(const wchar_t* folder, const std::wstring& name) {
  return KeyExists(HKEY_CLASSES_ROOT, std::wstring(folder) + L"\\" + name) ||
         KeyExists(HKEY_CLASSES_ROOT, std::wstring(L"Wow6432Node\\") + folder + L"\\" + name);
}

// Drive letters the file rule tests: L and everything from Q on are left out.
bool FileRuleDrive(wchar_t c) {
  return std::wstring_view(L"ABCDEFGHIJKMNOPabcdefghijklmnop").find(c) != std::wstring_view::npos;
}

void ApplyRules(const ScanKey& key, const std::wstring& ownName, const ValueText& value) {
  const std::wstring& n = value.name;
  const std::wstring& d = value.text;
  const auto record = [&] { key.Record(kCatCom, n, d); };

  if (d.find(L".dll", 1) != std::wstring::npos || d.find(L".DLL", 1) != std::wstring::npos) {
    if (d.find(L":\\") == std::wstring::npos && d.size() >= 2 && d[d.size() - 2] == L'\\') {
      record();
      return;
    }
    const std::size_t slash = d.rfind(L'\\');
    if ((slash == std::wstring::npos ? d.size() : d.size() - slash - 1) < 4) return;
  }
  if (n == L"AppID") {
    if (d.find(L'{') == std::wstring::npos && !d.empty() && d != L"%APPID%") {
      record();
      return;
    }
    if (!RegisteredIn(L"AppID", d)) record();
  }
  if (SameTextIgnoringCase(ownName, L"clsid") || SameTextIgnoringCase(ownName, L"typelib")) {
    if (d.find(L'{') == std::wstring::npos || d.size() < 3) return;
    if (!RegisteredIn(SameTextIgnoringCase(ownName, L"clsid") ? L"CLSID" : L"TypeLib", d)) record();
  } else if (SameTextIgnoringCase(ownName, L"ProxyStubClsid32")) {
    if (!RegisteredIn(L"CLSID", d)) record();
  }
  if (d.find(L":\\") != std::wstring::npos && FileRuleDrive(d[0]) && !IsFileReferenceValid(d)) record();
}

int ScanComKeyAt(const TaskContext& context, HKEY root, const std::wstring& path, int depth) {
  const ScanKey key(root, path);
  if (!key) return 0;
  const std::size_t slash = path.rfind(L'\\');
  const std::wstring ownName = slash == std::wstring::npos ? path : path.substr(slash + 1);
  for (const ValueText& value : key.Values()) {
    if (context.stopped()) return 1;
    if (value.name == L"URL" || value.name == L"CodeBase") continue;
    ApplyRules(key, ownName, value);
  }
  if (depth >= kMaxScanDepth) return 1;
  for (const std::wstring& name : key.SubkeyNames()) {
    if (context.stopped()) return 1;
    ScanComKeyAt(context, root, key.Child(name), depth + 1);
  }
  return 1;
}

}  // namespace

int ScanComKey(const TaskContext& context, HKEY root, const std::wstring& path) {
  return ScanComKeyAt(context, root, path, 0);
}

}  // namespace scourel
