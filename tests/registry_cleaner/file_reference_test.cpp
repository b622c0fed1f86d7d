#include "registry_cleaner/file_reference.h"

#include "common/known_folders.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "common/win.h"
#include "support/fixtures.h"

namespace scourel {
namespace {

// "{d}" stands for the scratch folder (also the current directory), "{w}" for
// the Windows directory with its trailing backslash.
std::wstring Expand(std::wstring text, const std::wstring& d, const std::wstring& w) {
  for (std::size_t at; (at = text.find(L"{d}")) != std::wstring::npos;) text.replace(at, 3, d);
  for (std::size_t at; (at = text.find(L"{w}")) != std::wstring::npos;) text.replace(at, 3, w);
  return text;
}

struct Case {
  const wchar_t* text;
  const wchar_t* path;  // null: valid without a test
  int valid;
};

const Case kCases[] = {
    {L"\"{d}\\app.exe\" /s", L"{d}\\app.exe", 1},
    {L"\"{d}\\gone.exe\" /s", L"{d}\\gone.exe", 0},
    {L"Rundll32 C:\\Windows\\system32\\shell32.dll,Control_RunDLL", L"C:\\Windows\\system32\\shell32.dll", 1},
    {L"RunDll32 {d}\\app.exe,Entry", L"{d}\\app.exe", 1},
    {L"rundll32.exe C:\\x.dll", L"C:\\x.dll", 0},  // other spellings stay, but the text starts at the drive
    {L"%SystemRoot%\\system32\\x.dll", nullptr, 1},
    {L"Z:\\missing.exe", nullptr, 1},
    {L"u:\\missing.exe", nullptr, 1},
    {L"t:\\missing.exe", L"t:\\missing.exe", 0},
    {L"C:\\dir\\file.dll;C:\\other", L"C:\\dir\\file.dll", 0},
    {L"{d}\\app.exe;C:\\other", L"{d}\\app.exe", 1},
    {L"{d}\\Tools\\", L"{d}\\Tools\\", 1},
    {L"{d}\\Tools\\missing\\", L"{d}\\Tools\\missing\\", 0},
    {L"", nullptr, 1},
    {L"app.exe /q", L"app.exe", 1},  // relative names: tested in the current directory
    {L"nothere.exe", L"nothere.exe", 0},
    {L"unins000.exe /x", nullptr, 1},  // 'u' is past 't'
    {L"\\\\server\\share\\x.exe", nullptr, 1},
    {L"\x0131:\\x", nullptr, 1},  // no drive letter, whatever it upper-cases to
    {L":\\x", nullptr, 1},        // ":\" at the start keeps the whole text
    {L"1C:\\x.exe", L"C:\\x.exe", 0},
    {L"x C:\\a D:\\b", L"C:\\a D:\\b", 0},  // the first ":\" decides
    // The cuts: first comma, " /", " -" (which already takes " -p" and " -file"), ";", "%".
    {L"{d}\\app.exe,0,1,2", L"{d}\\app.exe", 1},
    {L"C:\\a,b.exe,1", L"C:\\a", 0},
    {L"{d}\\app.exe -x -file {d}\\gone.ps1", L"{d}\\app.exe", 1},
    {L"\"{d}\\gone.exe\" -file {d}\\app.exe", L"{d}\\gone.exe", 0},
    {L"C:\\my-app\\a.exe -profile", L"C:\\my-app\\a.exe", 0},
    {L"C:\\a.exe/s", L"C:\\a.exe/s", 0},
    {L"C:\\a.exe\t/s", L"C:\\a.exe\t/s", 0},  // only a blank starts a switch
    {L"C:\\a.exe  ,x \t\r\n", L"C:\\a.exe", 0},  // each cut of the list trims, found or not
    {L"C:\\x.exe %SYSTEMROOT%\\y", L"C:\\x.exe {w}y", 0},
    {L"C:\\%SYSTEMROOT%system32", L"C:\\{w}system32", 0},
    {L"C:\\%systemroot%\\system32\\x.dll", L"C:\\", 1},
    {L"C:\\x.dll %1", L"C:\\x.dll", 0},
    // "@" goes after the cuts and the last trim; doubled backslashes fold once, left to right.
    {L"@C:\\\\Windows\\\\@system32", L"C:\\Windows\\system32", 1},
    {L"C:\\a\\\\\\\\\\b", L"C:\\a\\\\\\b", 0},
    {L"C:\\a @/b", L"C:\\a /b", 0},
    {L"{d}\\app.exe @", L"{d}\\app.exe ", 1},  // the file test forgives the blank
    // The two program spellings are deleted in one pass each; all quotes go.
    {L"C:\\Rundll32RunDll32rundll32.dll", L"C:\\rundll32.dll", 0},
    {L"C:\\RRundll32undll32.dll", L"C:\\Rundll32.dll", 0},
    {L"\"C:\\a b\\\"c.exe\"\" -x", L"C:\\a b\\c.exe", 0},
};

TEST(FileReferenceTest, ReducedPathAndValidity) {
  test::ScratchDir dir(L"file_reference");
  test::MakeDirs(dir / L"Tools");
  test::WriteFileBytes(dir / L"app.exe", "MZ");
  test::CanaryTree canary(dir / L"canary");
  const std::wstring windows = WindowsDirectoryWithBackslash();
  ASSERT_EQ(windows, WindowsDirectory() + L"\\");
  wchar_t saved[MAX_PATH] = {};
  ASSERT_NE(::GetCurrentDirectoryW(MAX_PATH, saved), 0u);
  ASSERT_TRUE(::SetCurrentDirectoryW(dir.path().c_str()));
  for (const auto& c : kCases) {
    const std::wstring text = Expand(c.text, dir.path(), windows);
    const auto path = c.path ? std::optional(Expand(c.path, dir.path(), windows)) : std::nullopt;
    EXPECT_EQ(ReduceFileReference(text, windows), path) << testing::PrintToString(text);
    EXPECT_EQ(IsFileReferenceValid(text), c.valid) << testing::PrintToString(text);
  }
  ::SetCurrentDirectoryW(saved);
  EXPECT_EQ(canary.Damage(), L"");
  // The Windows directory given is the one used.
  EXPECT_EQ(ReduceFileReference(L"C:\\a %SYSTEMROOT%b", L"D:\\OS\\"), std::optional<std::wstring>(L"C:\\a D:\\OS\\b"));
}

// A value of 0x20000 backslashes: every doubled pair folds once, in one pass.
TEST(FileReferenceTest, LongBackslashRunsFoldOnce) {
  const std::wstring run(0x20000, L'\\');
  EXPECT_EQ(ReduceFileReference(L"C:" + run, L"C:\\Windows\\"), L"C:" + std::wstring(0x10000, L'\\'));
  EXPECT_EQ(ReduceFileReference(L"\"" + run + L"t:" + run, L"C:\\Windows\\"), L"t:" + std::wstring(0x10000, L'\\'));
  EXPECT_EQ(ReduceFileReference(run, L"C:\\Windows\\"), std::nullopt);
  EXPECT_EQ(IsFileReferenceValid(run + L"t:" + run), 0);
}

}  // namespace
}  // namespace scourel
