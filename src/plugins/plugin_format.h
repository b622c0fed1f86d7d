// The ".cv" plug-in file: an INI file whose "Info" section holds a
// description and numbered entries naming registry keys, registry values and
// files to delete. Pure text handling: users download plug-ins, so this takes
// any bytes at all and never trusts a length or a shape.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace scourel {

enum class EntryKind { kKey, kValue, kFile };

// Entry names are the base and a number ("DelRegKey7"); every number up to
// the bound is tried, so gaps are allowed.
struct EntryFamily {
  EntryKind kind;
  std::wstring_view base;
  int bound;
};
inline constexpr EntryFamily kEntryFamilies[] = {
    {EntryKind::kKey, L"DelRegKey", 130},
    {EntryKind::kValue, L"DelRegValue", 50},
    {EntryKind::kFile, L"DeleteFile", 30},
};
const EntryFamily& FamilyOf(EntryKind kind);

// A value is read into a buffer of this many characters, terminator included.
inline constexpr std::size_t kValueBufferChars = 1000;
// The largest plug-in holds about 0.4 MiB of text; anything much larger is
// not a plug-in anyone wrote, and is skipped whole rather than parsed.
inline constexpr std::uint64_t kMaxPluginFileBytes = 1u << 20;

struct PluginEntry {
  EntryKind kind = EntryKind::kKey;
  int number = 0;
  std::wstring value;  // as read, not cut to the buffer: an overlong one is refused later
  std::wstring name() const;
};

struct PluginDefinition {
  bool hasInfo = false;         // an "Info" section was found
  std::wstring description;     // cut to the buffer
  std::vector<PluginEntry> entries;  // keys, then values, then files, each by number
};

// INI text as the profile functions read it: lines end at CR or LF, names
// and values are trimmed, a name ends at the first "=", a line "[name]"
// opens a section. Lines before the first section belong to one with no name.
struct IniEntry {
  std::wstring name;
  std::wstring value;
};
struct IniSection {
  std::wstring name;
  std::vector<IniEntry> entries;
};
std::vector<IniSection> ParseIni(std::wstring_view text);

// How the profile functions hand a stored value back: a pair of matching
// quotes around it dropped, and nothing after an embedded zero.
std::wstring ProfileValue(std::wstring_view stored);

// File bytes to text: a UTF-16 (either byte order) or UTF-8 byte-order mark
// decides; without one the bytes are in `codePage`.
std::wstring DecodeIniBytes(std::string_view bytes, unsigned codePage);
// UTF-16LE with its byte-order mark, which the profile functions read back
// exactly on every system.
std::string EncodeUtf16Le(std::wstring_view text);

// The first "Info" section (names compared without case); the first of
// several entries of one name wins. Missing and empty entries are left out.
PluginDefinition ReadPlugin(std::wstring_view text);

// A plug-in file's text: "Info", its description, then its entries under
// their own numbers.
std::wstring PluginText(const PluginDefinition& plugin);

// ASCII-only case folding, for INI names.
bool SameName(std::wstring_view a, std::wstring_view b);

}  // namespace scourel
