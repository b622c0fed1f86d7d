// A volume and its cluster geometry.
#pragma once

#include <string>

#include "common/unique_handle.h"
#include "wipe/shred_io.h"

namespace scourel {

class CDisk {
 public:
  // Fills the geometry from GetDiskFreeSpaceW and opens the volume of a
  // drive string such as "C:"; true only when both succeed.
  bool GetGeometry(const std::wstring& drive, ShredIo& io = SystemShredIo());

  UniqueHandleKernel handle;
  DWORD sectorsPerCluster = 0;  // as the system returns them
  DWORD bytesPerSector = 0;
};

}  // namespace scourel
