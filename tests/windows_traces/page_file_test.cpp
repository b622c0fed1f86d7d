#include <gtest/gtest.h>

#include "windows_traces/page_file.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

constexpr wchar_t kMemoryKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management";
constexpr wchar_t kValue[] = L"ClearPageFileAtShutdown";

// The stored {type, bytes} of the value; type 0 when absent.
std::pair<DWORD, std::string> ReadStored(HKEY key) {
  std::string data(64, '\0');
  DWORD type = 0, bytes = 64;
  if (::RegQueryValueExW(key, kValue, nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &bytes)) return {0, {}};
  return {type, data.substr(0, bytes)};
}

// Written as a string of one byte, the character "0"; only erasing writes it,
// and a key that does not open is neither made nor reported.
TEST(PageFileTest, TheValueIsOneByteStringZeroWhereTheKeyOpens) {
  ScratchKey scratch(L"pctraces-pagefile");
  SetClearPageFileAt(SystemCleanerIo(), HKEY_CURRENT_USER, scratch.path() + L"\\missing");
  EXPECT_FALSE(KeyPresent(HKEY_CURRENT_USER, scratch.path() + L"\\missing"));
  UniqueRegKey key;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kMemoryKey, 0, KEY_ALL_ACCESS, key.put()) != ERROR_SUCCESS) {
    GTEST_SKIP() << "this user cannot write the machine's Memory Management key";
  }
  // The prefix is a throwaway one: the value just goes again at the end.
  ::RegDeleteValueW(key.get(), kValue);
  const Cleanup removed([&] { ::RegDeleteValueW(key.get(), kValue); });
  SetClearPageFile(kMeasure);
  EXPECT_EQ(ReadStored(key.get()).first, 0u);
  SetClearPageFile(kErase);
  EXPECT_EQ(ReadStored(key.get()), std::make_pair(DWORD{REG_SZ}, std::string("0")));
}

}  // namespace
}  // namespace scourel::test
