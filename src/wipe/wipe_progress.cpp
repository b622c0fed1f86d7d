#include "wipe/wipe_progress.h"

#include "protocol/messages.h"

namespace scourel {

Relaxed<bool> g_wipeProgressMode{false};
Relaxed<std::uint8_t> g_wipeProgress{0};

std::uint8_t WipePercent(std::uint64_t k, std::uint64_t n) {
  if (n == 0) return 0;
  const std::uint64_t percent = k * 100 / n;
  return static_cast<std::uint8_t>(percent > 100 ? 100 : percent);
}

void ReportWipeProgress(std::uint8_t percent, HWND window) {
  g_wipeProgress.set(percent);
  if (g_wipeProgressMode.get() && window != nullptr) {
    ::SendMessageW(window, protocol::kWipeProgress, percent, 0);
  }
}

}  // namespace scourel
