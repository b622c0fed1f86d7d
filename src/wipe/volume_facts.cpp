#include "wipe/volume_facts.h"

#include <winternl.h>

#include <algorithm>

#include "common/unique_handle.h"

namespace scourel {

namespace {

// FILE_FS_ATTRIBUTE_INFORMATION, from the driver kit's headers.
struct FsAttributes {
  ULONG attributes;
  LONG maximumComponentNameLength;
  ULONG nameLength;  // bytes
  WCHAR name[64];
};
constexpr int kFileFsAttributeInformation = 5;
using QueryVolumeFunction = LONG(NTAPI*)(HANDLE, IO_STATUS_BLOCK*, void*, ULONG, int);

bool FileSystemFromHandle(const std::wstring& root, VolumeFacts& facts) {
  UniqueHandleKernel folder(::CreateFileW(root.c_str(), FILE_READ_ATTRIBUTES,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!folder) return false;
  const auto query = reinterpret_cast<QueryVolumeFunction>(
      reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQueryVolumeInformationFile")));
  if (!query) return false;
  FsAttributes info{};
  IO_STATUS_BLOCK status{};
  if (query(folder.get(), &status, &info, sizeof info, kFileFsAttributeInformation) < 0) return false;
  facts.fileSystemFlags = info.attributes;
  facts.fileSystem.assign(info.name, std::min<ULONG>(info.nameLength / sizeof(WCHAR), 64));
  return true;
}

}  // namespace

std::optional<wchar_t> DriveLetterOf(const std::wstring& text) {
  if (text.empty() || text.size() > 3) return std::nullopt;
  const wchar_t c = text[0];
  const wchar_t upper = (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - L'a' + L'A') : c;
  if (upper < L'A' || upper > L'Z') return std::nullopt;
  if (text.size() >= 2 && text[1] != L':') return std::nullopt;
  if (text.size() == 3 && text[2] != L'\\' && text[2] != L'/') return std::nullopt;
  return upper;
}

std::uint64_t FreeBytesOf(wchar_t letter) {
  const std::wstring root{letter, L':', L'\\'};
  ULARGE_INTEGER available{}, total{}, free{};
  if (!::GetDiskFreeSpaceExW(root.c_str(), &available, &total, &free)) return 0;
  return free.QuadPart;
}

std::optional<VolumeFacts> QueryVolume(wchar_t letter) {
  VolumeFacts facts;
  facts.letter = letter;
  const std::wstring root = facts.root();
  facts.driveType = ::GetDriveTypeW(root.c_str());
  if (facts.driveType == DRIVE_NO_ROOT_DIR || facts.driveType == DRIVE_UNKNOWN) return std::nullopt;
  ULARGE_INTEGER available{}, total{}, free{};
  if (!::GetDiskFreeSpaceExW(root.c_str(), &available, &total, &free)) return std::nullopt;
  facts.freeBytes = free.QuadPart;
  facts.totalBytes = total.QuadPart;
  DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, totalClusters = 0;
  if (::GetDiskFreeSpaceW(root.c_str(), &sectorsPerCluster, &bytesPerSector, &freeClusters, &totalClusters)) {
    facts.clusterBytes = sectorsPerCluster * bytesPerSector;
  }
  wchar_t name[MAX_PATH + 1] = {};
  DWORD flags = 0;
  if (::GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, &flags, name, MAX_PATH + 1)) {
    facts.fileSystem = name;
    facts.fileSystemFlags = flags;
  } else {
    (void)FileSystemFromHandle(root, facts);
  }
  return facts;
}

}  // namespace scourel
