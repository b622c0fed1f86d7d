#include "wipe/free_space_wipe.h"

#include <algorithm>

#include "wipe/directory_slack.h"
#include "wipe/fill_names.h"
#include "wipe/freed_records.h"
#include "wipe/shred_io.h"
#include "wipe/solid_state.h"
#include "wipe/volume_facts.h"
#include "wipe/wipe_marker.h"
#include "wipe/wipe_progress.h"

namespace scourel {

namespace {

bool SeekTo(HANDLE file, std::uint64_t offset) {
  LARGE_INTEGER distance{};
  distance.QuadPart = static_cast<LONGLONG>(offset);
  return ::SetFilePointerEx(file, distance, nullptr, FILE_BEGIN) != 0;
}

bool WriteAll(HANDLE file, const std::uint8_t* bytes, std::uint32_t length) {
  DWORD written = 0;
  return ::WriteFile(file, bytes, length, &written, nullptr) && written == length;
}

}  // namespace

FreeSpaceReport CFreeSpaceWipe::Wipe(wchar_t letter, std::uint32_t method) {
  FreeSpaceReport report;
  report.solidState = AnswerText(Answer::kUnknown);
  const std::optional<VolumeFacts> facts = QueryVolume(letter);
  if (!facts) {
    report.status = L"no drive";
    return report;
  }
  report.fileSystem = facts->fileSystem;
  if (facts->readOnly()) {
    report.status = L"read-only";
    return report;
  }
  const std::wstring drive{letter, L':'};
  (void)SystemShredIo().DiskFreeSpace(drive, &wipedVolume_.sectorsPerCluster, &wipedVolume_.bytesPerSector);
  (void)SystemShredIo().OpenVolume(drive, wipedVolume_.handle);
  const DriveKind kind = QueryDriveKind(wipedVolume_.handle.get());
  report.solidState = AnswerText(kind.solidState());
  const std::uint32_t cluster = std::max<std::uint32_t>(facts->clusterBytes, 512);
  // A method the table does not know would write nothing and never fill.
  if (PassCount(method) == 0) method = 0;

  // Fill names left by anything before are ours, and would be counted as used space.
  RemoveFillLeftovers(letter);
  freeAtStart_ = FreeBytesOf(letter);
  if (freeAtStart_ < cluster) {
    report.status = L"full";
    return report;
  }
  if (Raised(stop_)) {
    report.status = L"stopped";
    return report;
  }
  if (!RecordWipedDrive(letter)) {
    report.status = L"cannot write";
    return report;
  }
  g_wipeProgressMode.set(true);
  Report(true);
  // The fill folder's entry goes in before the volume is full: on a full
  // volume the root's index may have no room left to grow.
  const bool folder = ::CreateDirectoryW(FillFolderPath(letter).c_str(), nullptr) != 0;
  const bool records = facts->ntfs() && folder;
  FreedRecordFiller filler(FillFolderPath(letter), recordBytes_, stop_, [this] { Report(true); });
  if (records) filler.Prepare(FreeBytesOf(letter));

  const std::uint64_t fileLimit = facts->fat() ? kFatFileLimit : std::uint64_t{1} << 40;
  if (!FillFiles(letter, fileLimit, cluster, method)) report.status = L"cannot write";
  // With no cluster free the record table cannot grow: every record the
  // record step gets is a freed one.
  if (!Raised(stop_) && report.status.empty() && folder) {
    if (records) {
      report.recordStep = true;
      filler.Run();
      report.folderFiles = filler.made();
    }
    DirectorySlack slack(FillFolderPath(letter), stop_, [this] { Report(true); });
    slack.GatherCarriers();
    slack.Run(letter, cluster);
    slack.TurnJournal();
    report.indexFolders = slack.folders();
    // Folders made before the fill can hold clusters where a file system
    // keeps folders in clusters (Wine calls every mapped drive NTFS): once
    // they are gone, the fill takes those clusters too.
    RemoveFolderTree(L"\\\\?\\" + FillFolderPath(letter));
    (void)FillFiles(letter, fileLimit, cluster, method);
  }
  report.fillFiles = static_cast<std::uint32_t>(files_.size());
  report.bytesFilled = filled_;
  RemoveFill(letter, report, kind.trimWorthIssuing() && !Raised(stop_));
  if (report.status.empty()) report.status = Raised(stop_) ? L"stopped" : L"done";
  if (report.status == L"done") {
    // What the file system keeps for itself is never filled: done is 100 %.
    ReportWipeProgress(100, window_);
    if (progress_) progress_(100, filled_);
  }
  g_wipeProgressMode.set(false);
  return report;
}

bool CFreeSpaceWipe::FillFiles(wchar_t letter, std::uint64_t fileLimit, std::uint32_t cluster, std::uint32_t method) {
  // A file that reached its limit goes on in the next. So does one the volume
  // stopped while it still took something: a large file can need a block of
  // its own bookkeeping for its last bytes, which a new small file does not.
  int tail = 0;
  for (Filled filled = Filled::kLimit; filled == Filled::kLimit || (filled == Filled::kVolumeFull &&
                                                                     files_.back().size > 0 && ++tail <= kTailFiles);) {
    FillEntry fill;
    fill.path = FillFilePath(letter, static_cast<std::uint32_t>(files_.size()));
    fill.handle.reset(::CreateFileW(fill.path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!fill.handle) {
      const DWORD error = ::GetLastError();
      return !files_.empty() || error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL;
    }
    filled = FillFile(fill.handle.get(), fileLimit, cluster, method, &fill.size);
    // Flushed, so that what the volume reports full is on the disk.
    ::FlushFileBuffers(fill.handle.get());
    files_.push_back(std::move(fill));
    Report(true);
  }
  return true;
}

CFreeSpaceWipe::Filled CFreeSpaceWipe::FillFile(HANDLE file, std::uint64_t limit, std::uint32_t cluster,
                                                std::uint32_t method, std::uint64_t* size) {
  const std::uint32_t passes = PassCount(method);
  const std::uint32_t chunk = std::max(kChunkBytes / cluster, 1u) * cluster;
  std::uint32_t unit = chunk;
  std::uint64_t offset = 0;
  while (offset < limit) {
    if (Raised(stop_)) return Filled::kStopped;
    const auto length = static_cast<std::uint32_t>(std::min<std::uint64_t>(unit, limit - offset));
    BuildPasses(method, length + 2);
    bool written = true;
    for (std::uint32_t pass = 0; pass < passes && written; ++pass) {
      written = head() != nullptr && SeekTo(file, offset) && WriteAll(file, head()->bytes.get(), length);
      PopPass();
    }
    while (head() != nullptr) PopPass();
    if (!written) {
      // The volume had less room than this unit: give back what part of it
      // was taken and try again with half, down to one sector. Not one
      // cluster: the size a volume reports can be larger than its own
      // blocks (Wine reports 4 KiB for a volume of 1 KiB blocks).
      (void)SeekTo(file, offset);
      ::SetEndOfFile(file);
      if (unit <= kSmallestWrite) {
        *size = offset;
        return Filled::kVolumeFull;
      }
      unit = std::max(unit / 2 / kSmallestWrite, 1u) * kSmallestWrite;
      continue;
    }
    offset += length;
    filled_ += length;
    Report(false);
  }
  *size = offset;
  return Filled::kLimit;
}

void CFreeSpaceWipe::Report(bool force) {
  const std::uint8_t percent = std::min<std::uint8_t>(WipePercent(filled_, freeAtStart_), 100);
  if (!force && percent == lastPercent_) return;
  lastPercent_ = percent;
  ReportWipeProgress(percent, window_);
  if (progress_) progress_(percent, filled_);
}

void CFreeSpaceWipe::RemoveFill(wchar_t letter, FreeSpaceReport& report, bool trim) {
  RemoveFolderTree(L"\\\\?\\" + FillFolderPath(letter));
  for (FillEntry& fill : files_) {
    if (trim && fill.size > 0 && TrimFile(fill.handle.get(), fill.size)) report.trimIssued = true;
    fill.handle.reset();
    ::DeleteFileW(fill.path.c_str());
  }
  files_.clear();
  // Whatever a failed delete left, by name.
  RemoveFillLeftovers(letter);
  ClearWipedDrive();
}

}  // namespace scourel
