// The probe opens the cleaners make before they take a file: a file that
// does not open under its probe is skipped, neither counted nor erased.
#pragma once

#include <cstdint>
#include <string>

namespace scourel {

// GENERIC_READ | GENERIC_WRITE, share read and write; closed at once.
bool ReadWriteProbe(const std::wstring& path);
// GENERIC_READ, share read only; closed at once.
bool ReadProbe(const std::wstring& path);
// GENERIC_READ under the read-write probe's sharing: whether a read-only file
// would pass that probe once its attribute is cleared.
bool ReadProbeSharingWrite(const std::wstring& path);
// The size through a read probe, 0 when it does not open or cannot be read.
std::uint64_t SizeByReadProbe(const std::wstring& path);

}  // namespace scourel
