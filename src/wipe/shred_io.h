// The file-system calls the shredder makes, behind one replaceable object so
// that a test can record exactly what reaches the disk. The system version
// stands in for a raw-disk driver: a file is opened by path for read and
// write, shared for read, write and delete, and a volume is opened for its
// geometry only, which needs no administrator rights.
#pragma once

#include <cstdint>
#include <string>

#include "common/unique_handle.h"

namespace scourel {

class ShredIo {
 public:
  virtual ~ShredIo() = default;

  // GetFileAttributesW; INVALID_FILE_ATTRIBUTES when the path is missing.
  virtual DWORD Attributes(const std::wstring& path);
  virtual bool SetAttributes(const std::wstring& path, DWORD attributes);

  // Opens an existing file by its full Win32 path. `shareMode` 3 (read and
  // write) also shares delete: a driver open ignores sharing altogether, and
  // this keeps files that others hold open with delete sharing reachable.
  virtual UniqueHandleKernel OpenFile(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags);
  // The volume of a drive string such as "C:", opened for queries only.
  virtual UniqueHandleKernel OpenVolume(const std::wstring& drive);
  virtual bool DiskFreeSpace(const std::wstring& drive, DWORD* sectorsPerCluster, DWORD* bytesPerSector);

  virtual bool FileSize(HANDLE file, std::uint64_t* size);
  // Attributes and link count as the open handle sees them.
  virtual bool Identity(HANDLE file, DWORD* attributes, DWORD* linkCount);
  // Absolute 64-bit seek from the start of the file.
  virtual bool Seek(HANDLE file, std::uint64_t offset);
  virtual bool Write(HANDLE file, const std::uint8_t* bytes, std::uint32_t length);
  virtual bool Flush(HANDLE file);
  virtual void Close(UniqueHandleKernel& file);

  // _wrename: 0 on success.
  virtual int Rename(const std::wstring& from, const std::wstring& to);
  virtual bool Delete(const std::wstring& path);
};

// The process's one system-backed instance.
ShredIo& SystemShredIo();

}  // namespace scourel
