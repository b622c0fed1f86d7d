#include "overseer/wipe_free.h"

#include <cstdio>

#include "wipe/wipe_passes.h"

namespace overseer {

std::optional<WipeRefusal> CheckWipeTarget(const Options& options, const std::optional<scourel::VolumeFacts>& facts) {
  const std::string drive(options.drive.begin(), options.drive.end());
  if (!scourel::DriveLetterOf(options.drive)) return WipeRefusal{"\"" + drive + "\" is not a drive: give one as D:"};
  if (!facts) return WipeRefusal{"drive " + drive + " does not exist"};
  if (facts->driveType == DRIVE_REMOTE) return WipeRefusal{"drive " + drive + " is a network drive: wipe it where it lives"};
  if (facts->driveType == DRIVE_CDROM || facts->readOnly()) return WipeRefusal{"drive " + drive + " is read-only"};
  const unsigned method = options.wipeMethod.value_or(0);
  const std::uint32_t passes = scourel::CEraserJunkData::PassCount(method);
  if (passes > 3 && facts->totalBytes > kLongWipeVolumeBytes && !options.yes) {
    const std::uint64_t seconds = facts->freeBytes / kEstimateBytesPerSecond * passes;
    return WipeRefusal{"the " + std::string(kWipeNames[method]) + " method writes the " +
                       std::to_string(facts->freeBytes >> 30) + " GiB free on " + drive + " " +
                       std::to_string(passes) + " times: about " + DurationText(seconds) +
                       " at 100 MiB/s; add --yes to go ahead"};
  }
  return std::nullopt;
}

std::string DurationText(std::uint64_t seconds) {
  char text[64];
  if (seconds >= 3600) {
    std::snprintf(text, sizeof text, "%llu h %02llu min", static_cast<unsigned long long>(seconds / 3600),
                  static_cast<unsigned long long>(seconds % 3600 / 60));
  } else if (seconds >= 60) {
    std::snprintf(text, sizeof text, "%llu min", static_cast<unsigned long long>(seconds / 60));
  } else {
    std::snprintf(text, sizeof text, "%llu s", static_cast<unsigned long long>(seconds));
  }
  return text;
}

std::string WipeProgressView::Update(unsigned percent, std::uint64_t bytes, std::uint64_t nowMs) {
  if (!started_) {
    started_ = true;
    startMs_ = nowMs;
  }
  const int tenth = static_cast<int>(percent / 10);
  if (!terminal_ && tenth == lastTenth_) return "";
  lastTenth_ = tenth;
  const double seconds = static_cast<double>(nowMs - startMs_) / 1000.0;
  const double mibPerSecond = seconds > 0 ? static_cast<double>(bytes) / 1048576.0 / seconds : 0.0;
  std::string left = "--";
  if (percent > 0 && percent < 100 && seconds > 0) {
    left = DurationText(static_cast<std::uint64_t>(seconds * (100 - percent) / percent));
  } else if (percent >= 100) {
    left = "0 s";
  }
  char line[160];
  if (terminal_) {
    const int bars = static_cast<int>(percent > 100 ? 100 : percent) / 5;
    std::snprintf(line, sizeof line, "\r[%-20.*s] %3u%%  %7.1f MiB/s  %s left   ", bars, "####################", percent,
                  mibPerSecond, left.c_str());
    open_ = true;
  } else {
    std::snprintf(line, sizeof line, "progress  %3u%%  %.1f MiB/s  %s left\n", percent, mibPerSecond, left.c_str());
  }
  return line;
}

std::string WipeProgressView::Finish() {
  if (!open_) return "";
  open_ = false;
  return "\n";
}

}  // namespace overseer
