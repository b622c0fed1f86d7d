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
  const std::pair<std::wstring, bool> kEntries[] = {
      {SlackEntryName(0, 255), true},
      {SlackEntryName(99'999, 11), true},
      {L"xe8aqu00042xxxxx", true},               // any case
      {SlackEntryName(5, 16) + L"X", false},     // a length never made
      {L"XE8AQU0001XXXXXX", false},              // four digits
      {L"XE8AQU00001XXXXY", false},
      {L"XE8AQU.tmp", false},
  };
  for (const auto& [name, ours] : kEntries) test::WriteFileBytes(folder + name, "user data");
  const std::wstring namedLikeOurs = folder + SlackEntryName(1, 32);
  test::MakeDirs(namedLikeOurs);
  const test::Cleanup clear([] { ClearSlackFolder(); });
  ASSERT_TRUE(RecordSlackFolder(folder));

  CleanUpInterruptedWipe();

  for (const auto& [name, ours] : kEntries) {
    EXPECT_EQ(test::PathExists(folder + name), !ours) << name;
    EXPECT_EQ(test::ReadFileBytes(folder + name), ours ? "" : "user data") << name;
  }
  EXPECT_TRUE(test::PathExists(namedLikeOurs)) << "a folder is never one of the entries";
  EXPECT_EQ(canaries.Damage(), L"");
  EXPECT_EQ(::RegGetValueW(HKEY_CURRENT_USER, kWipeMarkerKey, kSlackFolderValue, RRF_RT_ANY, nullptr, nullptr, nullptr),
            ERROR_FILE_NOT_FOUND);
}

}  // namespace
}  // namespace scourel
