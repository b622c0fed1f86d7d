#include <gtest/gtest.h>

#include "windows_traces/page_file.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// The stored {type, bytes} of the value; type 0 when absent.
std::pair<DWORD, std::string> ReadStored(HKEY root, const std::wstring& path) {
  UniqueRegKey key;
  std::string data(64, '\0');
  DWORD type = 0, bytes = static_cast<DWORD>(data.size());
  if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS ||
      ::RegQueryValueExW(key.get(), kClearPageFileValue, nullptr, &type, reinterpret_cast<BYTE*>(data.data()),
                         &bytes) != ERROR_SUCCESS) {
    return {0, {}};
  }
  return {type, data.substr(0, bytes)};
}

TEST(PageFileTest, WithRightsTheValueIsOneByteStringZero) {
  UniqueRegKey key;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kMemoryManagementKey, 0, KEY_ALL_ACCESS, key.put()) != ERROR_SUCCESS) {
    GTEST_SKIP() << "this user cannot write the machine's Memory Management key";
  }
  const auto before = ReadStored(HKEY_LOCAL_MACHINE, kMemoryManagementKey);
  ::RegDeleteValueW(key.get(), kClearPageFileValue);
  SetClearPageFile(kErase);
  EXPECT_EQ(ReadStored(HKEY_LOCAL_MACHINE, kMemoryManagementKey), std::make_pair(DWORD{REG_SZ}, std::string("0")));
  if (before.first) {
    ::RegSetValueExW(key.get(), kClearPageFileValue, 0, before.first,
                     reinterpret_cast<const BYTE*>(before.second.data()), static_cast<DWORD>(before.second.size()));
  } else {
    ::RegDeleteValueW(key.get(), kClearPageFileValue);
  }
}

TEST(PageFileTest, AKeyThatDoesNotOpenIsLeftAloneSilently) {
  ScratchKey scratch(L"pctraces-pagefile");
  SetClearPageFileAt(HKEY_CURRENT_USER, scratch.path() + L"\\missing");
  EXPECT_FALSE(KeyPresent(scratch.path() + L"\\missing"));
}

}  // namespace
}  // namespace scourel::test
