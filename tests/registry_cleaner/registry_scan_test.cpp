// The reference tests the scans share, the COM rules one by one, and the
// found-entry tables. (The scans over the sandbox's registry with the seed
// in it, false positives included, are counted in the fix tests.)
#include "registry_cleaner/scan_keys.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "registry_cleaner/com_scan.h"
#include "registry_cleaner/installer_scans.h"
#include "registry_cleaner/registry_issues.h"
#include "support/registry_seed.h"
#include "support/task_fixture.h"

namespace scourel::test {
namespace {

TEST(RegistryScanTest, ReferenceTests) {
  ScratchDir dir(L"registry-references");
  WriteFileBytes(dir / L"app.exe", "x");
  const std::wstring app = dir / L"app.exe", gone = dir / L"gone.exe";
  const std::pair<std::wstring, bool> missing[] = {
      {gone, true}, {L"\"" + gone + L"\" \"%1\"", true}, {app, false}, {L"\"" + app + L"\" file:%1", false},
      {app + L" setupapi,InstallHinfSection DefaultInstall 132 %1", false},  // Wine's own .inf verb
      {L"MsiExec.exe /X{5C0E1000-0000-4000-8000-000000000001}", false},      // no drive: not judged
      {L"gone.exe", false}, {L"%ProgramFiles%\\gone.exe", false}, {L"Z:\\gone.exe", false}, {L"", false}};
  for (const auto& [text, expected] : missing) EXPECT_EQ(NamesMissingFile(text), expected) << text;
  EXPECT_EQ(UnpackGuid(L"ABCDEF0123456789ABCDEF0123456789"), L"{10FEDCBA-5432-9876-BADC-FE1032547698}");
}

TEST(ComScanTest, RulesValueByValue) {
  const std::wstring r1 = L"{5C0E1000-0000-4000-8000-000000000011}", r32 = L"{5C0E1000-0000-4000-8000-000000000012}";
  const std::wstring appId = L"{5C0E1000-0000-4000-8000-000000000013}", lib = L"{5C0E1000-0000-4000-8000-000000000014}";
  const std::wstring m1 = L"{5C0E1000-0000-4000-8000-000000000019}", gone = L"C:\\scourel-tests\\com-missing";
  PlantedRegistry registered;
  for (const auto& path : {L"CLSID\\" + r1, L"Wow6432Node\\CLSID\\" + r32, L"AppID\\" + appId, L"TypeLib\\" + lib}) {
    registered.Plant(HKEY_CLASSES_ROOT, path);
  }
  const struct {
    const wchar_t* keyName;
    const wchar_t* valueName;
    std::wstring data;
    int rows;
  } cases[] = {
      {L"InprocServer32", L"", L"lib.dll\\1", 1},           // no drive, ends in "\" and one character
      {L"InprocServer32", L"", gone + L"\\lib.dll\\1", 0},  // a short name behind the last "\" ends it
      {L"InprocServer32", L"", gone + L"\\lib.dll", 1}, {L"InprocServer32", L"", L"p:\\gone\\lib.ocx", 1},
      {L"InprocServer32", L"URL", gone + L"\\lib.dll", 0}, {L"InprocServer32", L"CodeBase", gone + L"\\lib.dll", 0},
      {L"InprocServer32", L"", L"q:\\gone\\lib.dll", 0},
      {L"InprocServer32", L"", L"L:\\gone\\lib.dll", 0},  // L and Q on are never tested
      {L"Key", L"AppID", L"%APPID%", 1}, {L"Key", L"AppID", L"app.exe", 1},  // no brace: no lookup
      {L"Key", L"AppID", appId, 0}, {L"Key", L"AppID", m1, 1}, {L"clsid", L"", r1, 0},
      {L"CLSID", L"", r32, 0},  // registered only in the 32-bit twin
      {L"Clsid", L"", m1, 1}, {L"clsid", L"", gone + L"\\x.dll", 0},  // no brace ends it before the file rule
      {L"clsid", L"AppID", m1, 2},  // two rules, two rows
      {L"TypeLib", L"", lib, 0}, {L"typelib", L"", m1, 1}, {L"proxystubclsid32", L"", r32, 0},
      {L"ProxyStubClsid32", L"", L"no brace", 1},
  };
  const std::wstring scratch = L"Software\\ScourelTests\\com-rules";
  const auto pathOf = [&](std::size_t i) { return scratch + L"\\" + std::to_wstring(i) + L"\\" + cases[i].keyName; };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    registered.Plant(HKEY_CURRENT_USER, pathOf(i), cases[i].valueName, cases[i].data);
  }
  g_registry.found.ResetCounts();
  EXPECT_EQ(ScanComKey(kMeasure, HKEY_CURRENT_USER, scratch), 1);
  EXPECT_EQ(ScanComKey(kMeasure, HKEY_CURRENT_USER, scratch + L"\\none"), 0);
  const std::vector<RegistryIssue> rows = g_registry.found.Rows(kCatCom);
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    const RegistryIssue row{L"HKEY_CURRENT_USER", pathOf(i), cases[i].valueName, cases[i].data};
    EXPECT_EQ(std::count(rows.begin(), rows.end(), row), cases[i].rows) << i << " " << cases[i].data;
  }
}

TEST(RecordIssueTest, IgnoreListAndTheCap) {
  g_registry.found.ResetCounts();
  g_registry.SetIgnoreList({L"hkey_current_user\\software\\kept"});
  EXPECT_FALSE(RecordIssue(kCatFonts, L"HKEY_CURRENT_USER", L"Software\\Kept", L"v", L"d"));
  EXPECT_TRUE(RecordIssue(kCatFonts, L"HKEY_CURRENT_USER", L"Software\\Kept\\Below", L"v", L"d"));
  g_registry.SetIgnoreList({});
  const std::int32_t total = g_registry.foundTotal.get();
  for (int i = 1; i < kIssueRowCap; ++i) ASSERT_TRUE(RecordIssue(kCatFonts, L"HKEY_USERS", std::to_wstring(i), {}, {}));
  EXPECT_FALSE(RecordIssue(kCatFonts, L"HKEY_USERS", L"one too many", {}, {}));
  EXPECT_EQ(g_registry.found.Count(kCatFonts), kIssueRowCap);
  EXPECT_EQ(g_registry.foundTotal.get() - total, kIssueRowCap - 1);
  EXPECT_EQ(g_registry.found.Rows(kCatFonts).back().keyPath, std::to_wstring(kIssueRowCap - 1));
  EXPECT_FALSE(RecordIssue(kCatNone + 6, L"HKEY_USERS", L"x", {}, {}));  // no such category
}

}  // namespace
}  // namespace scourel::test
