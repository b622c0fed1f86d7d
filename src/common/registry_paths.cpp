#include "common/registry_paths.h"

#include "common/registry_key.h"

#include <cstdint>
#include <cstring>
#include <mutex>
#include <vector>

namespace scourel {

namespace {

struct RootName {
  HKEY root;
  const wchar_t* name;
};

const RootName kRootNames[] = {
    {HKEY_CLASSES_ROOT, L"HKEY_CLASSES_ROOT"}, {HKEY_CURRENT_USER, L"HKEY_CURRENT_USER"},
    {HKEY_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE"}, {HKEY_USERS, L"HKEY_USERS"},
    {HKEY_CURRENT_CONFIG, L"HKEY_CURRENT_CONFIG"},
};

// The enumeration buffers are allocated once and reused by every call. The
// lock only keeps two threads from sharing them; a single scan thread never
// waits on it.
struct EnumBuffers {
  std::mutex lock;
  std::vector<wchar_t> name;
  std::vector<BYTE> data;
  std::vector<wchar_t> subkey;
};

EnumBuffers& Buffers() {
  static EnumBuffers buffers;
  return buffers;
}

// Room for the terminator the registry adds to names, plus two spare zero
// characters behind the data so that string data not stored with its own
// terminator still ends inside the buffer.
constexpr std::size_t kDataSlack = 2 * sizeof(wchar_t);

bool IsMissing(LONG status) { return status == ERROR_FILE_NOT_FOUND || status == ERROR_BADKEY; }

}  // namespace

std::wstring RootKeyName(HKEY root) {
  for (const auto& entry : kRootNames) {
    if (entry.root == root) return entry.name;
  }
  return {};
}

HKEY RootKeyNamed(std::wstring_view name) {
  for (const auto& entry : kRootNames) {
    if (entry.name == name) return entry.root;
  }
  return nullptr;
}

HKEY PluginRootFromName(const std::wstring& name) {
  if (name == L"HKEY_CLASSES_ROOT") return HKEY_CURRENT_USER;
  if (name == L"HKEY_LOCAL_MACHINE") return HKEY_USERS;
  if (name == L"HKEY_USERS") return HKEY_CURRENT_CONFIG;
  return nullptr;
}

UniqueRegKey OpenKeyAnyView(HKEY root, const std::wstring& subkey) {
  for (REGSAM mask : kOpenMasks) {
    if (OpenedKey opened = OpenRegKey(root, subkey, mask)) return std::move(opened.key);
  }
  return {};
}

int KeyExistsWith(const std::function<LONG(REGSAM)>& open) {
  for (REGSAM mask : kOpenMasks) {
    if (!IsMissing(open(mask))) return 1;
  }
  return 0;
}

int KeyExists(HKEY root, const std::wstring& subkey) {
  return KeyExistsWith([&](REGSAM mask) { return OpenRegKey(root, subkey, mask).status; });
}

int EnumValueText(HKEY key, DWORD index, std::wstring& name, std::wstring& text) {
  name.clear();
  text.clear();
  EnumBuffers& buffers = Buffers();
  std::lock_guard<std::mutex> guard(buffers.lock);
  if (buffers.name.empty()) {
    buffers.name.resize(kValueNameMax + 1);
    buffers.data.resize(kValueDataMax + kDataSlack);
  }
  DWORD nameLength = kValueNameMax + 1;
  DWORD dataLength = kValueDataMax;
  DWORD type = REG_NONE;
  // Only what the read can reach needs clearing: the name is terminated by
  // the registry, the data by the zeros put right behind it below.
  buffers.name[0] = L'\0';
  std::memset(buffers.data.data(), 0, sizeof(DWORD));
  const LONG status =
      ::RegEnumValueW(key, index, buffers.name.data(), &nameLength, nullptr, &type, buffers.data.data(), &dataLength);
  if (status != ERROR_SUCCESS) return 1;
  if (nameLength > kValueNameMax || dataLength > kValueDataMax) return 1;
  buffers.name[nameLength] = L'\0';
  std::memset(buffers.data.data() + dataLength, 0, kDataSlack);

  name.assign(buffers.name.data(), nameLength);
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
    case REG_MULTI_SZ: {
      // As a C string: the first terminator ends it, the first of a multi-string too.
      const auto* chars = reinterpret_cast<const wchar_t*>(buffers.data.data());
      text.assign(chars, ::wcsnlen(chars, (dataLength + 1) / sizeof(wchar_t)));
      break;
    }
    case REG_DWORD: {
      std::int32_t number = 0;
      std::memcpy(&number, buffers.data.data(), sizeof number);
      text = std::to_wstring(number);  // same digits as "%d"
      break;
    }
    default:
      break;
  }
  return 1;
}

std::wstring EnumSubkeyName(HKEY key, DWORD index) {
  EnumBuffers& buffers = Buffers();
  std::lock_guard<std::mutex> guard(buffers.lock);
  if (buffers.subkey.empty()) buffers.subkey.resize(kSubkeyNameMax + 1);
  buffers.subkey[0] = L'\0';
  if (::RegEnumKeyW(key, index, buffers.subkey.data(), kSubkeyNameMax + 1) != ERROR_SUCCESS) return {};
  buffers.subkey[kSubkeyNameMax] = L'\0';
  return buffers.subkey.data();
}

int IsClassesPath(const std::wstring& path) {
  if (path.find(L"SOFTWARE\\CLASSES", 1) != std::wstring::npos) return 1;
  return path == L"INTERFACE" || path == L"TYPELIB" || path == L"CLSID" ? 1 : 0;
}

}  // namespace scourel
