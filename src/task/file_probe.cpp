#include "task/file_probe.h"

#include "common/unique_handle.h"

namespace scourel {

namespace {

UniqueHandleKernel Open(const std::wstring& path, DWORD access, DWORD share) {
  return UniqueHandleKernel(
      ::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

bool ReadWriteProbe(const std::wstring& path) {
  return Open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE).valid();
}

bool ReadProbe(const std::wstring& path) { return Open(path, GENERIC_READ, FILE_SHARE_READ).valid(); }

bool ReadProbeSharingWrite(const std::wstring& path) {
  return Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE).valid();
}

std::uint64_t SizeByReadProbe(const std::wstring& path) {
  const UniqueHandleKernel file = Open(path, GENERIC_READ, FILE_SHARE_READ);
  LARGE_INTEGER size{};
  if (!file || !::GetFileSizeEx(file.get(), &size)) return 0;
  return static_cast<std::uint64_t>(size.QuadPart);
}

}  // namespace scourel
