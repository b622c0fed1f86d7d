// Small text helpers that the worker and overseer share.
#pragma once

#include <string>
#include <string_view>

#include "common/win.h"

namespace scourel {

// The text without any of `blanks` at either end.
template <typename Char>
std::basic_string_view<Char> Trimmed(std::basic_string_view<Char> text, std::basic_string_view<Char> blanks) {
  const auto first = text.find_first_not_of(blanks);
  if (first == text.npos) return text.substr(text.size());
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}
inline std::wstring_view Trimmed(std::wstring_view text) { return Trimmed(text, std::wstring_view(L" ")); }
inline std::string_view Trimmed(std::string_view text) { return Trimmed(text, std::string_view(" ")); }

// ASCII as it is, anything else as '?': names and numbers are ASCII, so what
// is not never matches one.
inline std::string Narrow(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (const wchar_t c : text) out += (c > 0 && c < 128) ? static_cast<char>(c) : '?';
  return out;
}

// Equal ignoring case, as the file system and the registry compare names.
inline bool SameTextIgnoringCase(std::wstring_view a, std::wstring_view b) {
  return ::CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
         CSTR_EQUAL;
}

}  // namespace scourel
