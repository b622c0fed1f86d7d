// Shredding real files in the sandbox through the system file layer, and the
// cases where the shredder must not write: links, hard links, files held open.
#include "wipe/file_shred.h"

#include <gtest/gtest.h>

#include "recording_io.h"
#include "support/fixtures.h"
#include "wipe/disk.h"

namespace scourel {
namespace {

using test::IoEvent;
using test::RecordingIo;

TEST(ShredDisk, VolumeGeometryOfTheSystemDrive) {
  CDisk disk;
  ASSERT_TRUE(disk.GetGeometry(L"C:"));
  EXPECT_TRUE(disk.handle.valid());
  EXPECT_NE(disk.sectorsPerCluster & 0xFF, 0u);
  EXPECT_NE(disk.bytesPerSector & 0xFFFF, 0u);
  CDisk missing;
  EXPECT_FALSE(missing.GetGeometry(L"Q:"));
}

TEST(ShredDisk, NeitherNameRemainsAndTheNeighboursSurvive) {
  struct Case {
    const wchar_t* name;
    std::size_t size;
    std::uint32_t method;
    const wchar_t* obscured;
  };
  const Case cases[] = {{L"cookie.txt", 10, 0, L"xxxxxx.xxx"},
                        {L"index.dat", 70000, 3, L"xxxxx.xxx"},
                        {L"LOGFILE", 4096, 8, L"xxxxxxx"},
                        {L".hidden", 1, 1, L".xxxxxx"},
                        {L"empty.tmp", 0, 7, L"xxxxx.xxx"}};
  for (const Case& c : cases) {
    test::ScratchDir dir(L"shred_disk");
    test::CanaryTree canary(dir / L"canary");
    test::WriteFileBytes(dir / L"beside.txt", "keep me");
    test::WriteFileBytes(dir / c.name, std::string(c.size, 's'));
    EXPECT_EQ(CFileShred{}.Shred(dir / c.name, c.method), 1) << c.name;
    EXPECT_FALSE(test::PathExists(dir / c.name)) << c.name;
    EXPECT_FALSE(test::PathExists(dir / c.obscured)) << c.name;
    EXPECT_EQ(test::ReadFileBytes(dir / L"beside.txt"), "keep me");
    EXPECT_EQ(canary.Damage(), L"") << c.name;
  }
}

TEST(ShredDisk, FileHeldOpenWithoutSharingStays) {
  test::ScratchDir dir(L"shred_locked");
  const std::wstring path = dir / L"locked.db";
  test::WriteFileBytes(path, "in use");
  UniqueHandleKernel holder(
      ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(holder);
  EXPECT_EQ(CFileShred{}.Shred(path, 0), 0);
  holder.reset();
  EXPECT_EQ(test::ReadFileBytes(path), "in use");
}

TEST(ShredDisk, FileHeldOpenWithoutDeleteSharingIsOverwrittenButKeepsItsName) {
  test::ScratchDir dir(L"shred_shared_open");
  const std::wstring path = dir / L"open.log";
  test::WriteFileBytes(path, "abcdef");
  UniqueHandleKernel holder(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(holder);
  EXPECT_EQ(CFileShred{}.Shred(path, 0), 1);
  holder.reset();
  // The rename was refused while the file was open, so nothing was deleted.
  const std::string left = test::ReadFileBytes(path);
  EXPECT_EQ(left.find_first_not_of('\0'), std::string::npos);
  EXPECT_FALSE(left.empty());
}

TEST(ShredDisk, FailedRenameNeverDeletesAFileThatHasTheNewName) {
  test::ScratchDir dir(L"shred_collision");
  test::WriteFileBytes(dir / L"abc.txt", "target");
  test::WriteFileBytes(dir / L"xxx.xxx", "someone else's");
  EXPECT_EQ(CFileShred{}.Shred(dir / L"abc.txt", 0), 1);
  EXPECT_EQ(test::ReadFileBytes(dir / L"xxx.xxx"), "someone else's");
  // The overwritten file stays under its own name.
  EXPECT_EQ(test::ReadFileBytes(dir / L"abc.txt").substr(0, 6), std::string(6, '\0'));
}

TEST(ShredDisk, AlreadyObscuredNameIsDeleted) {
  test::ScratchDir dir(L"shred_same_name");
  test::WriteFileBytes(dir / L"xxx.xxx", "again");
  EXPECT_EQ(CFileShred{}.Shred(dir / L"xxx.xxx", 0), 1);
  EXPECT_FALSE(test::PathExists(dir / L"xxx.xxx"));
}

TEST(ShredDisk, HardLinkedFileIsDeletedButNotOverwritten) {
  test::ScratchDir dir(L"shred_hardlink");
  test::WriteFileBytes(dir / L"one.txt", "shared data");
  ASSERT_TRUE(test::MakeUnixHardLink(dir / L"one.txt", dir / L"two.txt"));
  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(dir / L"one.txt", 8), 1);
  EXPECT_TRUE(io.Of(IoEvent::kWrite).empty());
  EXPECT_FALSE(test::PathExists(dir / L"one.txt"));
  EXPECT_FALSE(test::PathExists(dir / L"xxx.xxx"));
  EXPECT_EQ(test::ReadFileBytes(dir / L"two.txt"), "shared data");

  // With the other name gone the file is its own again and is overwritten.
  RecordingIo last;
  EXPECT_EQ(CFileShred(last).Shred(dir / L"two.txt", 0), 1);
  EXPECT_EQ(last.Of(IoEvent::kWrite).size(), 1u);
  EXPECT_FALSE(test::PathExists(dir / L"two.txt"));
}

TEST(ShredDisk, DirectoryLinkIsNeitherFollowedNorRemoved) {
  test::ScratchDir dir(L"shred_dirlink");
  test::CanaryTree canary(dir / L"target");
  ASSERT_TRUE(test::MakeUnixSymlink(dir / L"target", dir / L"link"));
  ASSERT_NE(::GetFileAttributesW((dir / L"link").c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0u);
  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(dir / L"link", 0), 0);
  EXPECT_TRUE(io.events.empty());
  EXPECT_TRUE(test::PathExists(dir / L"link"));
  EXPECT_EQ(canary.Damage(), L"");
}

// Windows shows a file symlink as a reparse point; Wine shows it as the
// file it points to, so there this case cannot be seen and is skipped.
TEST(ShredDisk, FileSymlinkDeletesTheLinkOnly) {
  test::ScratchDir dir(L"shred_filelink");
  test::WriteFileBytes(dir / L"real.txt", "the target");
  ASSERT_TRUE(test::MakeUnixSymlink(dir / L"real.txt", dir / L"alias.txt"));
  const DWORD attributes = ::GetFileAttributesW((dir / L"alias.txt").c_str());
  if (!(attributes & FILE_ATTRIBUTE_REPARSE_POINT))
    GTEST_SKIP() << "this Wine shows a file symlink as a plain file";
  RecordingIo io;
  EXPECT_EQ(CFileShred(io).Shred(dir / L"alias.txt", 0), 1);
  EXPECT_TRUE(io.Of(IoEvent::kWrite).empty());
  EXPECT_FALSE(test::PathExists(dir / L"alias.txt"));
  EXPECT_EQ(test::ReadFileBytes(dir / L"real.txt"), "the target");
}

}  // namespace
}  // namespace scourel
