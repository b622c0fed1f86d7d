#include "wipe/file_shred.h"

#include <algorithm>

#include "common/final_path.h"
#include "common/text.h"
#include "wipe/obscure_name.h"
#include "wipe/wipe_progress.h"

namespace scourel {

namespace {

constexpr DWORD kReadWrite = 3;   // read data | write data
constexpr DWORD kShareReadWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr std::uint64_t kSinglePassBytes = 64 * 1024;  // written at once by a one-pass method

}  // namespace

ShredOutcome CFileShred::Shred(const std::wstring& path, std::uint32_t method) {
  const DWORD attributes = io_.Attributes(path);
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
    return ShredOutcome::kLeftInPlace;
  }
  // A symbolic link is deleted itself; its target is never written, and its
  // attributes are not touched either (setting them would reach the target).
  if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) {
    return RemoveUnlessStopped(path, Name::kLink) ? ShredOutcome::kDeletedWithoutOverwrite : ShredOutcome::kStopped;
  }

  // Clears read-only, hidden and system so the file opens and deletes. When
  // that fails the open below says whether it mattered.
  (void)io_.SetAttributes(path, FILE_ATTRIBUTE_ARCHIVE);
  // Opening the link itself closes the gap between the check above and the
  // open: a link swapped in meanwhile shows in the handle's attributes.
  UniqueHandleKernel file;
  if (io_.OpenFile(path, kReadWrite, kShareReadWrite, FILE_FLAG_OPEN_REPARSE_POINT, file)) {
    return ShredOutcome::kLeftInPlace;
  }

  const std::wstring drive = path.substr(0, 2);
  if (volume_.GetGeometry(drive, io_)) return ShredOutcome::kLeftInPlace;
  // Only the low 8 bits of sectors per cluster and the low 16 of bytes per
  // sector count; a zero in either means the volume has no usable geometry.
  const auto sectorsPerCluster = static_cast<std::uint8_t>(volume_.sectorsPerCluster);
  bytesPerSector_ = static_cast<std::uint16_t>(volume_.bytesPerSector);
  if (sectorsPerCluster == 0 || bytesPerSector_ == 0) return ShredOutcome::kLeftInPlace;
  const std::uint32_t clusterSize = std::uint32_t{bytesPerSector_} * sectorsPerCluster;

  // Other names of a hard-linked file share its data: overwriting would
  // destroy theirs, so this name is only renamed and deleted. When the link
  // count cannot be read, nothing proves the data is this name's alone, and
  // a wipe that was not done must not be claimed: the file stays.
  DWORD handleAttributes = 0;
  DWORD linkCount = 1;
  if (io_.Identity(file.get(), &handleAttributes, &linkCount)) return ShredOutcome::kLeftInPlace;
  const Name name = (handleAttributes & FILE_ATTRIBUTE_REPARSE_POINT) ? Name::kLink : Name::kFile;
  // Only the file that was named is touched: a handle that reached another
  // (through a link the attributes did not show, such as a unix symlink
  // under Wine, or a folder on the path swapped for a junction since the
  // listing) gets no byte written, and the name stays, since deleting or
  // renaming it would reach that other file too.
  std::wstring reached;
  if (io_.FinalPath(file.get(), &reached)) return ShredOutcome::kLeftInPlace;
  if (name == Name::kFile && !SamePathName(path, reached)) {
    io_.Close(file);
    return ShredOutcome::kReachesAnotherFile;
  }
  const bool shared = linkCount > 1 || name == Name::kLink;

  ShredOutcome outcome = ShredOutcome::kDeletedWithoutOverwrite;
  if (!shared) {
    std::uint64_t size = 0;
    (void)io_.FileSize(file.get(), &size);  // an unreadable size writes nothing
    switch (OverwriteClusters(file.get(), size, clusterSize, method)) {
      case Overwrite::kDone: outcome = ShredOutcome::kOverwrittenAndDeleted; break;
      case Overwrite::kWriteFailed: break;
      case Overwrite::kStopped:
        // What a thread halted here would have left: the file under its own
        // name, partly overwritten.
        io_.Close(file);
        ReleaseRandomKey();
        return ShredOutcome::kStopped;
    }
    (void)io_.Flush(file.get());
  }
  io_.Close(file);
  ReleaseRandomKey();
  // A stop during the last cluster or the flush still leaves the name alone.
  return RemoveUnlessStopped(path, name) ? outcome : ShredOutcome::kStopped;
}

bool CFileShred::RemoveUnlessStopped(const std::wstring& path, Name name) {
  // A link is deleted under its own name: a rename through it can move the
  // file it points to instead (Wine renames a unix symlink's target).
  const auto remove = [&] {
    if (name == Name::kLink) {
      (void)io_.Delete(path);
    } else {
      RenameAndDelete(path);
    }
  };
  if (stop_ == nullptr) {
    remove();
    return true;
  }
  // Under the flag's lock: a stop answered first leaves the name alone, and
  // one that comes meanwhile is answered once the file is gone, never before.
  return stop_->RunUnlessRaised(remove);
}

CFileShred::Overwrite CFileShred::OverwriteClusters(HANDLE file, std::uint64_t size, std::uint32_t clusterSize,
                                                    std::uint32_t method) {
  clusterCount_ = size / clusterSize + (size % clusterSize != 0 ? 1 : 0);
  const std::uint32_t passes = PassCount(method);
  // A method of one pass puts the same bytes in the same places in the same
  // order whether its clusters go one at a time or several at once; several
  // at once spare a system call each. Progress still counts every cluster.
  const std::uint64_t perWrite = passes == 1 ? std::max<std::uint64_t>(1, kSinglePassBytes / clusterSize) : 1;
  (void)io_.Seek(file, 0);
  for (std::uint64_t k = 1; k <= clusterCount_; k += perWrite) {
    if (Raised(stop_)) return Overwrite::kStopped;
    const std::uint64_t clusters = std::min(perWrite, clusterCount_ - k + 1);
    const auto length = static_cast<std::uint32_t>(clusters * clusterSize);
    // The two spare bytes give the last step of a triple pattern its room;
    // only the first `length` bytes of a pass are written.
    BuildPasses(method, length + 2);
    for (std::uint32_t pass = 0; pass < passes; ++pass) {
      if (pass > 0) (void)io_.Seek(file, (k - 1) * clusterSize);
      if (head() == nullptr || io_.Write(file, head()->bytes.get(), length)) return Overwrite::kWriteFailed;
      PopPass();
    }
    for (std::uint64_t done = k; done < k + clusters; ++done) {
      ReportWipeProgress(WipePercent(done, clusterCount_), progressWindow_);
    }
    // The last pass ended where the next cluster starts: no seek needed (a
    // short write counts as failed).
  }
  return Overwrite::kDone;
}

void CFileShred::RenameAndDelete(const std::wstring& path) {
  const std::wstring renamed = ObscureName(path);
  // When the rename failed, the new name may belong to another file (an
  // earlier "xxx" left behind, or the user's own): deleting it would take
  // that file instead, so a file still under its old name stays.
  const bool sameName = SameTextIgnoringCase(path, renamed);
  if (!sameName && io_.Attributes(path) != INVALID_FILE_ATTRIBUTES) return;
  (void)io_.Delete(renamed);  // a failed delete is not reported
}

std::wstring CFileShred::ObscureName(const std::wstring& path) {
  std::wstring renamed = ObscuredPath(path);
  (void)io_.Rename(path, renamed);
  return renamed;
}

}  // namespace scourel
