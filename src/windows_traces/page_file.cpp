#include "windows_traces/page_file.h"

#include "common/registry_key.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

void SetClearPageFileAt(CleanerIo& io, HKEY root, const std::wstring& path) {
  // Without administrator rights this fails and the step does nothing.
  const OpenedKey key = OpenRegKey(root, path, KEY_ALL_ACCESS);
  if (!key) return;
  // Written as it always has been: a string "0" whose length in characters
  // (1) is passed as its length in bytes, so one byte is stored.
  static constexpr wchar_t kText[] = L"0";
  (void)io.SetValue(key.get(), kClearPageFileValue, REG_SZ, reinterpret_cast<const BYTE*>(kText), 1);
}

void SetClearPageFile(const TaskContext& context) {
  if (context.erasing()) SetClearPageFileAt(context.io, HKEY_LOCAL_MACHINE, kMemoryManagementKey);
}

}  // namespace scourel
