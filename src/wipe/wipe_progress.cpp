#include "wipe/wipe_progress.h"

#include "host/protocol.h"
#include "host/worker_state.h"

namespace scourel {

Relaxed<bool> g_wipeProgressMode{false};
Relaxed<std::uint8_t> g_wipeProgress{0};

std::uint8_t WipePercent(std::uint64_t k, std::uint64_t n) {
  if (n == 0) return 0;
  const std::uint64_t percent = k * 100 / n;
  return static_cast<std::uint8_t>(percent > 100 ? 100 : percent);
}

void ReportWipeProgress(std::uint8_t percent) {
  g_wipeProgress.set(percent);
  if (g_wipeProgressMode.get() && g_commandWindow != nullptr) {
    ::SendMessageW(g_commandWindow, protocol::kWipeProgress, percent, 0);
  }
}

}  // namespace scourel
