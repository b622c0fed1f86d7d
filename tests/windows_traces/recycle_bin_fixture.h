// Planting items in the Recycle Bin for its tests.
#pragma once

#include <cstdint>
#include <string>

namespace scourel::test {

// Writes `count` files of `size` bytes in `folder` and deletes them to the
// Recycle Bin (SHFileOperationW with FOF_ALLOWUNDO); false on failure.
bool PlantRecycledFiles(const std::wstring& folder, int count, std::size_t size);
// The number of drive roots GetLogicalDriveStringsW lists. Under Wine every
// root's query reports the one shared bin, so the totals are this many times
// what the bin holds.
int DriveRootCount();
// What SHQueryRecycleBinW reports for the C: root.
struct BinContents {
  std::int64_t items;
  std::int64_t bytes;
};
BinContents QueryBin();

}  // namespace scourel::test
