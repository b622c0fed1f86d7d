// Community rules turned into plug-ins: what converts exactly, what is left
// out and why, and sections split at the entry bounds.
#include "plugins/rules_import.h"

#include <gtest/gtest.h>

#include "plugins/plugin_files.h"

namespace scourel {
namespace {

// Written by hand in the community format.
constexpr wchar_t kSample[] =
    LR"(; sample rules
[Foo Player *]
LangSecRef=3023
Detect=HKCU\Software\FooPlayer
DetectFile=%ProgramFiles%\FooPlayer
FileKey1=%LocalAppData%\FooPlayer\Cache|*.*|RECURSE|REMOVESELF
FileKey2=%appdata%\FooPlayer\|*.log; history.dat
FileKey3=%LocalAppData%\FooPlayer\Thumbs|*.*|RECURSE
FileKey4=%Public%\FooPlayer|*.tmp
FileKey5=C:\FooPlayer|*.tmp
FileKey6=%LocalAppData%\FooPlayer\*\Logs|*.log
FileKey7=%WinDir%|*.log
FileKey8=%AppData%|*.*
RegKey1=HKCU\Software\FooPlayer\Recent
RegKey2=HKCU\Software\FooPlayer|LastFolder
RegKey3=HKLM\Software\FooPlayer
RegKey4=HKU\.DEFAULT\Software\FooPlayer
Warning=Closes your playlists.
[Bar Editor *]
ExcludeKey1=FILE|%AppData%\Bar\|keep.cfg
FileKey1=%AppData%\Bar|*.tmp
RegKey1=HKCC\Software\Bar\MRU
[Foo Player]
RegKey1=HKCU\Software\FooPlayer2
)";

std::wstring Summary(const ImportedSection& section) {
  std::wstring out;
  for (const ImportedPlugin& plugin : section.plugins)
    out += L"[" + plugin.fileName + L"]" + PluginText(plugin.definition);
  out += L"skipped:";
  for (const SkippedRule& skipped : section.skipped) out += L" " + skipped.key;
  return out;
}

TEST(RulesImportTest, ConvertsWhatAPluginDoesAlikeAndListsTheRest) {
  const auto sections = ImportRules(kSample, SystemPluginFolders());
  ASSERT_EQ(sections.size(), 3u);
  EXPECT_EQ(Summary(sections[0]),
            L"[Foo Player]" +
                PluginText({true,
                            L"Foo Player *",
                            {{EntryKind::kKey, 1, L"HKEY_CLASSES_ROOT\\Software\\FooPlayer\\Recent"},
                             {EntryKind::kKey, 2, L"HKEY_LOCAL_MACHINE\\.DEFAULT\\Software\\FooPlayer"},
                             {EntryKind::kValue, 1, L"HKEY_CLASSES_ROOT\\Software\\FooPlayer,LastFolder"},
                             {EntryKind::kFile, 1, L"%LocalAppData%\\FooPlayer\\Cache"},
                             {EntryKind::kFile, 2, L"%AppData%\\FooPlayer\\*.log"},
                             {EntryKind::kFile, 3, L"%AppData%\\FooPlayer\\history.dat"}}}) +
                L"skipped: Detect DetectFile FileKey3 FileKey4 FileKey5 FileKey6 FileKey7 FileKey8 RegKey3 Warning");
  EXPECT_EQ(sections[0].skipped[6].reason, "the worker refuses it: the Windows folder or what lies directly in it");
  EXPECT_EQ(Summary(sections[1]),
            L"[Bar Editor]" +
                PluginText({true, L"Bar Editor *", {{EntryKind::kKey, 1, L"HKEY_USERS\\Software\\Bar\\MRU"}}}) +
                L"skipped: ExcludeKey1 FileKey1");
  EXPECT_EQ(sections[2].plugins.at(0).fileName, L"Foo Player [2]");  // names stay unique

  std::wstring big = L"[Big]\n";
  for (int i = 1; i <= 31; ++i)
    big += L"FileKey" + std::to_wstring(i) + L"=%AppData%\\Big|f" + std::to_wstring(i) + L".tmp\n";
  const auto split = ImportRules(big, SystemPluginFolders());
  ASSERT_EQ(split.at(0).plugins.size(), 2u);
  EXPECT_EQ(split[0].plugins[0].definition.entries.size(), 30u);
  EXPECT_EQ(split[0].plugins[1].fileName, L"Big (2)");
  EXPECT_EQ(split[0].plugins[1].definition.entries.at(0).name(), L"DeleteFile1");
}

}  // namespace
}  // namespace scourel
