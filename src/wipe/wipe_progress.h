// Progress of the wipe in hand, shared with the free-space and deleted-file
// wipers: a percentage byte, and a mode in which each step is also sent to
// the worker's own command window.
#pragma once

#include <cstdint>

#include "common/relaxed.h"
#include "common/win.h"

namespace scourel {

// Off unless a free-space or deleted-file wipe turns it on.
extern Relaxed<bool> g_wipeProgressMode;
extern Relaxed<std::uint8_t> g_wipeProgress;

// k * 100 / n, capped at 100 (0 when n is 0).
std::uint8_t WipePercent(std::uint64_t k, std::uint64_t n);
// Stores the percentage; in progress mode also sends it to `window`.
void ReportWipeProgress(std::uint8_t percent, HWND window);

}  // namespace scourel
