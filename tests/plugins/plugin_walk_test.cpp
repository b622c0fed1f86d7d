// The plug-in walk over real files and keys: what the scan counts, what the
// clean takes, and everything beside it that must stay; then the same
// numbers through a real worker's messages.
#include <gtest/gtest.h>

#include "common/known_folders.h"
#include "common/registry_key.h"
#include "common/registry_paths.h"
#include "plugins/plugin_definitions.h"
#include "plugins/plugin_files.h"
#include "plugins/plugin_format.h"
#include "protocol/messages.h"
#include "protocol/reply_text.h"
#include "support/fixtures.h"
#include "support/task_fixture.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

// Plug-ins with real targets: files below %LocalAppData%\<tag>, keys below
// HKCU\Software\ScourelTests\<tag>, links to a canary, and the bad files a
// download may hold. What a scan and a clean must find is spelt out below.
class PlantedPlugins {
 public:
  static constexpr int kPlugins = 5;      // the folder named like one is none
  static constexpr int kScanItems = 11;   // two keys, three values (their key opens), six files
  static constexpr int kCleanItems = 10;  // the value that is not there is not counted
  static constexpr float kBytes = 100 + 200 + 300 + 400 + 500 + 50;

  PlantedPlugins(const std::wstring& installRoot, const std::wstring& tag)
      : plugins_(installRoot + L"\\plugins"),
        targets_(ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\" + tag),
        canaryDir_(tag + L"-canary"),
        canary_(canaryDir_.path()),
        keys_(tag) {
    RemoveTree(targets_);
    for (const wchar_t* sub : {L"k1\\sub", L"k2", L"k3", L"k131", L"vals", L"keep"}) {
      UniqueRegKey key;
      ::RegCreateKeyExW(keys_.key(), sub, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(), nullptr);
      for (const wchar_t* name : {L"", L"v1", L"other"}) ::RegSetValueExW(key.get(), name, 0, REG_SZ, nullptr, 0);
    }
    for (const auto& [path, size] :
         {std::pair{L"single.dat", 100}, {L"logs\\a.log", 200}, {L"logs\\b.log", 300}, {L"logs\\keep.txt", 7},
          {L"logs\\sub.log\\inner.log", 9}, {L"cache\\x.bin", 400}, {L"cache\\deep\\y.bin", 500},
          {L"cache\\ro.bin", 50}, {L"keep\\file.txt", 11}}) {
      MakeDirs(target(path).substr(0, target(path).rfind(L'\\')));
      WriteFileBytes(target(path), std::string(static_cast<size_t>(size), 'p'));
    }
    ::SetFileAttributesW(target(L"cache\\ro.bin").c_str(), FILE_ATTRIBUTE_READONLY);
    ok_ =
        MakeUnixSymlink(canary_.root(), target(L"via-link")) && MakeUnixSymlink(canary_.root(), target(L"cache\\link"));

    const std::wstring t = L"%LocalAppData%\\" + tag + L"\\", k = L"HKEY_CLASSES_ROOT\\" + keys_.path() + L"\\";
    const std::wstring a =
        L"[Info]\r\nDescription=Walk\r\nDelRegKey2=" + k + L"k1\r\nDelRegKey3=HKEY_LOCAL_MACHINE\\" + UserHive() +
        L"\\" + keys_.path() + L"\\k2\r\nDelRegKey4=HKEY_CURRENT_USER\\" + keys_.path() + L"\\k3\r\nDelRegKey131=" + k +
        L"k131\r\nDelRegValue1=" + k + L"vals,v1\r\nDelRegValue2=" + k + L"vals\r\nDelRegValue3=" + k +
        L"vals,missing\r\nDeleteFile2=" + t + L"single.dat\r\nDeleteFile5=" + t + L"logs\\*.log\r\nDeleteFile7=" + t +
        L"cache\r\nDeleteFile9=" + t + L"via-link\\*.*\r\nDeleteFile30=" + t + L"absent.txt\r\n";
    MakeDirs(plugins_ + L"\\x.cv");
    WriteFileBytes(plugins_ + L"\\a.cv", EncodeUtf16Le(a));
    ::SetFileAttributesW((plugins_ + L"\\a.cv").c_str(), FILE_ATTRIBUTE_READONLY);
    // Each of these, read whole, would take "keep".
    const std::string keep = std::string(t.begin(), t.end()) + "keep";
    WriteFileBytes(plugins_ + L"\\x.cv\\inside.cv", "[Info]\nDeleteFile1=" + keep);
    WriteFileBytes(plugins_ + L"\\long.cv", "[Info]\nDeleteFile1=" + keep + std::string(990, ' ') + "\\x");
    WriteFileBytes(plugins_ + L"\\noinfo.cv", "[Other]\nDeleteFile1=" + keep);
    WriteFileBytes(plugins_ + L"\\big.cv", "[Info]\nDeleteFile1=" + keep + "\n" + std::string(6 << 20, ';'));
    std::string garbage(64 << 10, '\0');
    std::uint32_t seed = 7;
    for (char& b : garbage) b = static_cast<char>((seed = seed * 1103515245 + 12345) >> 16);
    WriteFileBytes(plugins_ + L"\\garbage.cv", garbage);
  }
  ~PlantedPlugins() {
    RemoveTree(targets_);
    RemoveTree(plugins_);
  }

  bool ok() const { return ok_ && !UserHive().empty(); }
  std::wstring target(const std::wstring& rest) const { return targets_ + L"\\" + rest; }
  std::wstring key(const std::wstring& rest) const { return keys_.path() + L"\\" + rest; }
  const CanaryTree& canary() const { return canary_; }
  std::wstring pluginsFolder() const { return plugins_; }

 private:
  // The hive below HKEY_USERS that holds our test key is the current user's.
  std::wstring UserHive() const {
    std::wstring hive;
    for (DWORD i = 0; !(hive = EnumSubkeyName(HKEY_USERS, i)).empty(); ++i) {
      if (KeyExists(HKEY_USERS, hive + L"\\" + keys_.path())) return hive;
    }
    return hive;
  }

  std::wstring plugins_, targets_;
  ScratchDir canaryDir_;
  CanaryTree canary_;
  ScratchKey keys_;
  bool ok_ = true;
};

bool KeyThere(const std::wstring& path) { return static_cast<bool>(OpenRegKey(HKEY_CURRENT_USER, path, KEY_READ)); }
bool ValueThere(const std::wstring& path, const wchar_t* name) {
  return ::RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name, RRF_RT_ANY, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

struct Totals {
  std::int32_t items = g_totals.pluginItems.get();
  float bytes = g_totals.pluginBytes.get();
};

TEST(PluginWalkTest, TokensAreTheShellFolders) {
  const PluginFolders folders = SystemPluginFolders();
  for (const FolderToken& token : kFolderTokens) {
    std::wstring folder = SpecialFolder(token.csidl);
    if (token.token == L"%SystemDrive%") folder.resize(folder.rfind(L'\\'));
    ASSERT_FALSE(folder.empty());
    EXPECT_EQ(ExpandFileEntry(std::wstring(token.token) + L"\\x.log", folders), folder + L"\\x.log");
  }
}

TEST(PluginWalkTest, ScanCountsAndCleanTakesWhatThePluginsName) {
  ScratchDir root(L"plugin-walk");
  PlantedPlugins planted(root.path(), L"scourel-plugin-walk");
  ASSERT_TRUE(planted.ok());
  EXPECT_EQ(RunPlugins(TestContext(Mode::kMeasure)), -1);  // no install root

  const Totals before;
  EXPECT_EQ(RunPlugins(TestContext(Mode::kMeasure, 0, L"", root.path())), PlantedPlugins::kPlugins);
  EXPECT_EQ(g_totals.pluginItems.get() - before.items, PlantedPlugins::kScanItems);
  EXPECT_EQ(g_totals.pluginBytes.get() - before.bytes, PlantedPlugins::kBytes);
  EXPECT_FALSE(::GetFileAttributesW((planted.pluginsFolder() + L"\\a.cv").c_str()) & FILE_ATTRIBUTE_READONLY);
  EXPECT_TRUE(PathExists(planted.target(L"cache\\deep\\y.bin")) && KeyThere(planted.key(L"k1")));

  const Totals scanned;
  RunPlugins(TestContext(Mode::kErase, 2, L"", root.path()));
  EXPECT_EQ(g_totals.pluginItems.get() - scanned.items, PlantedPlugins::kCleanItems);
  EXPECT_EQ(g_totals.pluginBytes.get() - scanned.bytes, PlantedPlugins::kBytes);
  for (const wchar_t* gone :
       {L"single.dat", L"logs\\a.log", L"logs\\b.log", L"cache\\x.bin", L"cache\\deep", L"cache\\ro.bin"}) {
    EXPECT_FALSE(PathExists(planted.target(gone))) << gone;
  }
  // Not matched, a matching folder, a link that keeps its folder, refused or unread entries.
  for (const wchar_t* kept : {L"logs\\keep.txt", L"logs\\sub.log\\inner.log", L"cache\\link", L"keep\\file.txt"}) {
    EXPECT_TRUE(PathExists(planted.target(kept))) << kept;
  }
  EXPECT_FALSE(KeyThere(planted.key(L"k1")));
  EXPECT_FALSE(KeyThere(planted.key(L"k2")));  // named under HKEY_USERS through HKEY_LOCAL_MACHINE
  EXPECT_TRUE(KeyThere(planted.key(L"k3")) && KeyThere(planted.key(L"k131")) && KeyThere(planted.key(L"keep")));
  EXPECT_FALSE(ValueThere(planted.key(L"vals"), L"v1"));
  EXPECT_FALSE(ValueThere(planted.key(L"vals"), L""));  // no comma: the default value
  EXPECT_TRUE(ValueThere(planted.key(L"vals"), L"other"));
  EXPECT_EQ(planted.canary().Damage(), L"");
}

TEST(PluginWalkTest, FullScanAndCleanThroughTheWorker) {
  WorkerHarness worker(L"plugin-e2e");
  ASSERT_TRUE(worker.Started());
  PlantedPlugins planted(worker.root(), L"scourel-plugin-e2e");
  ASSERT_TRUE(planted.ok());
  using protocol::kScanPlugins;

  worker.Send(2087);
  auto scan = worker.WaitForCopyData(kScanPlugins);
  ASSERT_TRUE(scan);
  EXPECT_EQ(scan->text, PluginScanText(PlantedPlugins::kScanItems, PlantedPlugins::kBytes));

  worker.Send(2055);
  ASSERT_TRUE(worker.WaitFor(2056));
  EXPECT_EQ(planted.canary().Damage(), L"");

  // The plug-in totals are never reset: the next scan adds what is left (the
  // values' key still opens) to everything counted before.
  worker.Send(2087);
  scan = worker.WaitForCopyData(kScanPlugins);
  ASSERT_TRUE(scan);
  EXPECT_EQ(scan->text,
            PluginScanText(PlantedPlugins::kScanItems + PlantedPlugins::kCleanItems + 3, 2 * PlantedPlugins::kBytes));
}

}  // namespace
}  // namespace scourel::test
