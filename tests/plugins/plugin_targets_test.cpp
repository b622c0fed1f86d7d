// Where entries point, and every shape of entry the worker refuses, against
// a made-up system whose folders make each rule reachable on its own.
#include "plugins/plugin_targets.h"

#include <gtest/gtest.h>

#include <set>

#include "common/registry_paths.h"

namespace scourel {
namespace {

PluginFolders MadeUpSystem() {
  PluginFolders f;
  const std::wstring me = L"D:\\Data\\Users\\me";
  f.tokens = {me + L"\\AppData\\Roaming",
              me + L"\\AppData\\Local",
              me + L"\\Documents",
              L"C:\\Program Files",
              L"C:\\ProgramData",
              me,
              L"C:\\Windows",
              L"C:"};
  f.windows = L"C:\\Windows";
  f.profile = me;
  f.programFiles = {L"C:\\Program Files", L"", L"C:\\Program Files (x86)"};
  f.special = {me + L"\\Desktop", L""};
  return f;
}

EntryTarget File(const std::wstring& value, const PluginFolders& folders = MadeUpSystem()) {
  return ResolveEntry({EntryKind::kFile, 1, value}, folders);
}

TEST(PluginTargetsTest, FileEntriesAndEveryRefusal) {
  const struct {
    std::wstring value;
    std::string_view refusal;
    std::wstring path{};  // when taken
  } cases[] = {
      {L"%AppData%\\Foo\\bar.log", "", L"D:\\Data\\Users\\me\\AppData\\Roaming\\Foo\\bar.log"},
      {L"%LocalAppData%\\Foo\\.\\x\\..\\\\*.tmp", "", L"D:\\Data\\Users\\me\\AppData\\Local\\Foo\\*.tmp"},
      {L"%Personal%\\Foo/bar.txt", "", L"D:\\Data\\Users\\me\\Documents\\Foo\\bar.txt"},
      {L"%ProgramFiles%\\App\\logs\\*.log", "", L"C:\\Program Files\\App\\logs\\*.log"},
      {L"%UserProfile%\\*.log", "", L"D:\\Data\\Users\\me\\*.log"},
      {L"%Windows%\\Temp\\*.*", "", L"C:\\Windows\\Temp\\*.*"},
      {L"%SystemDrive%\\Temp\\x", "", L"C:\\Temp\\x"},
      {L"%AppData%\\" + std::wstring(990, L'a'), "longer than the reader's buffer"},
      {L"%appdata%\\x", "no folder token before the first \\"},
      {L"%AppData%/x", "no folder token before the first \\"},
      {L"%AppData%\\a\"b", "characters no path may hold"},
      {L"%AppData%\\x.txt:secret", "a stream or drive inside the path"},
      {L"%AppData%\\x.\\y", "a part ending in a dot or a space"},
      {L"%AppData%\\...", "a part ending in a dot or a space"},
      {L"%AppData%\\..\\..\\..\\..\\PROGRA~1\\x", "a short-name alias"},
      {L"%AppData%\\Foo\\nul.txt", "a device name"},
      {L"%AppData%\\*\\x.log", "a wildcard before the last part"},
      {L"%SystemDrive%", "a drive root or what lies directly in it"},
      {L"%Windows%\\..\\..\\*.log", "a drive root or what lies directly in it"},
      {L"%Windows%", "a drive root or what lies directly in it"},
      {L"%Windows%\\System32", "the Windows folder or what lies directly in it"},
      {L"%Windows%\\explorer.exe", "the Windows folder or what lies directly in it"},
      {L"%Windows%\\WinSxS\\x\\*.*", "a system folder of Windows or anything in it"},
      {L"%Windows%\\system32\\drivers\\etc\\hosts", "a system folder of Windows or anything in it"},
      {L"%ProgramFiles%", "a drive root or what lies directly in it"},
      {L"%ProgramFiles%\\App", "a Program Files folder or what lies directly in it"},
      {L"%ProgramFiles%\\..\\Program Files (x86)\\*.*", "a Program Files folder or what lies directly in it"},
      {L"%UserProfile%\\..", "the folder of all profiles or what lies directly in it"},
      {L"%UserProfile%", "a whole profile"},
      {L"%UserProfile%\\*.*", "a whole profile"},
      {L"%AppData%\\..\\..\\..\\someone", "a whole profile"},
      {L"%AppData%", "a whole special folder"},
      {L"%UserProfile%\\AppData", "a whole special folder"},
      {L"%UserProfile%\\Desktop\\?*", "a whole special folder"},
  };
  std::set<std::string_view> seen;
  for (const auto& c : cases) {
    const EntryTarget target = File(c.value);
    EXPECT_EQ(target.refusal, c.refusal) << c.value;
    if (c.refusal.empty()) {
      EXPECT_EQ(target.file.path, c.path);
    }
    seen.insert(target.refusal);
  }
  PluginFolders lacking = MadeUpSystem();
  lacking.tokens[2].clear();
  seen.insert(File(L"%Personal%\\x\\y", lacking).refusal);
  for (const std::string_view row : FileRefusals()) EXPECT_TRUE(seen.count(row)) << row;
  // Links are looked for below the token's folder, wherever ".." led.
  EXPECT_EQ(File(L"%AppData%\\Foo\\x").file.baseLength, MadeUpSystem().tokens[0].size());
  EXPECT_EQ(File(L"%AppData%\\..\\Local\\x").file.baseLength, std::wstring(L"D:\\Data\\Users\\me\\AppData").size());
  EXPECT_TRUE(File(L"%AppData%\\Foo\\*.log").file.wildcard);
}

// The key an entry opens as "root\subkey,value name".
std::wstring Opened(const RegistryTarget& target) {
  return RootKeyName(target.root) + L"\\" + target.subkey + L"," + target.valueName;
}

TEST(PluginTargetsTest, RegistryEntriesThroughTheShiftedRoots) {
  const std::wstring cu = L"HKEY_CURRENT_USER\\", cr = L"HKEY_CLASSES_ROOT\\", lm = L"HKEY_LOCAL_MACHINE\\";
  const std::wstring long_(1000, L'k');
  const struct {
    EntryKind kind;
    std::wstring value, opened;
    std::string_view refusal;
  } cases[] = {
      {EntryKind::kKey, cr + L"Software\\A", cu + L"Software\\A,", ""},
      {EntryKind::kKey, lm + L"S-1\\Software\\A", L"HKEY_USERS\\S-1\\Software\\A,", ""},
      {EntryKind::kKey, L"HKEY_USERS\\Software\\A", L"HKEY_CURRENT_CONFIG\\Software\\A,", ""},
      {EntryKind::kKey, L"HKEY_CURRENT_CONFIG\\Software\\A", cu + L"HKEY_CURRENT_CONFIG\\Software\\A,", ""},
      {EntryKind::kKey, L"Software\\A/B", cu + L"Software\\A/B,", ""},
      {EntryKind::kValue, cr + L"Software\\A,v,w", cu + L"Software\\A,v,w", ""},
      {EntryKind::kValue, cr + L"Software\\A", cu + L"Software\\A,", ""},
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
    EXPECT_EQ(Opened(target.registry), c.opened);
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
