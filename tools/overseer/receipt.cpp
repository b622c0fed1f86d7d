#include "overseer/receipt.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>

#include "overseer/preview_output.h"
#include "overseer/report_output.h"

namespace overseer {

namespace {

// What makes two listings' items the same: their kind family and name.
std::wstring ItemKey(const Change& change) {
  const bool file = change.kind == ChangeKind::kFile || change.kind == ChangeKind::kFileLeft;
  return (file ? L"file " : std::wstring(L"other ")) + FileKey(change.name);
}

bool IsTakeable(const Change& change) {
  switch (change.kind) {
    case ChangeKind::kFile:
    case ChangeKind::kFileLeft:
    case ChangeKind::kFolder:
    case ChangeKind::kKey:
    case ChangeKind::kValue: return true;
    default: return false;
  }
}

std::string WithThousands(std::uint64_t value) {
  const std::string digits = std::to_string(value);
  std::string out;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
    out += digits[i];
  }
  return out;
}

std::string Mebibytes(std::uint64_t bytes) {
  char text[32];
  if (bytes < 1024 * 1024) {
    std::snprintf(text, sizeof text, "%.1f KiB", static_cast<double>(bytes) / 1024.0);
  } else {
    std::snprintf(text, sizeof text, "%.1f MiB", static_cast<double>(bytes) / (1024.0 * 1024.0));
  }
  return text;
}

std::string Text(const std::string& ascii) { return JsonString(std::wstring(ascii.begin(), ascii.end())); }

}  // namespace

Receipt BuildReceipt(const std::string& command, const Preview& before, const Preview& after,
                     const std::string& status) {
  Receipt receipt{command, status, {}, {}, 0};
  std::map<std::wstring, const Change*> again;
  for (const Change& change : after.changes) {
    if (IsTakeable(change)) again[ItemKey(change)] = &change;
  }
  const auto items = ItemsByGroup(before);
  for (std::size_t g = 0; g < items.size(); ++g) {
    for (const Change* change : items[g]) {
      if (change->kind == ChangeKind::kRefused) {
        receipt.left.push_back({*change, GroupTitle(before.groups[g]), "refused: " + change->reason});
        continue;
      }
      if (!IsTakeable(*change)) continue;
      ReceiptItem item{*change, GroupTitle(before.groups[g]), {}};
      const auto found = again.find(ItemKey(*change));
      if (found == again.end()) {
        receipt.takenBytes += change->bytes;
        receipt.taken.push_back(std::move(item));
        continue;
      }
      if (found->second->kind == ChangeKind::kFileLeft) {
        item.reason = LeftReason(found->second->before);
      } else if (status == "stopped" || status == "failed") {
        item.reason = status == "stopped" ? "the task was stopped" : "the clean did not finish";
      } else {
        item.reason = "still there";
      }
      receipt.left.push_back(std::move(item));
    }
  }
  return receipt;
}

std::string ReceiptSummary(const Receipt& receipt) {
  std::string text = "taken ";
  text += WithThousands(receipt.taken.size());
  text += " items, ";
  text += Mebibytes(receipt.takenBytes);
  text += "; left ";
  text += WithThousands(receipt.left.size());
  std::map<std::string, int> reasons;
  for (const ReceiptItem& item : receipt.left) ++reasons[item.reason];
  bool first = true;
  for (const auto& [reason, count] : reasons) {
    text += first ? ": " : ", ";
    text += reason;
    if (reasons.size() > 1) text += " (" + std::to_string(count) + ")";
    first = false;
  }
  return text;
}

std::string ReceiptJson(const Receipt& receipt) {
  auto list = [](const std::vector<ReceiptItem>& items, bool left) {
    std::string out;
    for (std::size_t i = 0; i < items.size(); ++i) {
      std::string item = ItemJson(items[i].change);
      item.pop_back();  // the closing brace
      item += ", \"group\": " + Text(items[i].group);
      if (left && items[i].change.kind != ChangeKind::kRefused) item += ", \"reason\": " + Text(items[i].reason);
      out += std::string(i ? ",\n    " : "\n    ") + item + "}";
    }
    return out + (items.empty() ? "]" : "\n  ]");
  };
  return "{\n  \"schema\": \"overseer-receipt\",\n  \"version\": " + std::to_string(kReceiptSchemaVersion) +
         ",\n  \"command\": " + Text(receipt.command) + ",\n  \"status\": " + Text(receipt.status) +
         ",\n  \"summary\": " + Text(ReceiptSummary(receipt)) + ",\n  \"totals\": {\"taken\": " +
         std::to_string(receipt.taken.size()) + ", \"taken_bytes\": " + std::to_string(receipt.takenBytes) +
         ", \"left\": " + std::to_string(receipt.left.size()) + "},\n  \"taken\": [" + list(receipt.taken, false) +
         ",\n  \"left\": [" + list(receipt.left, true) + "\n}\n";
}

bool WriteReceipt(const std::wstring& path, const Receipt& receipt) {
  const std::string text = ReceiptJson(receipt);
  std::ofstream file(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  return !file.fail();
}

}  // namespace overseer
