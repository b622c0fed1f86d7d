#include "overseer/whole_file.h"

#include "common/unique_handle.h"

namespace overseer {

bool ReadWholeFile(const std::wstring& path, std::string& bytes, std::uint64_t maxBytes) {
  // Browsers keep their profile lists open for writing while they run.
  const scourel::UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                       nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size{};
  if (!file || !::GetFileSizeEx(file.get(), &size) || static_cast<std::uint64_t>(size.QuadPart) > maxBytes) {
    return false;
  }
  bytes.resize(static_cast<size_t>(size.QuadPart));
  DWORD read = 0;
  if (!bytes.empty() && !::ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
    return false;
  }
  bytes.resize(read);
  return true;
}

bool WriteWholeFile(const std::wstring& path, const std::string& bytes) {
  const scourel::UniqueHandleKernel file(
      ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  return file && ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
         written == bytes.size();
}

}  // namespace overseer
