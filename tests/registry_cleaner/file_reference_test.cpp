#include "registry_cleaner/file_reference.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "common/win.h"
#include "support/fixtures.h"

namespace scourel {
namespace {

const std::wstring kWindows = L"C:\\Windows\\";

// Replaces every "{d}" with the folder.
std::wstring Expand(std::wstring text, const std::wstring& folder) {
  for (std::size_t at; (at = text.find(L"{d}")) != std::wstring::npos;) text.replace(at, 3, folder);
  return text;
}

struct ReduceCase {
  const wchar_t* text;
  const wchar_t* path;  // null: valid without a test
};

TEST(ReduceFileReferenceTest, CutsThePathOutOfTheText) {
  const ReduceCase cases[] = {
      // Quotes go, the cut at " /" leaves the bare path.
      {L"\"C:\\Program Files\\App\\setup.exe\" /s", L"C:\\Program Files\\App\\setup.exe"},
      {L"Rundll32 C:\\Windows\\system32\\shell32.dll,Control_RunDLL", L"C:\\Windows\\system32\\shell32.dll"},
      {L"RunDll32 C:\\a.dll,Entry", L"C:\\a.dll"},
      // Other spellings stay, but the text starts at the drive letter anyway.
      {L"rundll32.exe C:\\x.dll", L"C:\\x.dll"},
      {L"RUNDLL32 C:\\x.dll,y", L"C:\\x.dll"},
      {L"%SystemRoot%\\system32\\x.dll", nullptr},
      {L"%SYSTEMROOT%\\system32\\x.dll", nullptr},
      {L"Z:\\missing.exe", nullptr},
      {L"U:\\missing.exe", nullptr},
      {L"T:\\missing.exe", L"T:\\missing.exe"},
      {L"t:\\lower.exe", L"t:\\lower.exe"},  // upper-cased for the check only; the text keeps it
      {L"u:\\lower.exe", nullptr},
      {L"C:\\dir\\file.dll;C:\\other", L"C:\\dir\\file.dll"},
      {L"C:\\Tools\\", L"C:\\Tools\\"},
      {L"", nullptr},
      {L"notepad.exe", L"notepad.exe"},
      {L"regedit", L"regedit"},
      {L"unins000.exe /x", nullptr},  // 'u' is past 't'
      {L"\\\\server\\share\\x.exe", nullptr},
      {L"1234", nullptr},
      {L"@%SystemRoot%\\system32\\shell32.dll,-22", nullptr},
      {L":\\x", nullptr},                 // ":\" at the start keeps the whole text
      {L"1C:\\x.exe", L"C:\\x.exe"},      // one character before ":\" only
      {L"x C:\\a D:\\b", L"C:\\a D:\\b"},  // the first ":\" decides
      // Several commas: the first one cuts.
      {L"C:\\a.exe,1,2,3", L"C:\\a.exe"},
      {L"C:\\a,b.exe,1", L"C:\\a"},
      // " -file" after " -": the cut at " -" has already taken it.
      {L"C:\\a.exe -x -file C:\\b.ps1", L"C:\\a.exe"},
      {L"C:\\a.exe -file C:\\b.ps1", L"C:\\a.exe"},
      {L"C:\\a.exe -profile x", L"C:\\a.exe"},
      {L"C:\\my-app\\a.exe -p", L"C:\\my-app\\a.exe"},  // "-" without a blank before it stays
      {L"C:\\a.exe/s", L"C:\\a.exe/s"},
      {L"C:\\a.exe   /s  ", L"C:\\a.exe"},
      {L"C:\\a.exe\t/s", L"C:\\a.exe\t/s"},  // only a blank starts a switch
      {L"C:\\a.exe ;C:\\b", L"C:\\a.exe"},
      {L"C:\\a.exe, /s", L"C:\\a.exe"},
      {L"C:\\a.exe  ,x", L"C:\\a.exe"},  // each cut of the list trims, found or not
      {L"C:\\a.exe \t\r\n", L"C:\\a.exe"},
      // "%SYSTEMROOT%" in capitals only, then the cut at "%".
      {L"C:\\x.exe %SYSTEMROOT%\\y", L"C:\\x.exe C:\\Windows\\y"},
      {L"C:\\%SYSTEMROOT%system32", L"C:\\C:\\Windows\\system32"},
      {L"C:\\%systemroot%\\system32\\x.dll", L"C:\\"},
      {L"C:\\%SystemRoot%\\x.dll", L"C:\\"},
      {L"C:\\x.dll %1", L"C:\\x.dll"},
      {L"C:\\100%\\x", L"C:\\100"},
      // "@" goes, doubled backslashes fold once, left to right.
      {L"@C:\\\\Windows\\\\@system32", L"C:\\Windows\\system32"},
      {L"C:\\a\\\\\\b", L"C:\\a\\\\b"},
      {L"C:\\a\\\\\\\\b", L"C:\\a\\\\b"},
      {L"C:\\a @/b", L"C:\\a /b"},  // deleting "@" comes after the cuts
      {L"C:\\a.exe @", L"C:\\a.exe "},  // ...and after the last trim
      // Program names are deleted in one pass each, these two spellings only.
      {L"RunRundll32Dll32 C:\\x.dll", L"C:\\x.dll"},
      {L"C:\\RRundll32undll32.dll", L"C:\\Rundll32.dll"},
      {L"C:\\RunRundll32Dll32.dll", L"C:\\.dll"},
      {L"C:\\Rundll32RunDll32rundll32.dll", L"C:\\rundll32.dll"},
      {L"\"C:\\a b\\\"c.exe\"\" -x", L"C:\\a b\\c.exe"},
      // Non-ASCII letters are not drive letters, whatever they upper-case to.
      {L"\x0131:\\x", nullptr},
      {L"\x017F:\\x", nullptr},
  };
  for (const auto& c : cases) {
    const std::optional<std::wstring> reduced = ReduceFileReference(c.text, kWindows);
    if (c.path == nullptr) {
      EXPECT_FALSE(reduced.has_value()) << "text: " << testing::PrintToString(std::wstring(c.text));
    } else {
      EXPECT_EQ(reduced, std::optional<std::wstring>(c.path))
          << "text: " << testing::PrintToString(std::wstring(c.text));
    }
  }
}

TEST(ReduceFileReferenceTest, UsesTheWindowsDirectoryItIsGiven) {
  EXPECT_EQ(ReduceFileReference(L"C:\\a %SYSTEMROOT%b", L"D:\\OS\\"), std::optional<std::wstring>(L"C:\\a D:\\OS\\b"));
  EXPECT_EQ(ReduceFileReference(L"C:\\a %SYSTEMROOT%\\b", L"D:\\OS\\"), std::optional<std::wstring>(L"C:\\a D:\\OS\\b"));
}

struct ValidityCase {
  const wchar_t* text;  // "{d}" stands for the scratch folder
  int valid;
};

TEST(FileReferenceValidTest, TestsTheReducedPathOnDisk) {
  test::ScratchDir dir(L"file_reference");
  test::MakeDirs(dir / L"Tools");
  test::WriteFileBytes(dir / L"app.exe", "MZ");
  test::WriteFileBytes(dir / L"lib.dll", "MZ");
  test::CanaryTree canary(dir / L"canary");

  const ValidityCase cases[] = {
      {L"\"{d}\\app.exe\" /s", 1},
      {L"\"{d}\\gone.exe\" /s", 0},
      {L"Rundll32 {d}\\lib.dll,Entry", 1},
      {L"Rundll32 C:\\Windows\\system32\\shell32.dll,Control_RunDLL", 1},
      {L"rundll32.exe {d}\\lib.dll", 1},
      {L"rundll32.exe C:\\x-scourel-missing.dll", 0},
      {L"%SystemRoot%\\system32\\missing.dll", 1},
      {L"Z:\\missing.exe", 1},
      {L"{d}\\lib.dll;C:\\other", 1},
      {L"{d}\\gone.dll;{d}\\lib.dll", 0},
      {L"{d}\\Tools\\", 1},
      {L"{d}\\Tools", 1},
      {L"{d}\\Tools\\missing\\", 0},
      {L"", 1},
      {L"{d}\\app.exe,0,1", 1},
      {L"{d}\\app.exe -x -file {d}\\gone.ps1", 1},
      {L"\"{d}\\gone.exe\" -file {d}\\app.exe", 0},
      {L"{d}\\app.exe %1", 1},
      {L"C:\\%SYSTEMROOT%", 0},  // C:\C:\Windows\ does not exist
      {L"@{d}\\\\@app.exe", 1},
      {L"{d}\\app.exe @ ", 1},  // the blank before "@" stays; the file test forgives it
  };
  for (const auto& c : cases) {
    const std::wstring text = Expand(c.text, dir.path());
    EXPECT_EQ(IsFileReferenceValid(text), c.valid) << testing::PrintToString(text);
  }
  EXPECT_EQ(canary.Damage(), L"");
}

TEST(FileReferenceValidTest, SystemRootStandsForTheWindowsDirectory) {
  const std::wstring windows = WindowsDirectoryWithBackslash();
  ASSERT_GT(windows.size(), 3u);
  EXPECT_EQ(windows.back(), L'\\');
  // Starts at the drive letter, so the token comes later in the text.
  const std::wstring drive = windows.substr(0, 3);
  EXPECT_EQ(IsFileReferenceValid(drive + L"x.exe %SYSTEMROOT%"), IsFileReferenceValid(drive + L"x.exe"));
}

TEST(FileReferenceValidTest, RelativeNamesAreTestedInTheCurrentDirectory) {
  test::ScratchDir dir(L"file_reference_relative");
  test::WriteFileBytes(dir / L"here.exe", "MZ");
  test::WriteFileBytes(dir / L"zed.exe", "MZ");
  wchar_t saved[MAX_PATH] = {};
  ASSERT_NE(::GetCurrentDirectoryW(MAX_PATH, saved), 0u);
  ASSERT_TRUE(::SetCurrentDirectoryW(dir.path().c_str()));
  const int present = IsFileReferenceValid(L"here.exe /q");
  const int absent = IsFileReferenceValid(L"nothere.exe");
  const int untested = IsFileReferenceValid(L"zzz-nothere.exe");
  ::SetCurrentDirectoryW(saved);
  EXPECT_EQ(present, 1);
  EXPECT_EQ(absent, 0);
  EXPECT_EQ(untested, 1);
}

TEST(FileReferenceValidTest, LeavesTheCallersTextAlone) {
  const std::wstring text = L"\"C:\\x-scourel-missing.exe\" /s";
  const std::wstring copy = text;
  IsFileReferenceValid(text);
  EXPECT_EQ(text, copy);
}

// Random texts built from the pieces the reduction looks for, plus noise.
std::wstring RandomReference(std::mt19937& random) {
  static const wchar_t* const kPieces[] = {
      L"\"", L"Rundll32", L"RunDll32", L"rundll32", L":\\", L"C:\\", L"t:\\", L"Z:\\", L",", L" /", L" -", L" -p",
      L" -file", L";", L"%SYSTEMROOT%", L"%systemroot%", L"%", L"@", L"\\\\", L"\\", L" ", L"\t", L"a", L"Q", L"9",
      L".exe", L"Windows", L"\x00e9", L"\x4e2d", L"\xd83d", L"\xffff", L"\x0001",
  };
  std::uniform_int_distribution<int> pieceCount(0, 24);
  std::uniform_int_distribution<std::size_t> pick(0, std::size(kPieces) - 1);
  std::uniform_int_distribution<int> anyChar(1, 0xFFFF);
  std::uniform_int_distribution<int> coin(0, 9);
  std::wstring text;
  for (int n = pieceCount(random); n > 0; --n) {
    if (coin(random) == 0) {
      text += static_cast<wchar_t>(anyChar(random));
    } else {
      text += kPieces[pick(random)];
    }
  }
  // Now and then a very long text.
  if (coin(random) == 0) text.append(static_cast<std::size_t>(anyChar(random)) * 2, L'\\');
  return text;
}

// What every reduced path must satisfy, whatever the input.
void ExpectWellFormed(const std::wstring& text, const std::optional<std::wstring>& path) {
  const std::string shown = testing::PrintToString(text);
  if (!path) return;
  ASSERT_FALSE(path->empty()) << shown;
  const wchar_t first = (*path)[0];
  EXPECT_TRUE((first >= L'A' && first <= L'T') || (first >= L'a' && first <= L't')) << shown;
  // Only deletions and cuts, and "%SYSTEMROOT%" is longer than kWindows.
  EXPECT_LE(path->size(), text.size()) << shown;
  for (wchar_t gone : {L'"', L',', L';', L'%', L'@'}) {
    EXPECT_EQ(path->find(gone), std::wstring::npos) << shown;
  }
}

TEST(FileReferenceFuzzTest, RandomTextsReduceToWellFormedPaths) {
  std::mt19937 random(20240607u);
  for (int i = 0; i < 4000; ++i) {
    const std::wstring text = RandomReference(random);
    ExpectWellFormed(text, ReduceFileReference(text, kWindows));
    if (HasFatalFailure() || HasFailure()) return;
  }
}

TEST(FileReferenceFuzzTest, MutatedExamplesNeverBreakTheFullTest) {
  const std::wstring seeds[] = {
      L"\"C:\\Program Files\\App\\setup.exe\" /s",
      L"Rundll32 C:\\Windows\\system32\\shell32.dll,Control_RunDLL",
      L"C:\\Windows\\%SYSTEMROOT%\\system32\\x.dll;C:\\other -file y",
      L"@C:\\\\Windows\\\\@system32",
  };
  std::mt19937 random(77u);
  std::uniform_int_distribution<int> edits(1, 6);
  std::uniform_int_distribution<int> anyChar(1, 0xFFFF);
  int valid = 0;
  for (int i = 0; i < 400; ++i) {
    std::wstring text = seeds[static_cast<std::size_t>(i) % std::size(seeds)];
    for (int n = edits(random); n > 0; --n) {
      std::uniform_int_distribution<std::size_t> at(0, text.size());
      const std::size_t where = at(random);
      switch (anyChar(random) % 3) {
        case 0:
          text.insert(where, 1, static_cast<wchar_t>(anyChar(random)));
          break;
        case 1:
          if (where < text.size()) text.erase(where, 1);
          break;
        default:
          if (where < text.size()) text[where] = static_cast<wchar_t>(anyChar(random));
          break;
      }
    }
    if (i % 50 == 0) text.append(5000, L'a');  // far past MAX_PATH
    ExpectWellFormed(text, ReduceFileReference(text, kWindows));
    const int result = IsFileReferenceValid(text);
    EXPECT_TRUE(result == 0 || result == 1);
    valid += result;
  }
  // Most mutations still name something under C:\Windows, or nothing testable.
  EXPECT_GT(valid, 0);
}

}  // namespace
}  // namespace scourel
