// The receipt of a clean or fix: what the preview before it listed, judged
// by the preview after it. An item the second preview no longer lists was
// taken; one it lists again was left, with the reason the code knows (held
// open, access denied, the task stopped or timed out, or still there).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "overseer/preview.h"

namespace overseer {

inline constexpr int kReceiptSchemaVersion = 1;

struct ReceiptItem {
  Change change;       // as the first preview listed it
  std::string group;   // "junk", "browser / cache / chrome"...
  std::string reason;  // left only
};

struct Receipt {
  std::string command;
  std::string status;  // the run's: completed, stopped, failed...
  std::vector<ReceiptItem> taken, left;
  std::uint64_t takenBytes = 0;
};

// status: how the clean ended ("completed", "stopped", "failed"...).
Receipt BuildReceipt(const std::string& command, const Preview& before, const Preview& after,
                     const std::string& status);
// "taken 1,204 items, 38.2 MiB; left 3: held open by another program"
std::string ReceiptSummary(const Receipt& receipt);
std::string ReceiptJson(const Receipt& receipt);
// Writes the JSON document; false when the file cannot be written.
bool WriteReceipt(const std::wstring& path, const Receipt& receipt);

}  // namespace overseer
