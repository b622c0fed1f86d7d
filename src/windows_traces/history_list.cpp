#include "windows_traces/history_list.h"

#include <cstring>

#include "common/registry_links.h"

namespace scourel {

namespace {

// A list reached through a registry link is not this user's list: neither
// counted nor emptied.
OpenedKey OpenListKey(HKEY root, const std::wstring& path) {
  return OpenRegKeyWithoutLinks(root, path, KEY_ALL_ACCESS);
}

}  // namespace

std::wstring HistoryEntryText(std::wstring_view keyPath, std::wstring_view valueName) {
  std::wstring text = L"HKEY_CURRENT_USER\\";
  text.append(keyPath).append(L"\\").append(valueName).append(L"\\");
  return text;
}

bool IsMruListData(const BYTE* data) {
  return std::strcmp(reinterpret_cast<const char*>(data), "MRUListEx") == 0;
}

bool ReadHistoryValue(HKEY key, DWORD index, HistoryListBuffers& buffers, DWORD& length) {
  // The system may leave a longer length behind (the size a failed read
  // needed); the buffers hold no more than the starting length.
  if (length > kHistoryLengthStart) length = kHistoryLengthStart;
  DWORD type = 0;
  const LSTATUS status =
      ::RegEnumValueW(key, index, buffers.name, &length, nullptr, &type, buffers.data, &length);
  if (length > kHistoryLengthStart) length = kHistoryLengthStart;
  return status == ERROR_SUCCESS;
}

int CountHistoryValues(const TaskContext& context, HKEY root, const std::wstring& path, HistoryListBuffers& buffers,
                       bool skipMruListData, Relaxed<std::int32_t>& counter) {
  const OpenedKey key = OpenListKey(root, path);
  if (!key) return 0;
  const DWORD values = CountsOf(key.get()).values;
  DWORD length = kHistoryLengthStart;
  int counted = 0;
  for (DWORD index = 0; index < values; ++index) {
    if (context.stopped()) break;
    // A failed read still counts: the entry is there, only its text is stale.
    ReadHistoryValue(key.get(), index, buffers, length);
    if (skipMruListData && IsMruListData(buffers.data)) continue;
    const std::wstring text = HistoryEntryText(path, buffers.name);
    (void)text;  // made for every entry, shown nowhere
    if (context.Record([&] { counter.add(1); })) ++counted;
  }
  return counted;
}

int EraseHistoryKey(const TaskContext& context, HKEY root, const std::wstring& path, HistoryListBuffers& buffers,
                    Relaxed<std::int32_t>& counter, CountMode mode) {
  const OpenedKey key = OpenListKey(root, path);
  const auto values = static_cast<std::int32_t>(key ? CountsOf(key.get()).values : 0);
  context.Record([&] { mode == CountMode::kSet ? counter.set(values) : counter.add(values); });

  int deleted = 0;
  if (key) {
    DWORD length = kHistoryLengthStart;
    while (!context.stopped() && ReadHistoryValue(key.get(), 0, buffers, length) &&
           !context.io.DeleteValue(key.get(), buffers.name)) {
      ++deleted;
    }
  }
  // Whatever the loop left goes with the key; a missing key fails harmlessly.
  if (!context.stopped()) (void)context.io.DeleteKeyTree(root, path);
  return deleted;
}

}  // namespace scourel
