// Turning what the worker sends into named fields: numeric replies from their
// wParam/lParam, copy-data replies from their texts. Pure, so every layout
// tests against sample texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/tasks.h"

namespace overseer {

struct Field {
  std::string name;
  std::wstring value;
  bool number = false;  // value is a whole number (printed bare in JSON)
};

struct DecodedReply {
  unsigned id = 0;    // message id; WM_COPYDATA (74) for copy-data
  unsigned kind = 0;  // copy-data kind, 0 for other messages
  std::string title;
  std::vector<Field> fields;
  std::wstring text;     // copy-data text as received
  bool readable = true;  // false: the text did not have the kind's layout
  bool progress = false;
};

inline constexpr unsigned kCopyDataMessage = scourel::protocol::kCopyDataMessage;

DecodedReply DecodeCopyData(unsigned kind, std::wstring_view text);
// wParam and lParam as the message carried them (pointer-sized).
DecodedReply DecodeMessage(unsigned id, std::uintptr_t wParam, std::intptr_t lParam);
// Whether overseer shows this message id as a reply at all.
bool IsWorkerReply(unsigned id);

// "%.2f KB" below 1 MiB, "%.2f MB" below 1 GiB, else "%.2f GB", 1024-based:
// the worker's own size text, for the byte totals numeric replies carry.
std::wstring SizeTextOfBytes(std::int64_t bytes);

}  // namespace overseer
