// Byte totals as the replies carry them: size texts for the copy-data
// records, a truncated 64-bit value for the numeric replies.
#pragma once

#include <cstdint>
#include <string>

namespace scourel {

// "%.2f KB" below 1048576 bytes, "%.2f MB" below 1073741824, else "%.2f GB",
// scaled in single precision as the totals are kept.
std::wstring SizeText(float bytes);
// The same with "%7.2f", for the full scan's PC-traces record.
std::wstring PaddedSizeText(float bytes);

// The lParam of a numeric reply: the float's value truncated toward zero.
std::int64_t ReplyBytes(float bytes);

}  // namespace scourel
