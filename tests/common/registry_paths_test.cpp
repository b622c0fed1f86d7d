#include "common/registry_paths.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "common/known_folders.h"
#include "support/fixtures.h"

namespace scourel {
namespace {

TEST(RegistryPathsTest, RootNamesClassesPathsAndFolders) {
  for (HKEY other : {HKEY_PERFORMANCE_DATA, HKEY_DYN_DATA, HKEY(nullptr)}) EXPECT_EQ(RootKeyName(other), L"");
  EXPECT_EQ(RootKeyName(HKEY_CLASSES_ROOT), L"HKEY_CLASSES_ROOT");
  EXPECT_EQ(RootKeyName(HKEY_CURRENT_CONFIG), L"HKEY_CURRENT_CONFIG");
  for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_USERS, HKEY_CURRENT_CONFIG}) EXPECT_EQ(RootKeyNamed(RootKeyName(root)), root);
  EXPECT_EQ(RootKeyNamed(L"hkey_users"), nullptr);
  const std::map<std::wstring, int> classes = {
      {L"SOFTWARE\\CLASSES\\CLSID", 0},  // only at the very start
      {L"XSOFTWARE\\CLASSES", 1}, {L"SOFTWARE\\CLASSES\\Wow6432Node\\SOFTWARE\\CLASSES", 1},
      {L"X\\Software\\Classes", 0}, {L"INTERFACE", 1}, {L"TYPELIB", 1}, {L"CLSID", 1}, {L"clsid", 0},
      {L"CLSID\\{x}", 0}, {L"", 0}};
  for (const auto& [path, expected] : classes) EXPECT_EQ(IsClassesPath(path), expected) << path;
  EXPECT_EQ(SpecialFolder(0x7F7F), L"");  // an unknown folder id gives no path
}

TEST(KeyExistsTest, OnlyNotFoundOrBadKeyOnEveryMaskMeansMissing) {
  const std::vector<std::vector<LONG>> existing = {
      {ERROR_SUCCESS}, {ERROR_ACCESS_DENIED}, {ERROR_INVALID_HANDLE},
      {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED}, {ERROR_BADKEY, ERROR_FILE_NOT_FOUND, ERROR_SUCCESS}};
  const std::vector<LONG> missing = {ERROR_BADKEY, ERROR_FILE_NOT_FOUND, ERROR_BADKEY};
  for (const auto& statuses : existing) {
    std::vector<REGSAM> tried;
    EXPECT_EQ(KeyExistsWith([&](REGSAM mask) { tried.push_back(mask); return statuses.at(tried.size() - 1); }), 1);
    EXPECT_EQ(tried.size(), statuses.size()) << statuses.back();  // stops at the first other outcome
  }
  std::vector<REGSAM> tried;
  EXPECT_EQ(KeyExistsWith([&](REGSAM mask) { tried.push_back(mask); return missing.at(tried.size() - 1); }), 0);
  EXPECT_EQ(tried, (std::vector<REGSAM>{0xF013F, 0xF023F, 0xF033F}));
}

// A key made through the 32-bit view: the first mask misses it, the second finds it.
TEST(KeyExistsTest, ARealKeyOfThe32BitViewAlone) {
  const std::wstring parent = L"Software\\ScourelTests", path = parent + L"\\view32";
  const test::Cleanup drop([&] {
    for (const auto& p : {path, parent}) ::RegDeleteKeyExW(HKEY_LOCAL_MACHINE, p.c_str(), KEY_WOW64_32KEY, 0);
  });
  ASSERT_EQ(::RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, kOpenMasks[1], nullptr,
                              UniqueRegKey().put(), nullptr), ERROR_SUCCESS);
  EXPECT_EQ(::RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, kOpenMasks[0], UniqueRegKey().put()),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(KeyExists(HKEY_LOCAL_MACHINE, path), 1);
  EXPECT_TRUE(OpenKeyAnyView(HKEY_LOCAL_MACHINE, path));
  EXPECT_EQ(KeyExists(HKEY_LOCAL_MACHINE, path + L"\\missing\\deeper"), 0);
  EXPECT_FALSE(OpenKeyAnyView(HKEY_LOCAL_MACHINE, path + L"\\missing") || OpenKeyAnyView(nullptr, L"Software"));
}

std::string Bytes(const void* data, std::size_t size) { return std::string(static_cast<const char*>(data), size); }
std::string Wide(const std::wstring& text) { return Bytes(text.c_str(), (text.size() + 1) * sizeof(wchar_t)); }

struct Value {
  std::wstring name;
  DWORD type;
  std::string data;
  const wchar_t* text;  // null: the read fails
};

// Sets the values in a fresh key and reads indexes 0 .. count-1 back as
// name -> text; a failed read, or one past the end, gives "" -> "".
void ExpectReadBack(const std::vector<Value>& values, DWORD count) {
  test::ScratchKey scratch(L"enum_values");
  std::map<std::wstring, std::wstring> expected, read;
  for (const Value& v : values) {
    ASSERT_EQ(::RegSetValueExW(scratch.key(), v.name.c_str(), 0, v.type, reinterpret_cast<const BYTE*>(v.data.data()),
                               static_cast<DWORD>(v.data.size())), ERROR_SUCCESS) << v.name;
    expected[v.text ? v.name : L""] = v.text ? v.text : L"";
  }
  for (DWORD index = 0; index < count; ++index) {
    std::wstring name = L"stale", text = L"stale";
    EXPECT_EQ(EnumValueText(scratch.key(), index, name, text), 1);
    read[name] = text;
  }
  EXPECT_EQ(read, expected);
}

TEST(EnumValueTextTest, TextByType) {
  const std::int32_t negative = -5;
  const std::uint64_t quad = 42;
  ExpectReadBack({{L"", REG_SZ, Wide(L"C:\\a.exe"), L"C:\\a.exe"},  // the default value
                  {L"expand", REG_EXPAND_SZ, Wide(L"%SystemRoot%\\x.dll"), L"%SystemRoot%\\x.dll"},
                  {L"multi", REG_MULTI_SZ, Bytes(L"first\0second\0", 28), L"first"},
                  {L"dword", REG_DWORD, Bytes(&negative, 4), L"-5"}, {L"shortdword", REG_DWORD, "\x07\x01", L"263"},
                  {L"bigdword", REG_DWORD, std::string(4, '\xFF'), L"-1"}, {L"qword", REG_QWORD, Bytes(&quad, 8), L""},
                  {L"binary", REG_BINARY, Bytes("A\0B\0", 4), L""}, {L"unterminated", REG_SZ, Bytes(L"abc", 6), L"abc"},
                  {L"odd", REG_SZ, Bytes("A\0B", 3), L"AB"}, {L"nodata", REG_SZ, "", L""}}, 11);
}

TEST(EnumValueTextTest, TooLargePastTheEndAndNullGiveNothing) {
  // One byte more than the buffer takes: the read fails, nothing is written past it; the others still read.
  const std::wstring huge(kValueDataMax / sizeof(wchar_t) + 1, L'h'), fits(kValueDataMax / 2 - 1, L'f');
  const std::wstring longName(kValueNameMax, L'n');
  ExpectReadBack({{L"huge", REG_SZ, Bytes(huge.c_str(), kValueDataMax + 2), nullptr},
                  {L"fits", REG_SZ, Wide(fits), fits.c_str()}, {longName, REG_SZ, Wide(L"x"), L"x"}}, 4);
  std::wstring name = L"stale", text = L"stale";
  EXPECT_EQ(EnumValueText(nullptr, 0, name, text), 1);
  EXPECT_EQ(name + text, L"");
}

TEST(EnumSubkeyNameTest, NamesThenEmptyPastTheEnd) {
  test::ScratchKey scratch(L"enum_subkeys");
  const std::set<std::wstring> made = {L"alpha", L"beta", std::wstring(kSubkeyNameMax, L's')};
  for (const auto& name : made) ASSERT_EQ(::RegCreateKeyW(scratch.key(), name.c_str(), UniqueRegKey().put()), 0);
  std::set<std::wstring> seen;
  for (DWORD index = 0; index < 3; ++index) seen.insert(EnumSubkeyName(scratch.key(), index));
  EXPECT_EQ(seen, made);
  EXPECT_EQ(EnumSubkeyName(scratch.key(), 3) + EnumSubkeyName(nullptr, 0), L"");
}

}  // namespace
}  // namespace scourel
