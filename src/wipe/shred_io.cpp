#include "wipe/shred_io.h"

#include <cstdio>

namespace scourel {

DWORD ShredIo::Attributes(const std::wstring& path) { return ::GetFileAttributesW(path.c_str()); }

bool ShredIo::SetAttributes(const std::wstring& path, DWORD attributes) {
  return ::SetFileAttributesW(path.c_str(), attributes) != FALSE;
}

UniqueHandleKernel ShredIo::OpenFile(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags) {
  DWORD desired = 0;
  if (access & 1) desired |= GENERIC_READ;
  if (access & 2) desired |= GENERIC_WRITE;
  DWORD share = shareMode;
  if ((share & (FILE_SHARE_READ | FILE_SHARE_WRITE)) == (FILE_SHARE_READ | FILE_SHARE_WRITE)) share |= FILE_SHARE_DELETE;
  // "\\?\" is the Win32 spelling of the NT "\??\" prefix: no name
  // normalisation and no MAX_PATH limit.
  const std::wstring ntPath = L"\\\\?\\" + path;
  return UniqueHandleKernel(
      ::CreateFileW(ntPath.c_str(), desired, share, nullptr, OPEN_EXISTING, flags, nullptr));
}

UniqueHandleKernel ShredIo::OpenVolume(const std::wstring& drive) {
  // Reading a volume's data needs administrator rights; attribute access
  // does not, and the handle is never read.
  const std::wstring device = L"\\\\.\\" + drive;
  return UniqueHandleKernel(::CreateFileW(device.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr));
}

bool ShredIo::DiskFreeSpace(const std::wstring& drive, DWORD* sectorsPerCluster, DWORD* bytesPerSector) {
  DWORD freeClusters = 0;
  DWORD totalClusters = 0;
  return ::GetDiskFreeSpaceW(drive.c_str(), sectorsPerCluster, bytesPerSector, &freeClusters, &totalClusters) !=
         FALSE;
}

bool ShredIo::FileSize(HANDLE file, std::uint64_t* size) {
  LARGE_INTEGER value{};
  if (!::GetFileSizeEx(file, &value)) return false;
  *size = static_cast<std::uint64_t>(value.QuadPart);
  return true;
}

bool ShredIo::Identity(HANDLE file, DWORD* attributes, DWORD* linkCount) {
  BY_HANDLE_FILE_INFORMATION info{};
  if (!::GetFileInformationByHandle(file, &info)) return false;
  *attributes = info.dwFileAttributes;
  *linkCount = info.nNumberOfLinks;
  return true;
}

bool ShredIo::Seek(HANDLE file, std::uint64_t offset) {
  LARGE_INTEGER distance{};
  distance.QuadPart = static_cast<LONGLONG>(offset);
  return ::SetFilePointerEx(file, distance, nullptr, FILE_BEGIN) != FALSE;
}

bool ShredIo::Write(HANDLE file, const std::uint8_t* bytes, std::uint32_t length) {
  DWORD written = 0;
  return ::WriteFile(file, bytes, length, &written, nullptr) != FALSE;
}

bool ShredIo::Flush(HANDLE file) { return ::FlushFileBuffers(file) != FALSE; }

void ShredIo::Close(UniqueHandleKernel& file) { file.reset(); }

int ShredIo::Rename(const std::wstring& from, const std::wstring& to) { return _wrename(from.c_str(), to.c_str()); }

bool ShredIo::Delete(const std::wstring& path) { return ::DeleteFileW(path.c_str()) != FALSE; }

ShredIo& SystemShredIo() {
  static ShredIo io;
  return io;
}

}  // namespace scourel
