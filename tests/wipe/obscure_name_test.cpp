#include "wipe/obscure_name.h"

#include <gtest/gtest.h>

#include "support/fixtures.h"
#include "wipe/file_shred.h"

namespace scourel {
namespace {

struct NameCase {
  const wchar_t* path;
  const wchar_t* expected;
};

class ObscuredName : public ::testing::TestWithParam<NameCase> {};

TEST_P(ObscuredName, KeepsOnlyLengthAndLastPoint) {
  EXPECT_EQ(ObscuredPath(GetParam().path), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ObscuredName,
    ::testing::Values(NameCase{L"C:\\d\\report.final.docx", L"C:\\d\\xxxxxxxxxxxx.xxxx"},
                      NameCase{L"C:\\Windows\\LOGFILE", L"C:\\Windows\\xxxxxxx"},
                      NameCase{L"C:\\d\\.hidden", L"C:\\d\\.xxxxxx"},
                      NameCase{L"C:\\d\\name.", L"C:\\d\\xxxx."},
                      NameCase{L"C:\\d\\a.b", L"C:\\d\\x.x"},
                      NameCase{L"C:\\dir.ext\\file", L"C:\\dir.ext\\xxxx"},
                      NameCase{L"C:\\d\\..x", L"C:\\d\\x.x"},
                      NameCase{L"C:\\d\\", L"C:\\d\\"},
                      NameCase{L"C:\\d\\\u00e9t\u00e9.txt", L"C:\\d\\xxx.xxx"}));

TEST(ObscureName, RenamesTheFileAndReturnsTheNewPath) {
  test::ScratchDir dir(L"obscure_rename");
  test::WriteFileBytes(dir / L"secret.doc", "data");
  const std::wstring renamed = CFileShred{}.ObscureName(dir / L"secret.doc");
  EXPECT_EQ(renamed, dir / L"xxxxxx.xxx");
  EXPECT_FALSE(test::PathExists(dir / L"secret.doc"));
  EXPECT_EQ(test::ReadFileBytes(renamed), "data");
}

TEST(ObscureName, ReturnsTheNewPathWhenTheRenameFails) {
  test::ScratchDir dir(L"obscure_missing");
  EXPECT_EQ(CFileShred{}.ObscureName(dir / L"gone.txt"), dir / L"xxxx.xxx");
  EXPECT_FALSE(test::PathExists(dir / L"xxxx.xxx"));
}

}  // namespace
}  // namespace scourel
