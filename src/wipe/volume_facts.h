// What a free-space wipe needs to know of a volume before it writes: whether
// it exists and takes writes, its file system, cluster size and free space.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "common/win.h"

namespace scourel {

struct VolumeFacts {
  wchar_t letter = 0;
  UINT driveType = DRIVE_UNKNOWN;
  std::wstring fileSystem;  // "NTFS", "FAT32", ...; empty when the volume will not say
  DWORD fileSystemFlags = 0;
  std::uint32_t clusterBytes = 0;
  std::uint64_t freeBytes = 0;
  std::uint64_t totalBytes = 0;

  bool readOnly() const { return (fileSystemFlags & FILE_READ_ONLY_VOLUME) != 0; }
  bool ntfs() const { return fileSystem == L"NTFS"; }
  // FAT12/16/32 keep a file's size in 32 bits.
  bool fat() const { return fileSystem.rfind(L"FAT", 0) == 0; }
  std::wstring root() const { return std::wstring{letter, L':', L'\\'}; }
};

// "X", "x:", "X:\" -> 'X'; nullopt for anything else.
std::optional<wchar_t> DriveLetterOf(const std::wstring& text);

// Nullopt when the drive does not exist (or has no medium). The file system
// comes from GetVolumeInformationW, else from the root folder's handle
// (Wine answers only the latter for a drive it does not manage).
std::optional<VolumeFacts> QueryVolume(wchar_t letter);

// Free bytes as GetDiskFreeSpaceExW counts them for everyone (not the
// caller's quota); 0 when the query fails.
std::uint64_t FreeBytesOf(wchar_t letter);

}  // namespace scourel
