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

// Each plug-in as "[file name|description]" and its entries, then the rules left out.
std::wstring Summary(const ImportedSection& section) {
  std::wstring out;
  for (const ImportedPlugin& plugin : section.plugins) {
    out += L"[" + plugin.fileName + L"|" + plugin.definition.description + L"]";
    for (const PluginEntry& entry : plugin.definition.entries) out += entry.name() + L"=" + entry.value + L";";
  }
  out += L" skipped:";
  for (const SkippedRule& skipped : section.skipped) out += L" " + skipped.key;
  return out;
}

TEST(RulesImportTest, ConvertsWhatAPluginDoesAlikeAndListsTheRest) {
  const auto sections = ImportRules(kSample, SystemPluginFolders());
  ASSERT_EQ(sections.size(), 3u);
  EXPECT_EQ(Summary(sections[0]),
            L"[Foo Player|Foo Player *]DelRegKey1=HKEY_CLASSES_ROOT\\Software\\FooPlayer\\Recent;"
            L"DelRegKey2=HKEY_LOCAL_MACHINE\\.DEFAULT\\Software\\FooPlayer;"
            L"DelRegValue1=HKEY_CLASSES_ROOT\\Software\\FooPlayer,LastFolder;"
            L"DeleteFile1=%LocalAppData%\\FooPlayer\\Cache;DeleteFile2=%AppData%\\FooPlayer\\*.log;"
            L"DeleteFile3=%AppData%\\FooPlayer\\history.dat;"
            L" skipped: Detect DetectFile FileKey3 FileKey4 FileKey5 FileKey6 FileKey7 FileKey8 RegKey3 Warning");
  EXPECT_EQ(sections[0].skipped[6].reason, "the worker refuses it: the Windows folder or what lies directly in it");
  EXPECT_EQ(Summary(sections[1]),
            L"[Bar Editor|Bar Editor *]DelRegKey1=HKEY_USERS\\Software\\Bar\\MRU; skipped: ExcludeKey1 FileKey1");
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
