#include "windows_traces/page_file.h"

#include "common/unique_handle.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

void SetClearPageFileAt(HKEY root, const std::wstring& path) {
  UniqueRegKey key;
  // Without administrator rights this fails and the step does nothing.
  if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_ALL_ACCESS, key.put()) != ERROR_SUCCESS) {
    key.release();
    return;
  }
  // Written as it always has been: a string "0" whose length in characters
  // (1) is passed as its length in bytes, so one byte is stored.
  static constexpr wchar_t kText[] = L"0";
  ::RegSetValueExW(key.get(), kClearPageFileValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(kText), 1);
}

int SetClearPageFile() {
  SetClearPageFileAt(HKEY_LOCAL_MACHINE, kMemoryManagementKey);
  return 0;
}

}  // namespace scourel
