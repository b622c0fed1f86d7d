#include "overseer/reply_decoding.h"

#include <gtest/gtest.h>

#include <map>

#include "host/reply_text.h"

namespace overseer {
namespace {

using Fields = std::map<std::string, std::wstring>;

Fields FieldMap(const DecodedReply& reply) {
  Fields fields;
  for (const Field& field : reply.fields) fields[field.name] = field.value;
  return fields;
}

struct TextCase {
  unsigned kind;
  std::wstring text;  // as the worker formats it
  Fields expected;    // a selection of the fields
  size_t fieldCount;
};

std::vector<TextCase> Cases() {
  scourel::PcCounters pc = {1, 2, 3, 0, 5, 6, 7};
  std::array<std::int32_t, 10> browserCounts = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
  std::array<float, 10> browserBytes = {512.0f, 0, 0, 0, 0, 0, 3145728.0f, 0, 0, 2147483648.0f};
  std::array<std::int32_t, 12> registry = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  return {
      {101,
       scourel::JunkScanText(12, 1536.0f, 3),
       {{"temporary_files", L"12"}, {"size", L"1.50 KB"}, {"other_junk_files", L"3"}},
       3},
      {101, L"-5\\j0.00 KB\\j2147483647", {{"temporary_files", L"-5"}, {"other_junk_files", L"2147483647"}}, 3},
      {102, scourel::ShortcutScanText(4, 2097152.0f), {{"dead_shortcuts", L"4"}, {"size", L"2.00 MB"}}, 2},
      {103, scourel::RecycleBinScanText(9, 0.0f), {{"recycle_bin_items", L"9"}, {"size", L"0.00 KB"}}, 2},
      {104,
       scourel::PcTracesScanText(pc, 2048.0f, 0.0f, 1073741824.0f),
       {{"documents", L"1"},
        {"documents_size", L"2.00 KB"},
        {"run_history", L"2"},
        {"find_files", L"3"},
        {"clipboard", L"0"},
        {"network", L"5"},
        {"network_size", L"0.00 KB"},
        {"scan_disk_files", L"6"},
        {"scan_disk_files_size", L"1.00 GB"},
        {"registry_traces", L"7"}},
       10},
      {105,
       scourel::BrowserText(browserCounts, browserBytes),
       {{"cache", L"10"},
        {"cache_size", L"0.50 KB"},
        {"address_bar", L"16"},
        {"address_bar_size", L"3.00 MB"},
        {"icons", L"19"},
        {"icons_size", L"2.00 GB"}},
       20},
      {305, scourel::BrowserText(browserCounts, browserBytes), {{"download_history", L"15"}}, 20},
      {306, scourel::BrowserText({}, {}), {{"index", L"0"}, {"index_size", L"0.00 KB"}}, 20},
      {106, scourel::PluginScanText(2, 100.0f), {{"plugin_items", L"2"}, {"size", L"0.10 KB"}}, 2},
      {107,
       scourel::RegistryScanText(registry),
       {{"current_user", L"1"}, {"com", L"2"}, {"association", L"4"}, {"deep_scan", L"12"}},
       12},
      {108, scourel::ExtensionScanText(42), {{"entries", L"42"}}, 1},
      {109, L"Scanning Completed", {{"text", L"Scanning Completed"}}, 1},
      {303,
       scourel::PcTracesDoneText(pc),
       {{"documents", L"1"}, {"clipboard", L"0"}, {"network", L"5"}, {"registry_traces", L"7"}},
       7},
      // The stop reply: only the first five counters are read, whatever follows.
      {304,
       scourel::PcTracesStoppedText(pc),
       {{"documents", L"1"}, {"run_history", L"2"}, {"find_files", L"3"}, {"clipboard", L"0"}, {"network", L"5"}},
       5},
      {304, L"8\\pc 7\\pc 6\\pc 5\\pc 4\\pc", {{"network", L"4"}}, 5},
      {304, L"8\\pc 7\\pc 6\\pc 5\\pc 4\\pc\x01garbage\\pc\\pc", {{"documents", L"8"}}, 5},
  };
}

TEST(OverseerReplyDecodingTest, EveryKindAsTheWorkerFormatsIt) {
  for (const TextCase& c : Cases()) {
    SCOPED_TRACE(testing::Message() << "kind " << c.kind << ": " << std::string(c.text.begin(), c.text.end()));
    const DecodedReply reply = DecodeCopyData(c.kind, c.text);
    EXPECT_TRUE(reply.readable);
    EXPECT_EQ(reply.kind, c.kind);
    EXPECT_EQ(reply.id, 74u);
    EXPECT_EQ(reply.text, c.text);
    EXPECT_FALSE(reply.title.empty());
    EXPECT_EQ(reply.fields.size(), c.fieldCount);
    const Fields fields = FieldMap(reply);
    for (const auto& [name, value] : c.expected) {
      ASSERT_TRUE(fields.count(name)) << name;
      EXPECT_EQ(fields.at(name), value) << name;
    }
  }
}

TEST(OverseerReplyDecodingTest, CountsAreNumbersAndSizesAreText) {
  const DecodedReply reply = DecodeCopyData(101, L"1\\j2.00 KB\\j3");
  ASSERT_EQ(reply.fields.size(), 3u);
  EXPECT_TRUE(reply.fields[0].number);
  EXPECT_FALSE(reply.fields[1].number);
  EXPECT_TRUE(reply.fields[2].number);
}

struct BadCase {
  unsigned kind;
  const wchar_t* text;
};

TEST(OverseerReplyDecodingTest, TextsOutOfLayoutAreUnreadable) {
  const BadCase cases[] = {
      {101, L""},
      {101, L"1\\j2.00 KB"},          // a field missing
      {101, L"1\\j2.00 KB\\j3\\j4"},  // one too many
      {101, L"x\\j2.00 KB\\j3"},      // not a count
      {102, L"1\\s2.00 TB"},          // not a size
      {103, L"1\\s2.00 KB"},          // another kind's separator
      {107, L"1\\cv 2\\cv"},          // too few categories
      {105, L"1\\is0.00 KB\\is"},     // one group of ten
      {108, L"forty"},
      {109, L"Scanning completed"},  // the text is fixed
      {303, L"1\\pc 2\\pc 3\\pc 4\\pc 5\\pc 6"},
      {304, L"1\\pc 2\\pc 3\\pc 4\\pc 5"},  // the fifth separator is missing
      {999, L"1"},
  };
  for (const BadCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "kind " << c.kind);
    const DecodedReply reply = DecodeCopyData(c.kind, c.text);
    EXPECT_FALSE(reply.readable);
    EXPECT_TRUE(reply.fields.empty());
    EXPECT_EQ(reply.text, c.text);
  }
}

struct MessageCase {
  unsigned id;
  std::uintptr_t wParam;
  std::intptr_t lParam;
  Fields expected;
};

TEST(OverseerReplyDecodingTest, NumericReplies) {
  const MessageCase cases[] = {
      {2035, 3, 1536, {{"junk_files", L"3"}, {"bytes", L"1536"}, {"size", L"1.50 KB"}}},
      {2059, 0, 0, {{"junk_files", L"0"}, {"bytes", L"0"}, {"size", L"0.00 KB"}}},
      // The count is a 32-bit signed counter widened; the bytes a 64-bit value.
      {2041,
       static_cast<std::uintptr_t>(static_cast<std::intptr_t>(-1)),
       3000000000LL,
       {{"dead_shortcuts", L"-1"}, {"bytes", L"3000000000"}, {"size", L"2.79 GB"}}},
      {2053, 7, 1048576, {{"recycle_bin_items", L"7"}, {"size", L"1.00 MB"}}},
      {2036, 2, 10, {{"junk_files", L"2"}, {"bytes", L"10"}}},
      {2066, 1, 0, {{"dead_shortcuts", L"1"}}},
      {2078, 4, 0, {{"recycle_bin_items", L"4"}}},
      {2082, 3, 0, {{"step", L"3"}, {"done", L"find_files"}}},
      {2082, 6, 0, {{"done", L"scan_disk_files"}}},
      {2083, 1, 0, {{"done", L"cache"}}},
      {2083, 9, 0, {{"done", L"index"}}},
  };
  for (const MessageCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "message " << c.id);
    const DecodedReply reply = DecodeMessage(c.id, c.wParam, c.lParam);
    EXPECT_TRUE(reply.readable);
    EXPECT_EQ(reply.kind, 0u);
    EXPECT_EQ(reply.progress, c.id == 2082 || c.id == 2083);
    const Fields fields = FieldMap(reply);
    for (const auto& [name, value] : c.expected) {
      ASSERT_TRUE(fields.count(name)) << name;
      EXPECT_EQ(fields.at(name), value) << name;
    }
  }
}

TEST(OverseerReplyDecodingTest, BareCompletionsHaveTitlesOnly) {
  for (unsigned id : {2038u, 2062u, 2044u, 2068u, 2056u, 2080u, 2057u, 2081u, 2063u, 2071u, 2072u, 2074u, 2075u}) {
    const DecodedReply reply = DecodeMessage(id, 0x1234, 0);
    EXPECT_TRUE(reply.readable) << id;
    EXPECT_TRUE(reply.fields.empty()) << id;
    EXPECT_FALSE(reply.title.empty()) << id;
  }
  EXPECT_FALSE(DecodeMessage(2050, 0, 0).readable);
}

TEST(OverseerReplyDecodingTest, SizeTextThresholds) {
  EXPECT_EQ(SizeTextOfBytes(0), L"0.00 KB");
  EXPECT_EQ(SizeTextOfBytes(1048575), L"1024.00 KB");
  EXPECT_EQ(SizeTextOfBytes(1048576), L"1.00 MB");
  EXPECT_EQ(SizeTextOfBytes(1073741823), L"1024.00 MB");
  EXPECT_EQ(SizeTextOfBytes(1073741824), L"1.00 GB");
}

}  // namespace
}  // namespace overseer
