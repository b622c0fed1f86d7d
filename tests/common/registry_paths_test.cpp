#include "common/registry_paths.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/fixtures.h"

namespace scourel {
namespace {

TEST(RootKeyNameTest, NamesTheFiveRootsOnly) {
  const std::pair<HKEY, const wchar_t*> cases[] = {
      {HKEY_CLASSES_ROOT, L"HKEY_CLASSES_ROOT"},   {HKEY_CURRENT_USER, L"HKEY_CURRENT_USER"},
      {HKEY_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE"}, {HKEY_USERS, L"HKEY_USERS"},
      {HKEY_CURRENT_CONFIG, L"HKEY_CURRENT_CONFIG"}, {HKEY_PERFORMANCE_DATA, L""},
      {HKEY_DYN_DATA, L""},                          {nullptr, L""},
      {reinterpret_cast<HKEY>(0x1234), L""},
  };
  for (const auto& [root, name] : cases) EXPECT_EQ(RootKeyName(root), name) << name;
}

TEST(RootKeyFromNameTest, TheTableIsShiftedByOne) {
  const std::pair<const wchar_t*, HKEY> cases[] = {
      {L"HKEY_CLASSES_ROOT", HKEY_CURRENT_USER},
      {L"HKEY_LOCAL_MACHINE", HKEY_USERS},
      {L"HKEY_USERS", HKEY_CURRENT_CONFIG},
      {L"HKEY_CURRENT_CONFIG", nullptr},
      {L"HKEY_CURRENT_USER", nullptr},
      {L"hkey_classes_root", nullptr},
      {L"HKEY_CLASSES_ROOT ", nullptr},
      {L"HKCR", nullptr},
      {L"", nullptr},
  };
  for (const auto& [name, root] : cases) EXPECT_EQ(RootKeyFromName(name), root) << name;
}

TEST(IsClassesPathTest, MatchesAfterTheFirstCharacterOrExactNames) {
  const std::pair<const wchar_t*, int> cases[] = {
      {L"SOFTWARE\\CLASSES", 0},  // only at the very start
      {L"SOFTWARE\\CLASSES\\CLSID\\{x}", 0},
      {L"\\SOFTWARE\\CLASSES", 1},
      {L"XSOFTWARE\\CLASSES", 1},
      {L"S-1-5-21\\SOFTWARE\\CLASSES\\.txt", 1},
      {L"SOFTWARE\\CLASSES\\Wow6432Node\\SOFTWARE\\CLASSES", 1},  // a later occurrence counts
      {L"Software\\Classes", 0},
      {L"X\\Software\\Classes", 0},
      {L"INTERFACE", 1},
      {L"TYPELIB", 1},
      {L"CLSID", 1},
      {L"clsid", 0},
      {L"CLSID\\{x}", 0},
      {L" CLSID", 0},
      {L"", 0},
  };
  for (const auto& [path, expected] : cases) EXPECT_EQ(IsClassesPath(path), expected) << path;
}

TEST(KeyExistsTest, ExistingAndMissingKeys) {
  test::ScratchKey scratch(L"key_exists");
  ASSERT_TRUE(scratch.key());
  ::RegCreateKeyW(scratch.key(), L"child", UniqueRegKey().put());
  EXPECT_EQ(KeyExists(HKEY_CURRENT_USER, scratch.path()), 1);
  EXPECT_EQ(KeyExists(HKEY_CURRENT_USER, scratch.path() + L"\\child"), 1);
  EXPECT_EQ(KeyExists(HKEY_CURRENT_USER, scratch.path() + L"\\missing"), 0);
  EXPECT_EQ(KeyExists(scratch.key(), L"child"), 1);
  EXPECT_EQ(KeyExists(scratch.key(), L"missing\\deeper"), 0);
  EXPECT_TRUE(OpenKeyAnyView(HKEY_CURRENT_USER, scratch.path() + L"\\child"));
  EXPECT_FALSE(OpenKeyAnyView(HKEY_CURRENT_USER, scratch.path() + L"\\missing"));
}

struct OpenOutcomes {
  std::vector<LONG> statuses;  // what the opens give, mask by mask
  int expected;
};

TEST(KeyExistsTest, OnlyNotFoundOrBadKeyOnEveryMaskMeansMissing) {
  const OpenOutcomes cases[] = {
      {{ERROR_SUCCESS}, 1},
      {{ERROR_ACCESS_DENIED}, 1},
      {{ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED}, 1},
      {{ERROR_FILE_NOT_FOUND, ERROR_SUCCESS}, 1},
      {{ERROR_BADKEY, ERROR_FILE_NOT_FOUND, ERROR_SUCCESS}, 1},
      {{ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND, ERROR_INVALID_PARAMETER}, 1},
      {{ERROR_INVALID_HANDLE}, 1},
      {{ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND}, 0},
      {{ERROR_BADKEY, ERROR_FILE_NOT_FOUND, ERROR_BADKEY}, 0},
  };
  for (const auto& c : cases) {
    std::vector<REGSAM> tried;
    const int result = KeyExistsWith([&](REGSAM mask) {
      tried.push_back(mask);
      return c.statuses.at(tried.size() - 1);
    });
    EXPECT_EQ(result, c.expected) << c.statuses.size();
    // Tries the masks in their order and stops at the first other outcome.
    const std::vector<REGSAM> order = {0xF013F, 0xF023F, 0xF033F};
    EXPECT_EQ(tried, std::vector<REGSAM>(order.begin(), order.begin() + static_cast<long>(c.statuses.size())));
  }
}

// A key made through the 32-bit view lands where only that view sees it.
class Only32BitKey {
 public:
  explicit Only32BitKey(const std::wstring& name) : path_(L"Software\\ScourelTests\\" + name) {
    Remove();
    UniqueRegKey key;
    created_ = ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, path_.c_str(), 0, nullptr, 0,
                                 KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, key.put(), nullptr) == ERROR_SUCCESS;
  }
  ~Only32BitKey() { Remove(); }
  bool created() const { return created_; }
  const std::wstring& path() const { return path_; }

 private:
  void Remove() {
    UniqueRegKey parent;
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\ScourelTests", 0, KEY_ALL_ACCESS | KEY_WOW64_32KEY,
                        parent.put()) == ERROR_SUCCESS) {
      ::RegDeleteTreeW(parent.get(), nullptr);
      parent.reset();
      ::RegDeleteKeyExW(HKEY_LOCAL_MACHINE, L"Software\\ScourelTests", KEY_WOW64_32KEY, 0);
    }
  }
  std::wstring path_;
  bool created_ = false;
};

TEST(KeyExistsTest, KeyOnlyInThe32BitViewIsFoundThroughTheSecondMask) {
  Only32BitKey only32(L"view32");
  ASSERT_TRUE(only32.created());
  UniqueRegKey probe;
  // The first mask misses it, the second finds it.
  EXPECT_EQ(::RegOpenKeyExW(HKEY_LOCAL_MACHINE, only32.path().c_str(), 0, kOpenMasks[0], probe.put()),
            ERROR_FILE_NOT_FOUND);
  probe.release();
  EXPECT_EQ(::RegOpenKeyExW(HKEY_LOCAL_MACHINE, only32.path().c_str(), 0, kOpenMasks[1], probe.put()),
            ERROR_SUCCESS);
  probe.reset();
  EXPECT_EQ(KeyExists(HKEY_LOCAL_MACHINE, only32.path()), 1);
  EXPECT_TRUE(OpenKeyAnyView(HKEY_LOCAL_MACHINE, only32.path()));
  EXPECT_EQ(KeyExists(HKEY_LOCAL_MACHINE, only32.path() + L"\\missing"), 0);
}

TEST(KeyExistsTest, KeyThatDeniesAccessCountsAsExisting) {
  test::ScratchKey scratch(L"key_denied");
  ASSERT_TRUE(scratch.key());
  // An empty access list denies everyone every right.
  SECURITY_DESCRIPTOR descriptor;
  ASSERT_TRUE(::InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
  ACL emptyAcl;
  ASSERT_TRUE(::InitializeAcl(&emptyAcl, sizeof emptyAcl, ACL_REVISION));
  ASSERT_TRUE(::SetSecurityDescriptorDacl(&descriptor, TRUE, &emptyAcl, FALSE));
  SECURITY_ATTRIBUTES attributes{sizeof attributes, &descriptor, FALSE};
  UniqueRegKey locked;
  ASSERT_EQ(::RegCreateKeyExW(scratch.key(), L"locked", 0, nullptr, 0, KEY_READ, &attributes, locked.put(), nullptr),
            ERROR_SUCCESS);
  // Set once more on the open key, in case the creation ignored it.
  ::RegSetKeySecurity(locked.get(), DACL_SECURITY_INFORMATION, &descriptor);
  locked.reset();

  UniqueRegKey probe;
  const LONG status = ::RegOpenKeyExW(scratch.key(), L"locked", 0, kOpenMasks[0], probe.put());
  if (status != ERROR_SUCCESS) probe.release();
  probe.reset();
  if (status == ERROR_ACCESS_DENIED) {
    EXPECT_EQ(KeyExists(scratch.key(), L"locked"), 1);
    EXPECT_FALSE(OpenKeyAnyView(scratch.key(), L"locked"));
  }
  // The owner may still rewrite the access list, so the scratch key can go.
  UniqueRegKey owner;
  if (::RegOpenKeyExW(scratch.key(), L"locked", 0, WRITE_DAC, owner.put()) == ERROR_SUCCESS) {
    SECURITY_DESCRIPTOR open;
    ::InitializeSecurityDescriptor(&open, SECURITY_DESCRIPTOR_REVISION);
    ::SetSecurityDescriptorDacl(&open, TRUE, nullptr, FALSE);
    ::RegSetKeySecurity(owner.get(), DACL_SECURITY_INFORMATION, &open);
  }
  // Wine 8 keeps a key's access list but does not check it on open.
  if (status != ERROR_ACCESS_DENIED) {
    GTEST_SKIP() << "registry access lists are not enforced here (open gave " << status << ")";
  }
}

TEST(KeyExistsTest, AnyTextIsAccepted) {
  std::mt19937 random(5u);
  std::uniform_int_distribution<int> anyChar(1, 0xFFFF);
  std::uniform_int_distribution<int> length(0, 600);
  for (int i = 0; i < 200; ++i) {
    std::wstring path;
    for (int n = length(random); n > 0; --n) path += static_cast<wchar_t>(anyChar(random));
    const int exists = KeyExists(HKEY_CURRENT_USER, L"Software\\ScourelTests\\none\\" + path);
    EXPECT_TRUE(exists == 0 || exists == 1);
    OpenKeyAnyView(HKEY_CURRENT_USER, path);
  }
  const std::wstring longPath(100000, L'k');
  KeyExists(HKEY_CURRENT_USER, longPath);
  KeyExists(HKEY_PERFORMANCE_DATA, longPath);
  EXPECT_FALSE(OpenKeyAnyView(nullptr, L"Software"));
  EXPECT_EQ(KeyExists(reinterpret_cast<HKEY>(0x1234), L"Software"), 1);  // an invalid handle is no "missing"
}

void SetValue(HKEY key, const wchar_t* name, DWORD type, const void* data, DWORD size) {
  ASSERT_EQ(::RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size), ERROR_SUCCESS) << name;
}

std::map<std::wstring, std::wstring> AllValues(HKEY key) {
  std::map<std::wstring, std::wstring> values;
  DWORD count = 0;
  ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr,
                     nullptr);
  for (DWORD index = 0; index < count; ++index) {
    std::wstring name = L"stale", text = L"stale";
    EXPECT_EQ(EnumValueText(key, index, name, text), 1);
    values[name] = text;
  }
  return values;
}

TEST(EnumValueTextTest, TextByType) {
  test::ScratchKey scratch(L"enum_values");
  const HKEY key = scratch.key();
  ASSERT_TRUE(key);
  const wchar_t sz[] = L"C:\\a.exe";
  const wchar_t expand[] = L"%SystemRoot%\\x.dll";
  const wchar_t multi[] = L"first\0second\0";
  const std::int32_t negative = -5;
  const std::uint32_t big = 0xFFFFFFFFu;
  const std::uint64_t quad = 42;
  const unsigned char binary[] = {0x41, 0x00, 0x42, 0x00};
  const wchar_t unterminated[] = {L'a', L'b', L'c'};
  const unsigned char odd[] = {0x41, 0x00, 0x42};
  const unsigned char shortDword[] = {0x07, 0x01};
  SetValue(key, L"sz", REG_SZ, sz, sizeof sz);
  SetValue(key, L"expand", REG_EXPAND_SZ, expand, sizeof expand);
  SetValue(key, L"multi", REG_MULTI_SZ, multi, sizeof multi);
  SetValue(key, L"dword", REG_DWORD, &negative, sizeof negative);
  SetValue(key, L"bigdword", REG_DWORD, &big, sizeof big);
  SetValue(key, L"qword", REG_QWORD, &quad, sizeof quad);
  SetValue(key, L"binary", REG_BINARY, binary, sizeof binary);
  SetValue(key, L"unterminated", REG_SZ, unterminated, sizeof unterminated);
  SetValue(key, L"odd", REG_SZ, odd, sizeof odd);
  SetValue(key, L"shortdword", REG_DWORD, shortDword, sizeof shortDword);
  SetValue(key, L"emptysz", REG_SZ, L"", sizeof(wchar_t));
  SetValue(key, L"nodata", REG_SZ, nullptr, 0);
  SetValue(key, nullptr, REG_SZ, sz, sizeof sz);  // the default value has an empty name

  const std::map<std::wstring, std::wstring> expected = {
      {L"sz", L"C:\\a.exe"},     {L"expand", L"%SystemRoot%\\x.dll"},
      {L"multi", L"first"},      {L"dword", L"-5"},
      {L"bigdword", L"-1"},      {L"qword", L""},
      {L"binary", L""},          {L"unterminated", L"abc"},
      {L"odd", L"AB"},           {L"shortdword", L"263"},
      {L"emptysz", L""},         {L"nodata", L""},
      {L"", L"C:\\a.exe"},
  };
  EXPECT_EQ(AllValues(key), expected);
}

TEST(EnumValueTextTest, PastTheEndAndTooLargeGiveNothing) {
  test::ScratchKey scratch(L"enum_values_large");
  const HKEY key = scratch.key();
  ASSERT_TRUE(key);
  // One byte more than the buffer takes: the read fails, nothing is written past it.
  const std::wstring huge(kValueDataMax / sizeof(wchar_t) + 1, L'h');
  SetValue(key, L"huge", REG_SZ, huge.c_str(), static_cast<DWORD>(huge.size() * sizeof(wchar_t)));
  const std::wstring fits(kValueDataMax / sizeof(wchar_t) - 1, L'f');
  SetValue(key, L"fits", REG_SZ, fits.c_str(), static_cast<DWORD>((fits.size() + 1) * sizeof(wchar_t)));
  const std::wstring longName(kValueNameMax, L'n');
  SetValue(key, longName.c_str(), REG_SZ, L"x", 2 * sizeof(wchar_t));

  std::map<std::wstring, std::size_t> lengths;
  int failed = 0;
  for (DWORD index = 0; index < 3; ++index) {
    std::wstring name = L"stale", text = L"stale";
    EXPECT_EQ(EnumValueText(key, index, name, text), 1);
    if (name.empty()) {
      EXPECT_EQ(text, L"");
      ++failed;
    } else {
      lengths[name] = text.size();
    }
  }
  EXPECT_EQ(failed, 1);
  EXPECT_EQ(lengths, (std::map<std::wstring, std::size_t>{{L"fits", fits.size()}, {longName, 1}}));

  std::wstring name = L"stale", text = L"stale";
  EXPECT_EQ(EnumValueText(key, 3, name, text), 1);
  EXPECT_EQ(name, L"");
  EXPECT_EQ(text, L"");
  EXPECT_EQ(EnumValueText(nullptr, 0, name, text), 1);
  EXPECT_EQ(name, L"");
}

TEST(EnumSubkeyNameTest, NamesThenEmptyPastTheEnd) {
  test::ScratchKey scratch(L"enum_subkeys");
  ASSERT_TRUE(scratch.key());
  const std::wstring longest(kSubkeyNameMax, L's');
  const std::set<std::wstring> made = {L"alpha", L"beta", longest};
  for (const auto& name : made) {
    UniqueRegKey child;
    ASSERT_EQ(::RegCreateKeyExW(scratch.key(), name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, child.put(),
                                nullptr),
              ERROR_SUCCESS);
  }
  std::set<std::wstring> seen;
  for (DWORD index = 0; index < 3; ++index) seen.insert(EnumSubkeyName(scratch.key(), index));
  EXPECT_EQ(seen, made);
  EXPECT_EQ(EnumSubkeyName(scratch.key(), 3), L"");
  EXPECT_EQ(EnumSubkeyName(scratch.key(), 0xFFFFFFFFu), L"");
  EXPECT_EQ(EnumSubkeyName(nullptr, 0), L"");
}

TEST(FoldersTest, WindowsDirectoryAndSpecialFolders) {
  const std::wstring windows = WindowsDirectory();
  ASSERT_FALSE(windows.empty());
  EXPECT_TRUE(::PathIsDirectoryW(windows.c_str()));
  const std::wstring appData = SpecialFolder(CSIDL_APPDATA);
  EXPECT_FALSE(appData.empty());
  EXPECT_TRUE(::PathIsDirectoryW(appData.c_str()));
  EXPECT_EQ(SpecialFolder(0x7F7F), L"");
}

}  // namespace
}  // namespace scourel
