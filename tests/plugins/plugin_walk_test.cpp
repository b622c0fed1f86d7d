// The plug-in walk over real files and keys, driven through a real worker:
// what the full scan counts, what the clean takes, and everything beside it
// that must stay.
#include <gtest/gtest.h>

#include "common/known_folders.h"
#include "plugins/plugin_definitions.h"
#include "plugins/plugin_files.h"
#include "support/registry_seed.h"
#include "support/task_fixture.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

// Plug-ins with real targets: files below %LocalAppData%, keys below the
// test key, links to a canary, and plug-in files no walk may read. The scan
// counts one key, three values (their key opens) and six files of 1550 bytes
// in all; the clean does not count the value that is not there.
TEST(PluginWalkTest, FullScanCountsAndTheCleanTakesWhatThePluginsName) {
  WorkerHarness worker(L"plugin-e2e");
  ASSERT_TRUE(worker.Started());
  const std::wstring tag = L"scourel-plugin-e2e", plugins = worker.root() + L"\\plugins";
  const std::wstring files = ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\" + tag;
  const auto file = [&](const std::wstring& rest) { return files + L"\\" + rest; };
  ScratchDir canaryDir(tag + L"-canary");
  CanaryTree canary(canaryDir.path());
  ScratchKey keys(tag);
  const auto key = [&](const std::wstring& rest) { return keys.path() + L"\\" + rest; };
  RemoveTree(files);
  const Cleanup planted = RemovedAtEnd({files, plugins});
  for (const wchar_t* sub : {L"k1\\sub", L"k3", L"k131", L"vals", L"keep"}) {
    for (const wchar_t* name : {L"", L"v1", L"other"}) ::RegSetKeyValueW(keys.key(), sub, name, REG_SZ, nullptr, 0);
  }
  for (const auto& [path, size] :
       {std::pair{L"single.dat", 100}, {L"logs\\a.log", 200}, {L"logs\\b.log", 300}, {L"logs\\keep.txt", 7},
        {L"logs\\sub.log\\inner.log", 9}, {L"cache\\x.bin", 400}, {L"cache\\deep\\y.bin", 500},
        {L"cache\\ro.bin", 50}, {L"keep\\file.txt", 11}}) {
    WriteFileBytes(file(path), std::string(static_cast<size_t>(size), 'p'));
  }
  ::SetFileAttributesW(file(L"cache\\ro.bin").c_str(), FILE_ATTRIBUTE_READONLY);
  for (const wchar_t* link : {L"via-link", L"cache\\link"}) ASSERT_TRUE(MakeUnixSymlink(canary.root(), file(link)));
  const std::wstring t = L"%LocalAppData%\\" + tag + L"\\", k = L"HKEY_CLASSES_ROOT\\" + keys.path() + L"\\";
  MakeDirs(plugins + L"\\x.cv");
  std::wstring a = L"[Info]\r\nDescription=Walk\r\n";
  for (const std::wstring& entry :
       {L"DelRegKey2=" + k + L"k1", L"DelRegKey4=HKEY_CURRENT_USER\\" + key(L"k3"), L"DelRegKey131=" + k + L"k131",
        L"DelRegValue1=" + k + L"vals,v1", L"DelRegValue2=" + k + L"vals", L"DelRegValue3=" + k + L"vals,missing",
        L"DeleteFile2=" + t + L"single.dat", L"DeleteFile5=" + t + L"logs\\*.log", L"DeleteFile7=" + t + L"cache",
        L"DeleteFile9=" + t + L"via-link\\*.*", L"DeleteFile30=" + t + L"absent.txt"}) {
    a += entry + L"\r\n";
  }
  WriteFileBytes(plugins + L"\\a.cv", EncodeUtf16Le(a));
  ::SetFileAttributesW((plugins + L"\\a.cv").c_str(), FILE_ATTRIBUTE_READONLY);
  // Each of these, read, would take "keep": one in a folder named like a
  // plug-in, one too large to be a plug-in anyone wrote.
  const std::string keep = std::string(t.begin(), t.end()) + "keep";
  WriteFileBytes(plugins + L"\\x.cv\\inside.cv", "[Info]\nDeleteFile1=" + keep);
  WriteFileBytes(plugins + L"\\big.cv", "[Info]\nDeleteFile1=" + keep + "\n" + std::string(6 << 20, ';'));

  const auto scanText = [&] {
    worker.Send(2087);
    const auto scan = worker.WaitForCopyData(106);
    return scan ? scan->text : L"no reply";
  };
  EXPECT_EQ(scanText(), L"10\\pss1.51 KB");
  EXPECT_FALSE(::GetFileAttributesW((plugins + L"\\a.cv").c_str()) & FILE_ATTRIBUTE_READONLY);
  EXPECT_TRUE(PathExists(file(L"cache\\deep\\y.bin")) && KeyPresent(HKEY_CURRENT_USER, key(L"k1")));
  // Two plug-ins: the folder named like one is none. Without an install root, none at all.
  EXPECT_EQ(RunPlugins(TestContext(Mode::kMeasure, 0, L"", worker.root())), 2);
  EXPECT_EQ(RunPlugins(TestContext(Mode::kMeasure)), -1);

  worker.Send(2055);
  ASSERT_TRUE(worker.WaitFor(2056));
  for (const wchar_t* gone :
       {L"single.dat", L"logs\\a.log", L"logs\\b.log", L"cache\\x.bin", L"cache\\deep", L"cache\\ro.bin"}) {
    EXPECT_FALSE(PathExists(file(gone))) << gone;
  }
  // Not matched, a matching folder, a link that keeps its folder, refused or unread entries.
  for (const wchar_t* kept : {L"logs\\keep.txt", L"logs\\sub.log\\inner.log", L"cache\\link", L"keep\\file.txt"}) {
    EXPECT_TRUE(PathExists(file(kept))) << kept;
  }
  EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, key(L"k1")));
  for (const wchar_t* kept : {L"k3", L"k131", L"keep"}) EXPECT_TRUE(KeyPresent(HKEY_CURRENT_USER, key(kept))) << kept;
  EXPECT_FALSE(ValuePresent(HKEY_CURRENT_USER, key(L"vals"), L"v1"));
  EXPECT_FALSE(ValuePresent(HKEY_CURRENT_USER, key(L"vals"), L""));  // no comma: the default value
  EXPECT_TRUE(ValuePresent(HKEY_CURRENT_USER, key(L"vals"), L"other"));
  EXPECT_EQ(canary.Damage(), L"");

  // The plug-in totals are never reset: the next scan adds what is left (the
  // values' key still opens) to the 10 scanned and 9 cleaned before.
  EXPECT_EQ(scanText(), L"22\\pss3.03 KB");
}

// The one token no shell folder names: the Windows folder's drive.
TEST(PluginWalkTest, SystemDriveIsTheWindowsFoldersDrive) {
  const std::wstring windows = SpecialFolder(CSIDL_WINDOWS);
  EXPECT_EQ(ExpandFileEntry(L"%SystemDrive%\\x", SystemPluginFolders()), windows.substr(0, windows.rfind(L'\\')) + L"\\x");
}

}  // namespace
}  // namespace scourel::test
