// The file-system calls the shredder makes, behind one replaceable object so
// that a test can record exactly what reaches the disk. The system version
// stands in for a raw-disk driver: a file is opened by path for read and
// write, shared for read, write and delete, and a volume is opened for its
// geometry only, which needs no administrator rights. Every call reports the
// system's error; the shredder decides which ones matter.
#pragma once

#include <cstdint>
#include <string>
#include <system_error>

#include "common/unique_handle.h"

namespace scourel {

class ShredIo {
 public:
  virtual ~ShredIo() = default;

  // GetFileAttributesW; INVALID_FILE_ATTRIBUTES when the path is missing.
  virtual DWORD Attributes(const std::wstring& path);
  [[nodiscard]] virtual std::error_code SetAttributes(const std::wstring& path, DWORD attributes);

  // Opens an existing file by its full Win32 path. `shareMode` 3 (read and
  // write) also shares delete: a driver open ignores sharing altogether, and
  // this keeps files that others hold open with delete sharing reachable.
  [[nodiscard]] virtual std::error_code OpenFile(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags,
                                                 UniqueHandleKernel& file);
  // The volume of a drive string such as "C:", opened for queries only.
  [[nodiscard]] virtual std::error_code OpenVolume(const std::wstring& drive, UniqueHandleKernel& volume);
  [[nodiscard]] virtual std::error_code DiskFreeSpace(const std::wstring& drive, DWORD* sectorsPerCluster,
                                                      DWORD* bytesPerSector);

  [[nodiscard]] virtual std::error_code FileSize(HANDLE file, std::uint64_t* size);
  // Attributes and link count as the open handle sees them.
  [[nodiscard]] virtual std::error_code Identity(HANDLE file, DWORD* attributes, DWORD* linkCount);
  // The path the open handle really reached, "\\?\" prefix included.
  [[nodiscard]] virtual std::error_code FinalPath(HANDLE file, std::wstring* path);
  // Absolute 64-bit seek from the start of the file.
  [[nodiscard]] virtual std::error_code Seek(HANDLE file, std::uint64_t offset);
  // Fails when fewer than `length` bytes were written.
  [[nodiscard]] virtual std::error_code Write(HANDLE file, const std::uint8_t* bytes, std::uint32_t length);
  [[nodiscard]] virtual std::error_code Flush(HANDLE file);
  virtual void Close(UniqueHandleKernel& file);

  // _wrename: its errno as a generic error.
  [[nodiscard]] virtual std::error_code Rename(const std::wstring& from, const std::wstring& to);
  [[nodiscard]] virtual std::error_code Delete(const std::wstring& path);
};

// The process's one system-backed instance.
ShredIo& SystemShredIo();

}  // namespace scourel
