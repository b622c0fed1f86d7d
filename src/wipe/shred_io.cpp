#include "wipe/shred_io.h"

#include <cerrno>
#include <cstdio>

#include "common/final_path.h"
#include "common/status.h"

namespace scourel {

namespace {

std::error_code Checked(BOOL ok) { return ok ? std::error_code() : LastError(); }

}  // namespace

DWORD ShredIo::Attributes(const std::wstring& path) { return ::GetFileAttributesW(path.c_str()); }

std::error_code ShredIo::SetAttributes(const std::wstring& path, DWORD attributes) {
  return Checked(::SetFileAttributesW(path.c_str(), attributes));
}

std::error_code ShredIo::OpenFile(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags,
                                  UniqueHandleKernel& file) {
  DWORD desired = 0;
  if (access & 1) desired |= GENERIC_READ;
  if (access & 2) desired |= GENERIC_WRITE;
  DWORD share = shareMode;
  if ((share & (FILE_SHARE_READ | FILE_SHARE_WRITE)) == (FILE_SHARE_READ | FILE_SHARE_WRITE)) share |= FILE_SHARE_DELETE;
  // "\\?\" is the Win32 spelling of the NT "\??\" prefix: no name
  // normalisation and no MAX_PATH limit.
  const std::wstring ntPath = L"\\\\?\\" + path;
  file.reset(::CreateFileW(ntPath.c_str(), desired, share, nullptr, OPEN_EXISTING, flags, nullptr));
  return file ? std::error_code() : LastError();
}

std::error_code ShredIo::OpenVolume(const std::wstring& drive, UniqueHandleKernel& volume) {
  // Reading a volume's data needs administrator rights; attribute access
  // does not, and the handle is never read.
  const std::wstring device = L"\\\\.\\" + drive;
  volume.reset(::CreateFileW(device.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                             OPEN_EXISTING, 0, nullptr));
  return volume ? std::error_code() : LastError();
}

std::error_code ShredIo::DiskFreeSpace(const std::wstring& drive, DWORD* sectorsPerCluster, DWORD* bytesPerSector) {
  DWORD freeClusters = 0;
  DWORD totalClusters = 0;
  return Checked(::GetDiskFreeSpaceW(drive.c_str(), sectorsPerCluster, bytesPerSector, &freeClusters, &totalClusters));
}

std::error_code ShredIo::FileSize(HANDLE file, std::uint64_t* size) {
  LARGE_INTEGER value{};
  if (!::GetFileSizeEx(file, &value)) return LastError();
  *size = static_cast<std::uint64_t>(value.QuadPart);
  return {};
}

std::error_code ShredIo::Identity(HANDLE file, DWORD* attributes, DWORD* linkCount) {
  BY_HANDLE_FILE_INFORMATION info{};
  if (!::GetFileInformationByHandle(file, &info)) return LastError();
  *attributes = info.dwFileAttributes;
  *linkCount = info.nNumberOfLinks;
  return {};
}

std::error_code ShredIo::FinalPath(HANDLE file, std::wstring* path) {
  *path = FinalPathOf(file);
  return path->empty() ? LastError() : std::error_code();
}

std::error_code ShredIo::Seek(HANDLE file, std::uint64_t offset) {
  LARGE_INTEGER distance{};
  distance.QuadPart = static_cast<LONGLONG>(offset);
  return Checked(::SetFilePointerEx(file, distance, nullptr, FILE_BEGIN));
}

std::error_code ShredIo::Write(HANDLE file, const std::uint8_t* bytes, std::uint32_t length) {
  DWORD written = 0;
  if (!::WriteFile(file, bytes, length, &written, nullptr)) return LastError();
  return written == length ? std::error_code() : Win32Error(ERROR_WRITE_FAULT);
}

std::error_code ShredIo::Flush(HANDLE file) { return Checked(::FlushFileBuffers(file)); }

void ShredIo::Close(UniqueHandleKernel& file) { file.reset(); }

std::error_code ShredIo::Rename(const std::wstring& from, const std::wstring& to) {
  if (_wrename(from.c_str(), to.c_str()) == 0) return {};
  return {errno, std::generic_category()};
}

std::error_code ShredIo::Delete(const std::wstring& path) { return Checked(::DeleteFileW(path.c_str())); }

ShredIo& SystemShredIo() {
  static ShredIo io;
  return io;
}

}  // namespace scourel
