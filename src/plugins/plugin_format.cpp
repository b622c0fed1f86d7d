#include "plugins/plugin_format.h"

#include <unordered_map>

#include "common/text.h"
#include "common/win.h"

namespace scourel {

namespace {

// The blanks the profile functions trim, the end-of-file mark included.
std::wstring_view TrimmedBlanks(std::wstring_view text) { return Trimmed(text, std::wstring_view(L" \t\v\f\x1A")); }

wchar_t FoldAscii(wchar_t c) { return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c; }

std::wstring Folded(std::wstring_view text) {
  std::wstring out(text);
  for (wchar_t& c : out) c = FoldAscii(c);
  return out;
}

std::wstring FromCodePage(std::string_view bytes, unsigned codePage) {
  if (bytes.empty()) return {};
  // The byte count is capped by the reader long before it nears INT_MAX.
  const int size = static_cast<int>(bytes.size());
  const int length = ::MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
  if (length <= 0) return {};
  std::wstring text(static_cast<size_t>(length), L'\0');
  ::MultiByteToWideChar(codePage, 0, bytes.data(), size, text.data(), length);
  return text;
}

std::wstring FromUtf16(std::string_view bytes, bool bigEndian) {
  std::wstring text(bytes.size() / 2, L'\0');  // an odd last byte is dropped
  for (size_t i = 0; i < text.size(); ++i) {
    const auto first = static_cast<unsigned char>(bytes[2 * i]);
    const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
    text[i] = static_cast<wchar_t>(bigEndian ? (first << 8) | second : (second << 8) | first);
  }
  return text;
}

}  // namespace

const EntryFamily& FamilyOf(EntryKind kind) { return kEntryFamilies[static_cast<int>(kind)]; }

std::wstring PluginEntry::name() const { return std::wstring(FamilyOf(kind).base) + std::to_wstring(number); }

bool SameName(std::wstring_view a, std::wstring_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

std::vector<IniSection> ParseIni(std::wstring_view text) {
  std::vector<IniSection> sections(1);
  while (!text.empty()) {
    const size_t end = text.find_first_of(L"\r\n");
    const std::wstring_view line = TrimmedBlanks(text.substr(0, end));
    text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
    if (line.empty() || line.front() == L';') continue;
    if (line.front() == L'[') {
      // A header without its closing bracket opens nothing.
      const size_t close = line.rfind(L']');
      if (close != std::wstring_view::npos) sections.push_back({std::wstring(TrimmedBlanks(line.substr(1, close - 1))), {}});
      continue;
    }
    const size_t equals = line.find(L'=');
    if (equals == std::wstring_view::npos) {
      sections.back().entries.push_back({std::wstring(line), {}});
    } else {
      sections.back().entries.push_back(
          {std::wstring(TrimmedBlanks(line.substr(0, equals))), std::wstring(TrimmedBlanks(line.substr(equals + 1)))});
    }
  }
  return sections;
}

std::wstring ProfileValue(std::wstring_view stored) {
  if (stored.size() >= 2 && (stored.front() == L'"' || stored.front() == L'\'') && stored.back() == stored.front()) {
    stored = stored.substr(1, stored.size() - 2);
  }
  return std::wstring(stored.substr(0, stored.find(L'\0')));
}

std::wstring DecodeIniBytes(std::string_view bytes, unsigned codePage) {
  auto starts = [&](std::string_view mark) { return bytes.substr(0, mark.size()) == mark; };
  if (starts("\xFF\xFE")) return FromUtf16(bytes.substr(2), false);
  if (starts("\xFE\xFF")) return FromUtf16(bytes.substr(2), true);
  if (starts("\xEF\xBB\xBF")) return FromCodePage(bytes.substr(3), CP_UTF8);
  return FromCodePage(bytes, codePage);
}

std::string EncodeUtf16Le(std::wstring_view text) {
  std::string bytes = "\xFF\xFE";
  for (const wchar_t c : text) {
    bytes += static_cast<char>(c & 0xFF);
    bytes += static_cast<char>((c >> 8) & 0xFF);
  }
  return bytes;
}

PluginDefinition ReadPlugin(std::wstring_view text) {
  PluginDefinition plugin;
  const std::vector<IniSection> sections = ParseIni(text);
  const IniSection* info = nullptr;
  // The unnamed first section holds what came before any header.
  for (size_t i = 1; i < sections.size() && !info; ++i) {
    if (SameName(sections[i].name, L"Info")) info = &sections[i];
  }
  if (!info) return plugin;
  plugin.hasInfo = true;

  std::unordered_map<std::wstring, const std::wstring*> byName;
  for (const IniEntry& entry : info->entries) byName.emplace(Folded(entry.name), &entry.value);
  auto lookUp = [&](const std::wstring& name) {
    const auto found = byName.find(Folded(name));
    return found == byName.end() ? std::wstring() : ProfileValue(*found->second);
  };

  plugin.description = lookUp(L"Description").substr(0, kValueBufferChars - 1);
  for (const EntryFamily& family : kEntryFamilies) {
    for (int number = 1; number <= family.bound; ++number) {
      PluginEntry entry{family.kind, number, {}};
      entry.value = lookUp(entry.name());
      if (!entry.value.empty()) plugin.entries.push_back(std::move(entry));
    }
  }
  return plugin;
}

std::wstring PluginText(const PluginDefinition& plugin) {
  std::wstring text = L"[Info]\r\nDescription=" + plugin.description + L"\r\n";
  for (const PluginEntry& entry : plugin.entries) text += entry.name() + L"=" + entry.value + L"\r\n";
  return text;
}

}  // namespace scourel
