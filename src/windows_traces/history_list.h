// Reading and erasing the shell's history lists: registry keys under
// HKEY_CURRENT_USER whose values are the list's entries.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "common/relaxed.h"
#include "common/unique_handle.h"
#include "task/task_context.h"

namespace scourel {

// The length every list walk starts from: both the name's capacity (in
// characters) and the data's (in bytes).
inline constexpr DWORD kHistoryLengthStart = 1024;

// One set per operation, kept for the life of the process. The extra element
// of each buffer is never written, so both always end in a zero.
struct HistoryListBuffers {
  wchar_t name[kHistoryLengthStart + 1];
  BYTE data[kHistoryLengthStart + 1];
};

// "HKEY_CURRENT_USER\<key path>\<value name>\", the text made for each entry.
std::wstring HistoryEntryText(std::wstring_view keyPath, std::wstring_view valueName);

// True when the data, read as a narrow string, is "MRUListEx".
bool IsMruListData(const BYTE* data);

// Reads the value at the index into the buffers. One length variable serves
// as the name's and the data's capacity and is left as the call leaves it, so
// a short entry shrinks what the next read may take: a later, longer entry
// then fails to read.
bool ReadHistoryValue(HKEY key, DWORD index, HistoryListBuffers& buffers, DWORD& length);

// Adds 1 to the counter for each value of root\path (0 when the key does not
// open). With skipMruListData, a value whose data reads as "MRUListEx" is not
// counted. Returns how many were counted.
int CountHistoryValues(const TaskContext& context, HKEY root, const std::wstring& path, HistoryListBuffers& buffers,
                       bool skipMruListData, Relaxed<std::int32_t>& counter);

enum class CountMode { kAdd, kSet };

// Counts root\path's values into the counter before anything goes, deletes
// the values from index 0 until a read or a delete fails, then deletes the
// key with all its subkeys. Returns how many values went one by one.
int EraseHistoryKey(const TaskContext& context, HKEY root, const std::wstring& path, HistoryListBuffers& buffers,
                    Relaxed<std::int32_t>& counter, CountMode mode);

}  // namespace scourel
