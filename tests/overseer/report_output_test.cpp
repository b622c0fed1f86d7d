#include "overseer/report_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace overseer {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST(OverseerOutputTest, JsonStringsAreEscaped) {
  EXPECT_EQ(JsonString(L"C:\\a \"b\"\n"), "\"C:\\\\a \\\"b\\\"\\n\"");
  EXPECT_EQ(JsonString(std::wstring(1, L'\x01')), "\"\\u0001\"");
  EXPECT_EQ(JsonString(L"\x00e9\x20ac"), "\"\xc3\xa9\xe2\x82\xac\"");
  EXPECT_EQ(Utf8(L"\xd83d\xde00"), "\xf0\x9f\x98\x80");
}

TEST(OverseerOutputTest, JsonReportShape) {
  RunReport report{"scan", L"C:\\r\\bin\\scourel.exe", 42, false, L"C:\\r\\Settings.INI", {{L"IDS_WIPEALGORITHM", L"7"}},
                   {DecodeCopyData(101, L"1\\j2.00 KB\\j3"), DecodeMessage(2035, 1, 5)}, "completed", "", {}, {}};
  const std::string json = JsonReport(report);
  EXPECT_THAT(json, AllOf(HasSubstr("\"command\": \"scan\""),
        HasSubstr("\"worker\": {\"path\": \"C:\\\\r\\\\bin\\\\scourel.exe\", \"pid\": 42, \"attached\": false}"),
        HasSubstr("\"settings_written\": {\"IDS_WIPEALGORITHM\": \"7\"}"),
        HasSubstr("{\"message\": 74, \"kind\": 101, \"title\": \"scan: junk files\", \"readable\": true, "
        "\"text\": \"1\\\\j2.00 KB\\\\j3\", \"fields\": {\"temporary_files\": 1, \"size\": "
        "\"2.00 KB\", \"other_junk_files\": 3}}"),
        HasSubstr("{\"message\": 2035, \"title\": \"junk files cleaned\", \"readable\": true, \"fields\": "
        "{\"junk_files\": 1, \"bytes\": 5, \"size\": \"0.00 KB\"}}"),
        HasSubstr("\"status\": \"completed\"\n}"), testing::Not(HasSubstr("\"error\""))));
  report.error = "no reply";
  EXPECT_THAT(JsonReport(report), HasSubstr("\"error\": \"no reply\""));
}

TEST(OverseerOutputTest, TableBlockPerReply) {
  EXPECT_EQ(ReplyTable(DecodeCopyData(102, L"4\\s1.00 KB")),
            "kind 102  scan: dead shortcuts\n"
            "          dead shortcuts            4\n"
            "          size                      1.00 KB\n");
  // A count and its size share a line.
  const std::string pcTable = ReplyTable(
      DecodeCopyData(104, L"12\\pc   1.00 KB\\pc 0\\pc 0\\pc 0\\pc 0\\pc   0.00 KB\\pc 0\\pc   0.00 KB\\pc 3"));
  EXPECT_TRUE(pcTable.starts_with("kind 104  scan: PC traces\n"
                                  "          documents                 12      1.00 KB\n"
                                  "          run history               0\n"))
      << pcTable;
  EXPECT_EQ(ReplyTable(DecodeMessage(2083, 2, 0)), "msg 2083  browser traces progress  step 2  done cookies\n");
  EXPECT_THAT(ReplyTable(DecodeCopyData(102, L"junk")), HasSubstr("(not in the expected layout) text: junk"));
}

}  // namespace
}  // namespace overseer
