#include "windows_traces/junk_paths.h"

#include <cwctype>

namespace scourel {

std::wstring_view ExtensionOf(std::wstring_view name) {
  const auto dot = name.rfind(L'.');
  return dot == std::wstring_view::npos ? std::wstring_view() : name.substr(dot + 1);
}

bool IsLogFileName(std::wstring_view name) {
  const std::wstring_view extension = ExtensionOf(name);
  if (extension.size() != 3) return false;
  constexpr std::wstring_view kLog = L"log";
  for (size_t i = 0; i < 3; ++i) {
    if (std::towlower(extension[i]) != kLog[i]) return false;
  }
  return true;
}

bool IsLogWalkSkippedFolder(std::wstring_view name) {
  for (std::wstring_view skip : {L".", L"..", L"system", L"System32", L"SysWOW64", L"winsxs"}) {
    if (name == skip) return true;
  }
  return false;
}

std::wstring DriveOf(std::wstring_view path) { return std::wstring(path.substr(0, path.find(L':'))); }

std::wstring ParentOf(std::wstring_view path) { return std::wstring(path.substr(0, path.rfind(L'\\'))); }

bool ContainsAfterFirst(std::wstring_view text, std::wstring_view part) {
  const auto at = text.find(part);
  return at != std::wstring_view::npos && at > 0;
}

bool HasShortcutMark(std::wstring_view name) {
  return ContainsAfterFirst(name, L".lnk") || ContainsAfterFirst(name, L".LNK");
}

std::wstring SysnativeTarget(std::wstring_view target) {
  constexpr std::wstring_view kFrom = L"Windows\\system32";
  constexpr std::wstring_view kTo = L"Windows\\Sysnative";
  std::wstring out(target);
  for (auto at = out.find(kFrom); at != std::wstring::npos; at = out.find(kFrom, at + kTo.size())) {
    out.replace(at, kFrom.size(), kTo);
  }
  return out;
}

std::wstring PathKey(std::wstring_view path) {
  std::wstring key(path);
  for (wchar_t& c : key) c = static_cast<wchar_t>(std::towlower(c));
  return key;
}

}  // namespace scourel
