#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "windows_traces/page_file.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/pc_traces_test_support.h"

// After the Windows headers, which it needs.
#include <sddl.h>

namespace scourel::test {
namespace {

struct StoredValue {
  DWORD type = 0;
  std::vector<BYTE> data;
};

std::optional<StoredValue> ReadStored(HKEY root, const std::wstring& path) {
  UniqueRegKey key;
  if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS) return std::nullopt;
  StoredValue value;
  DWORD bytes = 0;
  if (::RegQueryValueExW(key.get(), kClearPageFileValue, nullptr, &value.type, nullptr, &bytes) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  value.data.resize(bytes);
  ::RegQueryValueExW(key.get(), kClearPageFileValue, nullptr, &value.type, value.data.data(), &bytes);
  value.data.resize(bytes);
  return value;
}

TEST(PageFileTest, WithRightsTheValueIsOneByteStringZero) {
  UniqueRegKey key;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kMemoryManagementKey, 0, KEY_ALL_ACCESS, key.put()) != ERROR_SUCCESS) {
    GTEST_SKIP() << "this user cannot write the machine's Memory Management key";
  }
  const std::optional<StoredValue> before = ReadStored(HKEY_LOCAL_MACHINE, kMemoryManagementKey);
  ::RegDeleteValueW(key.get(), kClearPageFileValue);

  EXPECT_EQ(SetClearPageFile(), 0);
  const std::optional<StoredValue> after = ReadStored(HKEY_LOCAL_MACHINE, kMemoryManagementKey);
  ASSERT_TRUE(after.has_value());
  EXPECT_EQ(after->type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(after->data, std::vector<BYTE>{'0'});

  if (before) {
    ::RegSetValueExW(key.get(), kClearPageFileValue, 0, before->type, before->data.data(),
                     static_cast<DWORD>(before->data.size()));
  } else {
    ::RegDeleteValueW(key.get(), kClearPageFileValue);
  }
}

TEST(PageFileTest, AKeyThatDoesNotOpenIsLeftAloneSilently) {
  ScratchKey scratch(L"pctraces-pagefile");
  SetClearPageFileAt(HKEY_CURRENT_USER, scratch.path() + L"\\missing");
  EXPECT_FALSE(KeyPresent(scratch.path() + L"\\missing"));
}

// A key that this user may read but not write, as Memory Management is for
// a user without administrator rights.
TEST(PageFileTest, WithoutWriteRightsNothingIsWritten) {
  ScratchKey scratch(L"pctraces-pagefile");
  const std::wstring locked = scratch.path() + L"\\locked";
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  // Everyone: read and delete (so the test can remove it), nothing else.
  ASSERT_TRUE(::ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;KRSD;;;WD)", SDDL_REVISION_1,
                                                                     &descriptor, nullptr));
  SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor, FALSE};
  UniqueRegKey created;
  ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, locked.c_str(), 0, nullptr, 0, KEY_READ, &attributes,
                              created.put(), nullptr),
            ERROR_SUCCESS);
  ::LocalFree(descriptor);
  created.reset();

  UniqueRegKey probe;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, locked.c_str(), 0, KEY_ALL_ACCESS, probe.put()) == ERROR_SUCCESS) {
    GTEST_SKIP() << "key security is not enforced here";
  }
  SetClearPageFileAt(HKEY_CURRENT_USER, locked);
  EXPECT_FALSE(ReadStored(HKEY_CURRENT_USER, locked).has_value());
}

}  // namespace
}  // namespace scourel::test
