#include "overseer/reply_decoding.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "protocol/reply_text.h"

namespace overseer {
namespace {

using Fields = std::map<std::string, std::wstring>;

struct ReplyCase {
  unsigned what;  // a copy-data kind, or (from 2000) the id of a numeric reply
  std::wstring text;
  std::uintptr_t wParam;
  std::intptr_t lParam;
  size_t fieldCount;
  Fields expected;  // a selection of the fields
};

// Every reply the worker sends, texts as the worker itself formats them.
TEST(OverseerReplyDecodingTest, EveryReplyKind) {
  const scourel::PcCounters pc = {1, 2, 3, 0, 5, 6, 7};
  const std::array<std::int32_t, 10> counts = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
  const std::array<float, 10> sizes = {512.0f, 0, 0, 0, 0, 0, 3145728.0f, 0, 0, 2147483648.0f};
  const std::wstring browser = scourel::BrowserText(counts, sizes);
  const auto minusOne = static_cast<std::uintptr_t>(std::intptr_t{-1});
  const ReplyCase cases[] = {
      {101, scourel::JunkScanText(12, 1536.0f, 3), 0, 0, 3,
       {{"temporary_files", L"12"}, {"size", L"1.50 KB"}, {"other_junk_files", L"3"}}},
      {102, scourel::ShortcutScanText(4, 2097152.0f), 0, 0, 2, {{"dead_shortcuts", L"4"}, {"size", L"2.00 MB"}}},
      {103, scourel::RecycleBinScanText(9, 0.0f), 0, 0, 2, {{"recycle_bin_items", L"9"}, {"size", L"0.00 KB"}}},
      {104, scourel::PcTracesScanText(pc, 2048.0f, 0.0f, 1073741824.0f), 0, 0, 10,
       {{"documents", L"1"}, {"documents_size", L"2.00 KB"}, {"run_history", L"2"}, {"find_files", L"3"},
        {"clipboard", L"0"}, {"network", L"5"}, {"network_size", L"0.00 KB"}, {"scan_disk_files", L"6"},
        {"scan_disk_files_size", L"1.00 GB"}, {"registry_traces", L"7"}}},
      {105, browser, 0, 0, 20,
       {{"cache", L"10"}, {"cache_size", L"0.50 KB"}, {"address_bar", L"16"}, {"address_bar_size", L"3.00 MB"},
        {"icons", L"19"}, {"icons_size", L"2.00 GB"}}},
      {305, browser, 0, 0, 20, {{"download_history", L"15"}}},
      {306, scourel::BrowserText({}, {}), 0, 0, 20, {{"index", L"0"}, {"index_size", L"0.00 KB"}}},
      {106, scourel::PluginScanText(2, 100.0f), 0, 0, 2, {{"plugin_items", L"2"}, {"size", L"0.10 KB"}}},
      // Category order: com, paths, empty, association, types, fonts, help, dll, software, sound,
      // current user, deep scan.
      {107, scourel::RegistryScanText({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), 0, 0, 12,
       {{"com", L"1"}, {"paths", L"2"}, {"association", L"4"}, {"current_user", L"11"}, {"deep_scan", L"12"}}},
      {107, scourel::RegistryScanText({INT32_MIN, INT32_MAX}), 0, 0, 12,
       {{"com", L"-2147483648"}, {"paths", L"2147483647"}, {"deep_scan", L"0"}}},
      {108, scourel::ExtensionScanText(42), 0, 0, 1, {{"entries", L"42"}}},
      {109, L"Scanning Completed", 0, 0, 1, {{"text", L"Scanning Completed"}}},
      {303, scourel::PcTracesDoneText(pc), 0, 0, 7,
       {{"documents", L"1"}, {"clipboard", L"0"}, {"network", L"5"}, {"registry_traces", L"7"}}},
      // The stop reply: only up to the fifth counter is read, whatever follows.
      {304, L"8\\pc 7\\pc 6\\pc 5\\pc 4\\pc\x01garbage\\pc\\pc", 0, 0, 5,
       {{"documents", L"8"}, {"run_history", L"7"}, {"find_files", L"6"}, {"clipboard", L"5"}, {"network", L"4"}}},
      {307, scourel::FreeSpaceDoneText({L"done", 5000000000ULL, 2, 4321, true, true, L"yes", L"NTFS", 17}), 0, 0, 10,
       {{"status", L"done"}, {"bytes_filled", L"5000000000"}, {"size", L"4.66 GB"}, {"fill_files", L"2"},
        {"record_files", L"4321"}, {"record_step", L"done"}, {"trim", L"issued"}, {"solid_state", L"yes"},
        {"file_system", L"NTFS"}, {"index_folders", L"17"}}},
      {307, scourel::FreeSpaceDoneText({L"full", 0, 0, 0, false, false, L"unknown", L""}), 0, 0, 10,
       {{"status", L"full"}, {"record_step", L"skipped"}, {"trim", L"not issued"}, {"file_system", L""}}},
      // A worker that does not clear folder indexes sends one field less.
      {307, L"done\\fw0\\fw1\\fw0\\fwskipped\\fwnot issued\\fwno\\fwFAT32", 0, 0, 9, {{"file_system", L"FAT32"}}},
      {2091, L"", 42, 3000000000LL, 2, {{"percent", L"42"}, {"bytes_filled", L"3000000000"}}},
      // Numeric replies: a 32-bit signed count widened, a 64-bit byte total (a stop's
      // and the second set's alike; the size text's unit edges are its own test's).
      {2035, L"", 3, 1536, 3, {{"junk_files", L"3"}, {"bytes", L"1536"}, {"size", L"1.50 KB"}}},
      {2041, L"", minusOne, 3000000000LL, 3, {{"dead_shortcuts", L"-1"}, {"bytes", L"3000000000"}, {"size", L"2.79 GB"}}},
      {2053, L"", 7, 1048576, 3, {{"recycle_bin_items", L"7"}, {"size", L"1.00 MB"}}},
      {2036, L"", 2, 1073741823, 3, {{"junk_files", L"2"}, {"size", L"1024.00 MB"}}},
      {2066, L"", 1, 1073741824, 3, {{"dead_shortcuts", L"1"}, {"size", L"1.00 GB"}}},
      {2082, L"", 3, 0, 2, {{"step", L"3"}, {"done", L"find_files"}}},
      {2083, L"", 9, 0, 2, {{"done", L"index"}}},
  };
  for (const ReplyCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.what << " " << testing::PrintToString(c.text));
    const bool copy = c.what < 2000;
    const DecodedReply reply = copy ? DecodeCopyData(c.what, c.text) : DecodeMessage(c.what, c.wParam, c.lParam);
    EXPECT_TRUE(reply.readable);
    EXPECT_FALSE(reply.title.empty());
    EXPECT_EQ(reply.progress, c.what == 2082 || c.what == 2083 || c.what == 2091);
    ASSERT_EQ(reply.fields.size(), c.fieldCount);
    Fields fields;
    for (const Field& field : reply.fields) fields[field.name] = field.value;
    for (const auto& [name, value] : c.expected) EXPECT_EQ(fields[name], value) << name;
  }
}

TEST(OverseerReplyDecodingTest, BareCompletionsHaveTitlesOnly) {
  for (unsigned id :
       {2038u, 2062u, 2044u, 2068u, 2056u, 2080u, 2057u, 2081u, 2063u, 2071u, 2072u, 2074u, 2075u, 2090u}) {
    const DecodedReply reply = DecodeMessage(id, 0x1234, 0);
    EXPECT_TRUE(reply.readable && reply.fields.empty() && !reply.title.empty()) << id;
  }
  EXPECT_FALSE(DecodeMessage(2050, 0, 0).readable);
}

TEST(OverseerReplyDecodingTest, TextsOutOfLayoutAreUnreadable) {
  const std::pair<unsigned, const wchar_t*> cases[] = {
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
      {307, L"done\\fw1\\fw1\\fw0\\fwdone\\fwissued\\fwyes"},             // the file system missing
      {307, L"finished\\fw1\\fw1\\fw0\\fwdone\\fwissued\\fwyes\\fwNTFS"},  // no such status
      {307, L"done\\fw-1\\fw1\\fw0\\fwdone\\fwissued\\fwyes\\fwNTFS"},      // a negative count
      {999, L"1"},
  };
  for (const auto& [kind, text] : cases) {
    const DecodedReply reply = DecodeCopyData(kind, text);
    EXPECT_TRUE(!reply.readable && reply.fields.empty() && reply.text == text) << kind << " " << text;
  }
}

// Worker texts edited at random, as a broken or hostile sender might: the
// decoder keeps the text, and what still reads as readable has the kind's
// layout.
TEST(OverseerReplyDecodingTest, EditedTextsDecodeSafely) {
  using namespace scourel;
  const PcCounters pc = {INT32_MIN, INT32_MAX, 0, -1, 1, 2, 3};
  const std::pair<unsigned, std::wstring> made[] = {
      {101, JunkScanText(INT32_MAX, 4e9f, INT32_MIN)}, {104, PcTracesScanText(pc, 0.0f, 1023.0f, 1024.0f)},
      {105, BrowserText({}, {})}, {107, RegistryScanText({INT32_MIN, INT32_MAX})}, {304, PcTracesStoppedText(pc)},
  };
  const std::wstring pieces[] = {L"\\", L"pc", L"is", L" ", L"-", L"0", L".", L" KB", L"\xD800", std::wstring(1, L'\0')};
  std::mt19937 random(2034);
  for (int i = 0; i < 5000; ++i) {
    const auto& [kind, original] = made[i % std::size(made)];
    const std::size_t fields = DecodeCopyData(kind, original).fields.size();
    ASSERT_GT(fields, 0u) << kind;
    std::wstring text = original;
    for (int edits = 1 + random() % 3; edits > 0; --edits) {
      const std::size_t at = random() % (text.size() + 1);
      switch (random() % 3) {
        case 0: text.erase(at, 1); break;
        case 1: text.insert(at, pieces[random() % std::size(pieces)]); break;
        default: if (at < text.size()) text[at] = static_cast<wchar_t>(random() % 0x10000); break;
      }
    }
    const DecodedReply edited = DecodeCopyData(kind, text);
    ASSERT_EQ(edited.text, text);
    ASSERT_TRUE(!edited.readable || edited.fields.size() == fields) << testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace overseer
