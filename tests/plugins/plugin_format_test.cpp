// Reading plug-in files the way the profile functions do, whatever bytes
// they hold.
#include "plugins/plugin_format.h"

#include <gtest/gtest.h>

#include "common/win.h"

namespace scourel {
namespace {

using namespace std::string_literals;

std::wstring Entries(const PluginDefinition& plugin) {
  std::wstring out;
  for (const PluginEntry& entry : plugin.entries) out += entry.name() + L"=" + entry.value + L";";
  return out;
}

TEST(PluginFormatTest, EntriesAsTheProfileFunctionsReadThem) {
  const std::wstring overlong(1200, L'a');
  const struct { std::wstring text, entries; } cases[] = {
      // Gaps are passed over; numbers past the bounds and "01" are never read.
      {L"[Info]\nDelRegKey2=b\nDelRegKey131=x\nDelRegKey130=c\nDelRegValue51=x\nDeleteFile31=x\nDeleteFile01=x",
       L"DelRegKey2=b;DelRegKey130=c;"},
      // Keys, then values, then files, each by number, whatever the file's order.
      {L"[Info]\r\nDeleteFile1=f\r\nDelRegValue9=v\r\nDelRegKey3=k", L"DelRegKey3=k;DelRegValue9=v;DeleteFile1=f;"},
      // Names without case, trimmed; the first of two wins; quotes go; a bare CR ends a line.
      {L"[ info ]\n  deleteFILE1 = \"x y\" \n DeleteFile1=second\rDeleteFile2='q'\rDeleteFile3=\"",
       L"DeleteFile1=x y;DeleteFile2=q;DeleteFile3=\";"},
      // Empty entries, comments, nameless lines and a header without its bracket.
      {L"[Info]\nDeleteFile1=\n;DeleteFile2=x\nDeleteFile3\n[Other\nDeleteFile4=d", L"DeleteFile4=d;"},
      // Only the first Info section; nothing before a header; nothing after a zero.
      {L"DeleteFile1=x\n[Info]\nDeleteFile2=a\0b\n[Info]\nDeleteFile3=x"s, L"DeleteFile2=a;"},
      {L"[Other]\nDeleteFile1=x", L""},
      // An overlong value is kept whole, so that it is refused rather than cut.
      {L"[Info]\nDeleteFile1=" + overlong, L"DeleteFile1=" + overlong + L";"},
  };
  for (const auto& c : cases) EXPECT_EQ(Entries(ReadPlugin(c.text)), c.entries) << c.text;
  EXPECT_FALSE(ReadPlugin(L"[Other]\nDescription=x").hasInfo);
  EXPECT_EQ(ReadPlugin(L"[Info]\nDescription=" + overlong).description.size(), kValueBufferChars - 1);
}

TEST(PluginFormatTest, EncodingsAndGarbage) {
  EXPECT_EQ(DecodeIniBytes("\xEF\xBB\xBF[caf\xC3\xA9]", CP_ACP), L"[caf\u00e9]");
  EXPECT_EQ(DecodeIniBytes("\xFE\xFF\0[\0I"s, CP_ACP), L"[I");
  EXPECT_EQ(DecodeIniBytes("\xFF\xFE[\0I\0x"s, CP_ACP), L"[I");  // an odd last byte goes
  std::string bytes(1 << 20, '\0');
  std::uint32_t seed = 12345;
  for (char& b : bytes) b = static_cast<char>((seed = seed * 1103515245 + 12345) >> 16);
  for (const std::string& start : {std::string(), std::string("\xFF\xFE"), std::string("\xEF\xBB\xBF")}) {
    const PluginDefinition plugin = ReadPlugin(DecodeIniBytes(start + bytes, CP_ACP));
    EXPECT_FALSE(plugin.hasInfo && !plugin.entries.empty());
  }
  // One endless line, then the section: still read, in linear time.
  EXPECT_EQ(Entries(ReadPlugin(std::wstring(4 << 20, L'=') + L"\n[Info]\nDeleteFile1=x")), L"DeleteFile1=x;");
}

}  // namespace
}  // namespace scourel
