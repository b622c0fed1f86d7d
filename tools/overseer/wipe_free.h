// overseer's side of `wipe free DRIVE`: what it refuses before a worker is
// asked, and the progress line it draws while the worker fills.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "overseer/command_line.h"
#include "wipe/volume_facts.h"

namespace overseer {

// Above this size, a method of more than three passes needs --yes.
inline constexpr std::uint64_t kLongWipeVolumeBytes = std::uint64_t{64} << 30;
// The write speed the time estimate assumes.
inline constexpr std::uint64_t kEstimateBytesPerSecond = std::uint64_t{100} << 20;

struct WipeRefusal {
  std::string text;
  int exitCode = 2;
};

// Why the wipe must not be sent, or nullopt. A missing drive, a network
// drive, a CD drive or a read-only volume are refused; a long wipe asks for
// --yes and says how long it may take.
std::optional<WipeRefusal> CheckWipeTarget(const Options& options, const std::optional<scourel::VolumeFacts>& facts);

// "1 h 05 min", "12 min", "40 s".
std::string DurationText(std::uint64_t seconds);

// The progress of a wipe as overseer shows it: on a terminal one line redrawn
// in place (percent, MiB/s, time left), otherwise a line per 10 %.
class WipeProgressView {
 public:
  explicit WipeProgressView(bool terminal) : terminal_(terminal) {}
  // What to print for this step, at `nowMs`; empty when nothing changes.
  std::string Update(unsigned percent, std::uint64_t bytes, std::uint64_t nowMs);
  // Ends a redrawn line before other output.
  std::string Finish();

 private:
  bool terminal_;
  bool started_ = false;
  bool open_ = false;
  std::uint64_t startMs_ = 0;
  int lastTenth_ = -1;
};

}  // namespace overseer
