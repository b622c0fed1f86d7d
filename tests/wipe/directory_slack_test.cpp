// A worker killed while its fill entries stand in a folder: the next start
// removes them, by the folder the registry names, and nothing else there.
#include "wipe/directory_slack.h"

#include <gtest/gtest.h>

#include "support/fixtures.h"
#include "wipe/wipe_marker.h"

namespace scourel {
namespace {

TEST(DirectorySlackTest, NextStartRemovesOnlyTheFillEntriesOfTheRecordedFolder) {
  const test::ScratchDir scratch(L"directory-slack");
  const test::CanaryTree canaries(scratch / L"canaries");
  const std::wstring folder = L"\\\\?\\" + scratch.path() + L"\\";  // 255-character names pass MAX_PATH
  const struct {
    std::wstring name;
    bool ours;
  } kEntries[] = {
      {SlackEntryName(0, 255), true},
      {SlackEntryName(99'999, 11), true},
      {L"xe8aqu00042xxxxx", true},               // any case
      {SlackEntryName(5, 16) + L"X", false},     // a length never made
      {L"XE8AQU0001XXXXXX", false},              // four digits
      {L"XE8AQU00001XXXXY", false},
      {L"XE8AQU.tmp", false},
  };
  for (const auto& entry : kEntries) test::WriteFileBytes(folder + entry.name, "user data");
  const std::wstring namedLikeOurs = folder + SlackEntryName(1, 32);
  test::MakeDirs(namedLikeOurs);
  const test::Cleanup clear([] { ClearSlackFolder(); });
  ASSERT_TRUE(RecordSlackFolder(folder));

  CleanUpInterruptedWipe();

  for (const auto& entry : kEntries) {
    EXPECT_EQ(test::PathExists(folder + entry.name), !entry.ours) << entry.name;
    if (!entry.ours) {
      EXPECT_EQ(test::ReadFileBytes(folder + entry.name), "user data") << entry.name;
    }
  }
  EXPECT_TRUE(test::PathExists(namedLikeOurs)) << "a folder is never one of the entries";
  EXPECT_EQ(canaries.Damage(), L"");
  EXPECT_EQ(::RegGetValueW(HKEY_CURRENT_USER, kWipeMarkerKey, kSlackFolderValue, RRF_RT_ANY, nullptr, nullptr, nullptr),
            ERROR_FILE_NOT_FOUND);
}

}  // namespace
}  // namespace scourel
