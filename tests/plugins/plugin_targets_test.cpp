// Where entries point, and every shape of entry the worker refuses, against
// a made-up system whose folders make each rule reachable on its own.
#include "plugins/plugin_targets.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "common/registry_paths.h"
#include "plugins/plugin_files.h"

namespace scourel {
namespace {

PluginFolders MadeUpSystem() {
  const std::wstring me = L"D:\\Data\\Users\\me";
  return {{me + L"\\AppData\\Roaming", me + L"\\AppData\\Local", me + L"\\Documents", L"C:\\Program Files",
           L"C:\\ProgramData", me, L"C:\\Windows", L"C:"},
          L"C:\\Windows", me, {L"C:\\Program Files", L"", L"C:\\Program Files (x86)"}, {me + L"\\Desktop", L""}};
}

EntryTarget File(const std::wstring& value, const PluginFolders& folders = MadeUpSystem()) {
  return ResolveEntry({EntryKind::kFile, 1, value}, folders);
}

TEST(PluginTargetsTest, FileEntriesAndEveryRefusal) {
  const std::pair<std::wstring, std::wstring> taken[] = {
      {L"%LocalAppData%\\Foo\\.\\x\\..\\\\*.tmp", L"D:\\Data\\Users\\me\\AppData\\Local\\Foo\\*.tmp"},
      {L"%Personal%\\Foo/bar.txt", L"D:\\Data\\Users\\me\\Documents\\Foo\\bar.txt"},
      {L"%ProgramFiles%\\App\\logs\\*.log", L"C:\\Program Files\\App\\logs\\*.log"},
      {L"%UserProfile%\\*.log", L"D:\\Data\\Users\\me\\*.log"},
      {L"%Windows%\\Temp\\*.*", L"C:\\Windows\\Temp\\*.*"},
      {L"%SystemDrive%\\Temp\\x", L"C:\\Temp\\x"},
  };
  for (const auto& [value, path] : taken) EXPECT_EQ(File(value).refusal.empty() ? File(value).file.path : L"-", path);
  const std::pair<std::string_view, std::vector<std::wstring>> refused[] = {
      {"longer than the reader's buffer", {L"%AppData%\\" + std::wstring(990, L'a')}},
      {"no folder token before the first \\", {L"%appdata%\\x", L"%AppData%/x"}},
      {"characters no path may hold", {L"%AppData%\\a\"b"}},
      {"a stream or drive inside the path", {L"%AppData%\\x.txt:secret"}},
      {"a part ending in a dot or a space", {L"%AppData%\\x.\\y", L"%AppData%\\..."}},
      {"a short-name alias", {L"%AppData%\\..\\..\\..\\..\\PROGRA~1\\x"}},
      {"a device name", {L"%AppData%\\Foo\\nul.txt"}},
      {"a wildcard before the last part", {L"%AppData%\\*\\x.log"}},
      {"a drive root or what lies directly in it",
       {L"%SystemDrive%", L"%Windows%\\..\\..\\*.log", L"%Windows%", L"%ProgramFiles%"}},
      {"the Windows folder or what lies directly in it", {L"%Windows%\\System32", L"%Windows%\\explorer.exe"}},
      {"a system folder of Windows or anything in it",
       {L"%Windows%\\WinSxS\\x\\*.*", L"%Windows%\\system32\\drivers\\etc\\hosts"}},
      {"a Program Files folder or what lies directly in it",
       {L"%ProgramFiles%\\App", L"%ProgramFiles%\\..\\Program Files (x86)\\*.*"}},
      {"the folder of all profiles or what lies directly in it", {L"%UserProfile%\\.."}},
      {"a whole profile", {L"%UserProfile%", L"%UserProfile%\\*.*", L"%AppData%\\..\\..\\..\\someone"}},
      {"a whole special folder", {L"%AppData%", L"%UserProfile%\\AppData", L"%UserProfile%\\Desktop\\?*"}},
  };
  std::set<std::string_view> seen;
  for (const auto& [refusal, values] : refused) {
    for (const std::wstring& value : values) EXPECT_EQ(File(value).refusal, refusal) << value;
    seen.insert(refusal);
  }
  PluginFolders lacking = MadeUpSystem();
  lacking.tokens[2].clear();
  seen.insert(File(L"%Personal%\\x\\y", lacking).refusal);
  for (const std::string_view row : FileRefusals()) EXPECT_TRUE(seen.count(row)) << row;
  // Links are looked for below the token's folder, wherever ".." led.
  EXPECT_EQ(File(L"%AppData%\\Foo\\x").file.baseLength, MadeUpSystem().tokens[0].size());
  EXPECT_EQ(File(L"%AppData%\\..\\Local\\x").file.baseLength, std::wstring(L"D:\\Data\\Users\\me\\AppData").size());
}

// The system's own folders: every user folder, with a CSIDL or only a
// known-folder id, is refused whole, however the entry reaches it.
TEST(PluginTargetsTest, EveryUserFolderOfTheSystemIsRefusedWhole) {
  const PluginFolders system = SystemPluginFolders();
  for (const wchar_t* name : {L"Downloads", L"Desktop", L"Documents", L"Pictures", L"Music", L"Videos",
                              L"Saved Games", L"OneDrive", L"Favorites", L"Links", L"Contacts", L"Searches"}) {
    for (const std::wstring& value : {L"%UserProfile%\\" + std::wstring(name),
                                      L"%AppData%\\..\\..\\" + std::wstring(name) + L"\\*.*"}) {
      EXPECT_EQ(File(value, system).refusal, "a whole special folder") << value;
    }
  }
  EXPECT_EQ(File(L"%UserProfile%\\Downloads\\setup.tmp", system).refusal, "");
}

TEST(PluginTargetsTest, RegistryEntriesThroughTheShiftedRoots) {
  const std::wstring cu = L"HKEY_CURRENT_USER\\", cr = L"HKEY_CLASSES_ROOT\\", lm = L"HKEY_LOCAL_MACHINE\\";
  const std::wstring long_(1000, L'k');
  const struct { EntryKind kind; std::wstring value, opened; std::string_view refusal; } cases[] = {
      {EntryKind::kKey, lm + L"S-1\\Software\\A", L"HKEY_USERS\\S-1\\Software\\A,", ""},
      {EntryKind::kKey, L"HKEY_USERS\\Software\\A", L"HKEY_CURRENT_CONFIG\\Software\\A,", ""},
      {EntryKind::kKey, L"HKEY_CURRENT_CONFIG\\Software\\A", cu + L"HKEY_CURRENT_CONFIG\\Software\\A,", ""},
      // The shifted table knows no other name, and compares exactly.
      {EntryKind::kKey, cu + L"Software\\A", cu + cu + L"Software\\A,", ""},
      {EntryKind::kKey, L"hkey_classes_root\\Software\\A", cu + L"hkey_classes_root\\Software\\A,", ""},
      {EntryKind::kKey, L"HKEY_CLASSES_ROOT \\Software\\A", cu + L"HKEY_CLASSES_ROOT \\Software\\A,", ""},
      {EntryKind::kKey, L"Software\\A/B", cu + L"Software\\A/B,", ""},
      {EntryKind::kValue, cr + L"Software\\A,v,w", cu + L"Software\\A,v,w", ""},
      {EntryKind::kKey, cr + long_, cu + long_ + L",", "longer than the reader's buffer"},
      {EntryKind::kValue, cr + L"A\x01\\B,v", cu + L"A\x01\\B,v", "characters no key path may hold"},
      {EntryKind::kKey, cr, cu + L",", "a root key itself"},
      {EntryKind::kKey, cr + L"Software\\", cu + L"Software\\,", "a whole hive or top-level key"},
      {EntryKind::kKey, lm + L"S-1\\Software", L"HKEY_USERS\\S-1\\Software,", "a whole hive or top-level key"},
      {EntryKind::kKey, lm + L"S-1\\Software\\Classes", L"HKEY_USERS\\S-1\\Software\\Classes,",
       "a key Windows shares with every program"},
  };
  std::set<std::string_view> seen;
  for (const auto& c : cases) {
    const EntryTarget target = ResolveEntry({c.kind, 1, c.value}, {});
    // The key it opens as "root\subkey,value name".
    EXPECT_EQ(RootKeyName(target.registry.root) + L"\\" + target.registry.subkey + L"," + target.registry.valueName,
              c.opened);
    EXPECT_EQ(target.refusal, c.refusal) << c.value;
    seen.insert(target.refusal);
  }
  for (const std::string_view row : KeyRefusals()) EXPECT_TRUE(seen.count(row)) << row;
}

TEST(PluginTargetsTest, WildcardsMatchLongNamesOnly) {
  for (const auto& [name, pattern, match] :
       {std::tuple{L"a.log", L"*.log", true}, {L"A.LOG", L"*.log", true}, {L"a.logx", L"*.log", false},
        {L"readme", L"*.*", true}, {L"ab", L"a?", true}, {L"a", L"a?", false}, {L"x.tmp.log", L"*.t*g", true}}) {
    EXPECT_EQ(MatchesPattern(name, pattern), match) << name << L" " << pattern;
  }
}

}  // namespace
}  // namespace scourel
