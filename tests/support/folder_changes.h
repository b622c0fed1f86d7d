// Waits for what a worker does to a folder, woken by the folder's change
// notifications rather than by a clock.
#pragma once

#include <string>

#include "common/unique_handle.h"
#include "common/win.h"

namespace scourel::test {

struct ChangeNotificationTraits {
  using type = HANDLE;
  static type Invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static bool IsValid(type h) noexcept { return h != nullptr && h != INVALID_HANDLE_VALUE; }
  static void Close(type h) noexcept { ::FindCloseChangeNotification(h); }
};

// Watches `folder` (not below it) for files that appear, go or change size
// or content. Make it before the action it waits for.
class FolderChanges {
 public:
  explicit FolderChanges(const std::wstring& folder)
      : change_(::FindFirstChangeNotificationW(
            folder.c_str(), FALSE,
            FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE)) {}

  // True once `condition` holds, tested again after every change; false
  // when it still does not after the time.
  template <typename Condition>
  bool WaitUntil(Condition condition, DWORD timeoutMs = 30000) {
    const ULONGLONG end = ::GetTickCount64() + timeoutMs;
    while (!condition()) {
      const ULONGLONG now = ::GetTickCount64();
      if (!change_ || now >= end ||
          ::WaitForSingleObject(change_.get(), static_cast<DWORD>(end - now)) != WAIT_OBJECT_0) {
        return condition();
      }
      ::FindNextChangeNotification(change_.get());
    }
    return true;
  }

 private:
  UniqueHandle<ChangeNotificationTraits> change_;
};

}  // namespace scourel::test
