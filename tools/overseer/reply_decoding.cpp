#include "overseer/reply_decoding.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <cwchar>

#include "common/text.h"
#include "overseer/command_line.h"
#include "protocol/categories.h"
#include "protocol/messages.h"
#include "protocol/tasks.h"

namespace overseer {

namespace {

namespace p = scourel::protocol;
using scourel::Trimmed;

enum class Piece { kCount, kSize, kEmpty };

struct Slot {
  std::string name;
  Piece piece;
};

std::vector<std::wstring_view> Split(std::wstring_view text, std::wstring_view separator) {
  std::vector<std::wstring_view> pieces;
  for (;;) {
    const size_t at = text.find(separator);
    pieces.push_back(text.substr(0, at));
    if (at == std::wstring_view::npos) return pieces;
    text.remove_prefix(at + separator.size());
  }
}

bool IsCount(std::wstring_view text) {
  if (!text.empty() && text.front() == L'-') text.remove_prefix(1);
  if (text.empty() || text.size() > 19) return false;
  for (wchar_t c : text) {
    if (c < L'0' || c > L'9') return false;
  }
  return true;
}

bool IsSize(std::wstring_view text) {
  if (text.size() < 4) return false;
  const std::wstring_view unit = text.substr(text.size() - 3);
  if (unit != L" KB" && unit != L" MB" && unit != L" GB") return false;
  const std::wstring_view number = text.substr(0, text.size() - 3);
  bool digit = false;
  for (wchar_t c : number) {
    if (c >= L'0' && c <= L'9') {
      digit = true;
    } else if (c != L'.' && c != L'-') {
      return false;
    }
  }
  return digit;
}

// Fills the reply's fields from pieces cut at the separator; false when the
// pieces do not have the layout's types. Extra pieces past the layout are
// ignored only when allowTail is set.
bool Fill(DecodedReply& reply, std::wstring_view separator, const std::vector<Slot>& layout, bool allowTail = false) {
  const std::vector<std::wstring_view> pieces = Split(reply.text, separator);
  if (pieces.size() < layout.size() || (!allowTail && pieces.size() != layout.size())) return false;
  std::vector<Field> fields;
  for (size_t i = 0; i < layout.size(); ++i) {
    const std::wstring_view piece = Trimmed(pieces[i]);
    switch (layout[i].piece) {
      case Piece::kCount:
        if (!IsCount(piece)) return false;
        fields.push_back({layout[i].name, std::wstring(piece), true});
        break;
      case Piece::kSize:
        if (!IsSize(piece)) return false;
        fields.push_back({layout[i].name, std::wstring(piece), false});
        break;
      case Piece::kEmpty:
        if (!piece.empty()) return false;
        break;
    }
  }
  reply.fields = std::move(fields);
  return true;
}

template <typename Names>
std::vector<Slot> CountsThenEmpty(const Names& names) {
  std::vector<Slot> layout;
  for (std::string_view name : names) layout.push_back({std::string(name), Piece::kCount});
  layout.push_back({"", Piece::kEmpty});
  return layout;
}

std::vector<Slot> BrowserLayout() {
  std::vector<Slot> layout;
  for (std::string_view name : kBrowserNames) {
    layout.push_back({std::string(name), Piece::kCount});
    layout.push_back({std::string(name) + "_size", Piece::kSize});
  }
  // Every group ends with a separator, so the text ends with one.
  layout.push_back({"", Piece::kEmpty});
  return layout;
}

// The seven PC-traces counters of the completion and stop replies.
const std::vector<Slot>& PcCounterLayout() {
  static const std::vector<Slot> layout = [] {
    std::vector<Slot> slots;
    for (const p::PcStepSpec& step : p::kPcSteps) slots.push_back({std::string(step.name), Piece::kCount});
    return slots;
  }();
  return layout;
}

// The full scan's PC-traces record: the counters, each of the three steps
// that find files followed by its size.
const std::vector<Slot>& PcScanLayout() {
  static const std::vector<Slot> layout = [] {
    std::vector<Slot> slots;
    for (const p::PcStepSpec& step : p::kPcSteps) {
      slots.push_back({std::string(step.name), Piece::kCount});
      if (step.step == p::PcStep::kDocuments || step.step == p::PcStep::kNetwork ||
          step.step == p::PcStep::kScanDiskFiles) {
        slots.push_back({std::string(step.name) + "_size", Piece::kSize});
      }
    }
    return slots;
  }();
  return layout;
}

std::string StepName(unsigned id, std::uintptr_t step) {
  // Progress steps count from 1 in the order the task runs its steps.
  if (step < 1) return "";
  if (id == p::kPcTracesProgress && step <= std::size(p::kPcSteps)) return std::string(p::kPcSteps[step - 1].name);
  if (id == p::kBrowserProgress && step <= kBrowserNames.size()) return std::string(kBrowserNames[step - 1]);
  return "";
}

// "junk files cleaned", "browser traces stopped", ...
std::string TaskReplyTitle(const p::ReplyMatch& match) {
  return std::string(match.spec->title) + " " + std::string(match.stop ? "stopped" : match.spec->doneVerb);
}

Field CountField(std::string name, long long value) { return {std::move(name), std::to_wstring(value), true}; }

bool OneOf(std::wstring_view piece, std::initializer_list<std::wstring_view> words) {
  return std::find(words.begin(), words.end(), piece) != words.end();
}

// The free-space wipe's completion: status, bytes filled, fill files, files
// the record step made, whether it ran, whether TRIM was issued, whether the
// drive is solid-state, the file system's name and (from workers that clear
// folder indexes) the folders whose index took fill entries.
bool FillFreeSpace(DecodedReply& reply) {
  const std::vector<std::wstring_view> pieces = Split(reply.text, p::kSepFreeSpace);
  if (pieces.size() != 8 && !(pieces.size() == 9 && IsCount(pieces[8]) && pieces[8].front() != L'-')) return false;
  if (!OneOf(pieces[0], {L"done", L"full", L"no drive", L"read-only", L"cannot write", L"stopped"})) return false;
  for (int i = 1; i <= 3; ++i) {
    if (!IsCount(pieces[i]) || pieces[i].front() == L'-') return false;
  }
  if (!OneOf(pieces[4], {L"done", L"skipped"}) || !OneOf(pieces[5], {L"issued", L"not issued"}) ||
      !OneOf(pieces[6], {L"yes", L"no", L"unknown"})) {
    return false;
  }
  reply.fields = {{"status", std::wstring(pieces[0]), false},
                  {"bytes_filled", std::wstring(pieces[1]), true},
                  {"size", SizeTextOfBytes(std::wcstoll(std::wstring(pieces[1]).c_str(), nullptr, 10)), false},
                  {"fill_files", std::wstring(pieces[2]), true},
                  {"record_files", std::wstring(pieces[3]), true},
                  {"record_step", std::wstring(pieces[4]), false},
                  {"trim", std::wstring(pieces[5]), false},
                  {"solid_state", std::wstring(pieces[6]), false},
                  {"file_system", std::wstring(pieces[7]), false}};
  if (pieces.size() == 9) reply.fields.push_back({"index_folders", std::wstring(pieces[8]), true});
  return true;
}

}  // namespace

std::wstring SizeTextOfBytes(std::int64_t bytes) {
  const double value = static_cast<double>(bytes);
  wchar_t text[64];
  if (value < 1048576.0) {
    std::swprintf(text, 64, L"%.2f KB", value / 1024.0);
  } else if (value < 1073741824.0) {
    std::swprintf(text, 64, L"%.2f MB", value / 1048576.0);
  } else {
    std::swprintf(text, 64, L"%.2f GB", value / 1073741824.0);
  }
  return text;
}

DecodedReply DecodeCopyData(unsigned kind, std::wstring_view text) {
  DecodedReply reply;
  reply.id = kCopyDataMessage;
  reply.kind = kind;
  reply.text = std::wstring(text);
  bool ok = false;
  switch (kind) {
    case p::kScanJunkFiles:
      reply.title = "scan: junk files";
      ok = Fill(reply, p::kSepJunk,
                {{"temporary_files", Piece::kCount}, {"size", Piece::kSize}, {"other_junk_files", Piece::kCount}});
      break;
    case p::kScanShortcuts:
      reply.title = "scan: dead shortcuts";
      ok = Fill(reply, p::kSepShortcuts, {{"dead_shortcuts", Piece::kCount}, {"size", Piece::kSize}});
      break;
    case p::kScanRecycleBin:
      reply.title = "scan: Recycle Bin";
      ok = Fill(reply, p::kSepRecycleBin, {{"recycle_bin_items", Piece::kCount}, {"size", Piece::kSize}});
      break;
    case p::kScanPcTraces:
      reply.title = "scan: PC traces";
      ok = Fill(reply, p::kSepPcTraces, PcScanLayout());
      break;
    case p::kScanBrowser:
    case p::kBrowserDone:
    case p::kBrowserStopped:
      reply.title = kind == p::kScanBrowser ? "scan: browser traces" : TaskReplyTitle(*p::FindReply(kCopyDataMessage, kind));
      ok = Fill(reply, p::kSepBrowser, BrowserLayout());
      break;
    case p::kScanPlugins:
      reply.title = "scan: plug-ins";
      ok = Fill(reply, p::kSepPlugins, {{"plugin_items", Piece::kCount}, {"size", Piece::kSize}});
      break;
    case p::kScanRegistry:
      reply.title = "scan: registry";
      ok = Fill(reply, p::kSepRegistry, CountsThenEmpty(p::kRegistryReportNames));
      break;
    case p::kScanExtensions:
      reply.title = "scan: user profile and file extensions";
      ok = Fill(reply, L"\n", {{"entries", Piece::kCount}});
      break;
    case p::kScanRegistryDone:
      reply.title = "scan: registry done";
      ok = text == p::kScanCompletedText;
      if (ok) reply.fields.push_back({"text", std::wstring(text), false});
      break;
    case p::kPcTracesDone:
      reply.title = TaskReplyTitle(*p::FindReply(kCopyDataMessage, kind));
      ok = Fill(reply, p::kSepPcTraces, PcCounterLayout());
      break;
    case p::kPcTracesStopped: {
      // Only the first five counters, each with its separator, are reliable;
      // what follows the fifth separator is not read.
      reply.title = TaskReplyTitle(*p::FindReply(kCopyDataMessage, kind));
      const std::vector<Slot> firstFive(PcCounterLayout().begin(), PcCounterLayout().begin() + 5);
      // More than five pieces: the fifth counter is followed by its separator.
      ok = Split(reply.text, p::kSepPcTraces).size() > 5 && Fill(reply, p::kSepPcTraces, firstFive, true);
      break;
    }
    case p::kFreeSpaceDone:
      reply.title = TaskReplyTitle(*p::FindReply(kCopyDataMessage, kind));
      ok = FillFreeSpace(reply);
      break;
    default:
      reply.title = "unknown copy-data kind";
      break;
  }
  reply.readable = ok;
  if (!ok) reply.fields.clear();
  return reply;
}

DecodedReply DecodeMessage(unsigned id, std::uintptr_t wParam, std::intptr_t lParam) {
  DecodedReply reply;
  reply.id = id;
  // Counts are 32-bit signed counters widened to the pointer width.
  const auto count = static_cast<std::int32_t>(static_cast<std::uint32_t>(wParam));
  const auto bytes = static_cast<std::int64_t>(lParam);
  if (id == p::kPcTracesProgress || id == p::kBrowserProgress) {
    const p::TaskSpec& task = p::SpecOf(id == p::kPcTracesProgress ? p::Task::kPcTraces : p::Task::kBrowser);
    reply.title = std::string(task.title) + " progress";
    reply.progress = true;
    reply.fields.push_back(CountField("step", static_cast<long long>(wParam)));
    const std::string step = StepName(id, wParam);
    reply.fields.push_back({"done", std::wstring(step.begin(), step.end()), false});
    return reply;
  }
  if (id == p::kFreeSpaceProgress) {
    reply.title = std::string(p::SpecOf(p::Task::kFreeSpaceWipe).title) + " progress";
    reply.progress = true;
    reply.fields.push_back(CountField("percent", static_cast<long long>(wParam)));
    reply.fields.push_back(CountField("bytes_filled", bytes));
    return reply;
  }
  const std::optional<p::ReplyMatch> match = p::FindReply(id);
  if (!match) {
    reply.title = "unknown message";
    reply.readable = false;
    reply.fields.push_back(CountField("wparam", static_cast<long long>(wParam)));
    reply.fields.push_back(CountField("lparam", static_cast<long long>(lParam)));
    return reply;
  }
  reply.title = TaskReplyTitle(*match);
  if (match->reply->payload == p::Payload::kCountAndBytes) {
    reply.fields.push_back(CountField(std::string(match->spec->countName), count));
    reply.fields.push_back(CountField("bytes", bytes));
    reply.fields.push_back({"size", SizeTextOfBytes(bytes), false});
  }
  return reply;
}

bool IsWorkerReply(unsigned id) {
  return id == kCopyDataMessage || id == p::kPcTracesProgress || id == p::kBrowserProgress ||
         id == p::kFreeSpaceProgress ||
         p::FindReply(id).has_value();
}

}  // namespace overseer
