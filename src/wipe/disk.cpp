#include "wipe/disk.h"

namespace scourel {

std::error_code CDisk::GetGeometry(const std::wstring& drive, ShredIo& io) {
  if (std::error_code error = io.DiskFreeSpace(drive, &sectorsPerCluster, &bytesPerSector)) return error;
  return io.OpenVolume(drive, handle);
}

}  // namespace scourel
