#include "recycle_bin_fixture.h"

#include <vector>

#include "common/win.h"
#include "support/fixtures.h"

namespace scourel::test {

bool PlantRecycledFiles(const std::wstring& folder, int count, std::size_t size) {
  MakeDirs(folder);
  std::wstring from;  // double-zero-terminated list
  for (int i = 0; i < count; ++i) {
    const std::wstring path = JoinPath(folder, L"recycled" + std::to_wstring(i) + L".bin");
    WriteFileBytes(path, std::string(size, static_cast<char>('a' + i)));
    from += path;
    from += L'\0';
  }
  from += L'\0';
  SHFILEOPSTRUCTW op{};
  op.wFunc = FO_DELETE;
  op.pFrom = from.c_str();
  op.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
  return ::SHFileOperationW(&op) == 0 && !op.fAnyOperationsAborted;
}

int DriveRootCount() {
  std::vector<wchar_t> roots(::GetLogicalDriveStringsW(0, nullptr) + 2, L'\0');
  ::GetLogicalDriveStringsW(static_cast<DWORD>(roots.size()), roots.data());
  int n = 0;
  for (const wchar_t* root = roots.data(); *root; root += wcslen(root) + 1) ++n;
  return n;
}

BinContents QueryBin() {
  SHQUERYRBINFO info{};
  info.cbSize = sizeof info;
  if (FAILED(::SHQueryRecycleBinW(L"C:\\", &info))) return {-1, -1};
  return {info.i64NumItems, info.i64Size};
}

}  // namespace scourel::test
