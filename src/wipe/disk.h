// A volume and its cluster geometry.
#pragma once

#include <string>
#include <system_error>

#include "common/unique_handle.h"
#include "wipe/shred_io.h"

namespace scourel {

class CDisk {
 public:
  // Fills the geometry from GetDiskFreeSpaceW and opens the volume of a
  // drive string such as "C:"; fails when either fails.
  [[nodiscard]] std::error_code GetGeometry(const std::wstring& drive, ShredIo& io);

  UniqueHandleKernel handle;
  DWORD sectorsPerCluster = 0;  // as the system returns them
  DWORD bytesPerSector = 0;
};

}  // namespace scourel
