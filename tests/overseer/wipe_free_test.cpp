// What overseer refuses before a wipe or a shred touches anything, and how it
// draws a wipe's progress.
#include "overseer/wipe_free.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "overseer/shred_paths.h"

namespace overseer {
namespace {

scourel::VolumeFacts Volume(UINT type, std::uint64_t totalGiB, DWORD flags = 0) {
  scourel::VolumeFacts facts;
  facts.letter = L'D';
  facts.driveType = type;
  facts.fileSystemFlags = flags;
  facts.totalBytes = totalGiB << 30;
  facts.freeBytes = facts.totalBytes / 2;
  return facts;
}

TEST(OverseerWipeFreeTest, RefusesWhatMustNotBeFilled) {
  const struct {
    const wchar_t* drive;
    std::optional<scourel::VolumeFacts> facts;
    unsigned method;
    bool yes;
    const char* refusal;  // part of it; null: goes ahead
  } cases[] = {
      {L"D:", Volume(DRIVE_FIXED, 500), 0, false, nullptr},
      {L"d", Volume(DRIVE_FIXED, 500), 3, false, nullptr},           // three passes: no question
      {L"D:\\", Volume(DRIVE_FIXED, 64), 7, false, nullptr},         // 64 GiB is not larger than 64 GiB
      {L"D:", Volume(DRIVE_FIXED, 65), 4, false, "writes the 32 GiB free on D: 7 times: about 38 min"},
      {L"D:", Volume(DRIVE_FIXED, 500), 8, true, nullptr},
      {L"DD", Volume(DRIVE_FIXED, 1), 0, false, "is not a drive"},
      {L"D:", std::nullopt, 0, false, "does not exist"},
      {L"D:", Volume(DRIVE_REMOTE, 1), 0, false, "network drive"},
      {L"D:", Volume(DRIVE_CDROM, 1), 0, false, "read-only"},
      {L"D:", Volume(DRIVE_FIXED, 1, FILE_READ_ONLY_VOLUME), 0, false, "read-only"},
  };
  for (const auto& c : cases) {
    Options options;
    options.drive = c.drive;
    options.wipeMethod = c.method;
    options.yes = c.yes;
    const auto refusal = CheckWipeTarget(options, c.facts);
    SCOPED_TRACE(testing::Message() << testing::PrintToString(std::wstring(c.drive)) << " method " << c.method);
    if (!c.refusal) {
      EXPECT_FALSE(refusal) << refusal->text;
    } else {
      ASSERT_TRUE(refusal);
      EXPECT_THAT(refusal->text, testing::HasSubstr(c.refusal));
      EXPECT_EQ(refusal->exitCode, 2);
    }
  }
}

TEST(OverseerWipeFreeTest, ProgressIsALinePerTenthOffATerminal) {
  WipeProgressView lines(false);
  std::string out;
  for (unsigned percent = 0; percent <= 100; ++percent) out += lines.Update(percent, percent << 20, percent * 100);
  EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 11);  // 0, 10, ..., 100
  EXPECT_THAT(out, testing::HasSubstr("progress   50%  10.0 MiB/s  5 s left\n"));
  EXPECT_EQ(lines.Finish(), "");

  WipeProgressView bar(true);
  EXPECT_EQ(bar.Update(25, 50 << 20, 0).rfind("\r[#####               ]  25%", 0), 0u);
  EXPECT_THAT(bar.Update(26, 60 << 20, 1000), testing::HasSubstr("60.0 MiB/s"));
  EXPECT_EQ(bar.Finish(), "\n");
}

TEST(OverseerShredTest, RefusesWholeSystemFoldersButNotWhatLiesInThem) {
  scourel::PluginFolders folders;
  folders.windows = L"C:\\Windows";
  folders.profile = L"C:\\Users\\ann";
  folders.programFiles = {L"C:\\Program Files"};
  folders.special = {L"C:\\Users\\ann\\Documents"};
  folders.tokens[0] = L"C:\\Users\\ann\\AppData\\Roaming";
  const std::pair<const wchar_t*, const char*> cases[] = {
      {L"D:\\", "a drive root"},
      {L"c:\\windows", "the Windows folder or something in it"},
      {L"C:\\Windows\\Temp\\x.log", "the Windows folder or something in it"},
      {L"C:\\Users", "the folder of all profiles"},
      {L"C:\\Users\\ANN", "a whole profile"},
      {L"C:\\", "a drive root"},
      {L"C:\\Program Files", "a Program Files folder"},
      {L"C:\\Users\\ann\\Documents", "a whole special folder"},
      {L"C:\\Users\\ann\\AppData", "a whole special folder"},  // holds one
      {L"C:\\Users\\ann\\Documents\\secret.doc", nullptr},
      {L"C:\\Users\\ann\\AppData\\Roaming\\app", nullptr},
      {L"C:\\Windowsy", nullptr},
      {L"C:\\Users\\bob.txt", nullptr},
  };
  for (const auto& [path, refusal] : cases) {
    const auto why = ShredRefusal(path, folders);
    if (!refusal) {
      EXPECT_FALSE(why) << testing::PrintToString(std::wstring(path)) << ": " << *why;
    } else {
      EXPECT_EQ(why.value_or(""), refusal) << testing::PrintToString(std::wstring(path));
    }
  }
}

}  // namespace
}  // namespace overseer
