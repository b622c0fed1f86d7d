#include "wipe/disk.h"

namespace scourel {

bool CDisk::GetGeometry(const std::wstring& drive, ShredIo& io) {
  if (!io.DiskFreeSpace(drive, &sectorsPerCluster, &bytesPerSector)) return false;
  handle = io.OpenVolume(drive);
  return handle.valid();
}

}  // namespace scourel
