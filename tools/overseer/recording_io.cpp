#include "overseer/recording_io.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "common/registry_key.h"
#include "common/status.h"

namespace overseer {

namespace {

using scourel::Win32Error;

constexpr DWORD kWriteAccess = 2;

// Every file call looks paths up by their upper case; most are ASCII, and
// those need no call into the system.
std::wstring Upper(std::wstring text) {
  for (wchar_t& c : text) {
    if (c >= 0x80) {
      ::CharUpperBuffW(text.data(), static_cast<DWORD>(text.size()));
      break;
    }
    if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - (L'a' - L'A'));
  }
  return text;
}

// NtQueryKey's KeyNameInformation: the kernel's full name of an open key.
std::wstring KernelKeyName(HKEY key) {
  using NtQueryKeyFunction = LONG(WINAPI*)(HANDLE, int, PVOID, ULONG, PULONG);
  static const auto query = reinterpret_cast<NtQueryKeyFunction>(
      reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQueryKey")));
  if (!query) return {};
  std::vector<std::uint8_t> buffer(4096);
  ULONG length = 0;
  constexpr int kKeyNameInformation = 3;
  if (query(key, kKeyNameInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &length) != 0) return {};
  ULONG nameBytes = 0;
  std::memcpy(&nameBytes, buffer.data(), sizeof nameBytes);
  return std::wstring(reinterpret_cast<const wchar_t*>(buffer.data() + sizeof(ULONG)), nameBytes / sizeof(wchar_t));
}

bool IsPredefined(HKEY key) { return (reinterpret_cast<ULONG_PTR>(key) & 0x80000000u) != 0; }

std::error_code NotFound() { return Win32Error(ERROR_FILE_NOT_FOUND); }

}  // namespace

Change Made(ChangeKind kind, std::wstring name) {
  Change change;
  change.kind = kind;
  change.name = std::move(name);
  return change;
}

namespace {

}  // namespace

std::wstring FileKey(const std::wstring& path) {
  std::wstring key = path;
  if (key.rfind(L"\\\\?\\", 0) == 0) key.erase(0, 4);
  while (key.size() > 3 && key.back() == L'\\') key.pop_back();
  // "folder\." names the folder and "folder\.." its parent, as a listing gives them.
  const bool parent = key.size() > 3 && key.ends_with(L"\\..");
  if (parent || (key.size() > 2 && key.ends_with(L"\\."))) {
    key.resize(key.rfind(L'\\'));
    if (parent && key.rfind(L'\\') != std::wstring::npos && key.rfind(L'\\') > 2) key.resize(key.rfind(L'\\'));
  }
  return Upper(std::move(key));
}

std::wstring DisplayKeyName(const std::wstring& kernelName, const std::wstring& userPrefix) {
  const std::wstring upper = Upper(kernelName);
  auto replaced = [&](const std::wstring& prefix, const wchar_t* root) -> std::wstring {
    if (prefix.empty() || upper.compare(0, prefix.size(), Upper(prefix)) != 0) return {};
    return root + kernelName.substr(prefix.size());
  };
  for (const auto& [prefix, root] : {std::pair<std::wstring, const wchar_t*>{userPrefix, L"HKEY_CURRENT_USER"},
                                     {L"\\REGISTRY\\MACHINE", L"HKEY_LOCAL_MACHINE"},
                                     {L"\\REGISTRY\\USER", L"HKEY_USERS"}}) {
    std::wstring name = replaced(prefix, root);
    if (!name.empty()) return name;
  }
  return kernelName;
}

RecordingIo::RecordingIo() {
  HKEY user = nullptr;
  if (::RegOpenCurrentUser(KEY_READ, &user) == ERROR_SUCCESS) {
    userPrefix_ = KernelKeyName(user);
    ::RegCloseKey(user);
  }
}

RecordingIo::~RecordingIo() = default;

void RecordingIo::Add(Change change) {
  change.group = group_;
  changes_.push_back(std::move(change));
}

bool RecordingIo::Taken(const std::wstring& path) const { return goneFiles_.count(FileKey(path)) != 0; }

// --- Files ------------------------------------------------------------------

DWORD RecordingIo::Attributes(const std::wstring& path) {
  const std::wstring key = FileKey(path);
  if (goneFiles_.count(key)) return INVALID_FILE_ATTRIBUTES;
  if (renamed_.count(key)) return FILE_ATTRIBUTE_ARCHIVE;
  if (const auto found = attributes_.find(key); found != attributes_.end()) return found->second;
  return RealAttributes(path);
}

DWORD RecordingIo::RealAttributes(const std::wstring& path) {
  std::wstring key = FileKey(path);
  if (const auto found = listed_.find(key); found != listed_.end()) return found->second;
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  // A name near the entries (the obscured name a rename would take) is
  // asked once while its folder is listed.
  const std::size_t slash = key.rfind(L'\\');
  for (Listing& listing : listings_) {
    if (slash == std::wstring::npos || key.compare(0, slash, listing.folder) != 0 || listing.folder.size() != slash) {
      continue;
    }
    listing.asked.push_back(key);
    listed_.emplace(std::move(key), attributes);
    break;
  }
  return attributes;
}

std::error_code RecordingIo::SetAttributes(const std::wstring& path, DWORD attributes) {
  const DWORD before = Attributes(path);
  if (before == INVALID_FILE_ATTRIBUTES) return NotFound();
  // Only the bits SetFileAttributesW can set; the folder bit stays as it is.
  const DWORD after = (attributes & ~FILE_ATTRIBUTE_DIRECTORY) | (before & FILE_ATTRIBUTE_DIRECTORY);
  if ((before & ~FILE_ATTRIBUTE_NORMAL) != (after & ~FILE_ATTRIBUTE_NORMAL)) {
    attributes_[FileKey(path)] = after;
    Change change = Made(ChangeKind::kAttributes, path);
    change.before = before;
    change.after = after;
    Add(std::move(change));
  }
  return {};
}

std::error_code RecordingIo::OpenFile(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags,
                                      scourel::UniqueHandleKernel& file) {
  if (Attributes(path) == INVALID_FILE_ATTRIBUTES) return NotFound();
  std::error_code error = ShredIo::OpenFile(path, access, shareMode, flags, file);
  // Read-only was cleared on paper only: the real file still refuses write
  // access, so the open is judged by what it can tell without it.
  const DWORD real = RealAttributes(path);
  if (error && (access & kWriteAccess) && real != INVALID_FILE_ATTRIBUTES && (real & FILE_ATTRIBUTE_READONLY) &&
      !(Attributes(path) & FILE_ATTRIBUTE_READONLY)) {
    error = ShredIo::OpenFile(path, access & ~kWriteAccess, shareMode, flags, file);
  }
  if (error) {
    Change left = Made(ChangeKind::kFileLeft, path);
    left.before = static_cast<std::uint32_t>(error.value());
    Add(std::move(left));
    return error;
  }
  openFiles_[file.get()] = path;
  return {};
}

RecordingIo::Volume& RecordingIo::VolumeOf(const std::wstring& drive) {
  const auto found = volumes_.find(FileKey(drive));
  if (found != volumes_.end()) return found->second;
  Volume& volume = volumes_[FileKey(drive)];
  volume.spaceError = ShredIo::DiskFreeSpace(drive, &volume.sectorsPerCluster, &volume.bytesPerSector);
  volume.openError = ShredIo::OpenVolume(drive, volume.handle);
  return volume;
}

std::error_code RecordingIo::DiskFreeSpace(const std::wstring& drive, DWORD* sectorsPerCluster, DWORD* bytesPerSector) {
  const Volume& volume = VolumeOf(drive);
  *sectorsPerCluster = volume.sectorsPerCluster;
  *bytesPerSector = volume.bytesPerSector;
  return volume.spaceError;
}

// The shredder opens the volume only to learn that it opens; a copy of the
// handle for every file would cost two more system calls each.
std::error_code RecordingIo::OpenVolume(const std::wstring& drive, scourel::UniqueHandleKernel&) {
  return VolumeOf(drive).openError;
}

std::error_code RecordingIo::FileSize(HANDLE file, std::uint64_t* size) {
  const std::error_code error = ShredIo::FileSize(file, size);
  if (!error) {
    if (const auto found = openFiles_.find(file); found != openFiles_.end()) sizes_[FileKey(found->second)] = *size;
  }
  return error;
}

// GetFileInformationByHandle also asks for the volume's serial number, which
// under Wine is a round trip to the mount manager for every file; these two
// read the handle alone and give the same attributes and link count.
std::error_code RecordingIo::Identity(HANDLE file, DWORD* attributes, DWORD* linkCount) {
  FILE_BASIC_INFO basic{};
  FILE_STANDARD_INFO standard{};
  if (!::GetFileInformationByHandleEx(file, FileBasicInfo, &basic, sizeof basic) ||
      !::GetFileInformationByHandleEx(file, FileStandardInfo, &standard, sizeof standard)) {
    return scourel::LastError();
  }
  *attributes = basic.FileAttributes;
  *linkCount = standard.NumberOfLinks;
  return {};
}

std::error_code RecordingIo::FinalPath(HANDLE file, std::wstring* path) {
  if (const auto found = openFiles_.find(file); found != openFiles_.end()) {
    if (const FinalPathAnswer* known = KnownFinalPath(found->second); known && !known->reached.empty()) {
      *path = known->reached;
      return {};
    }
  }
  return ShredIo::FinalPath(file, path);
}

const RecordingIo::FinalPathAnswer* RecordingIo::KnownFinalPath(const std::wstring& name) {
  for (FinalPathAnswer& answer : finalPaths_) {
    if (answer.used != 0 && answer.name == name) {
      answer.used = ++finalPathClock_;
      return &answer;
    }
  }
  return nullptr;
}

std::wstring RecordingIo::FinalPathOf(const std::wstring& path) {
  if (const FinalPathAnswer* known = KnownFinalPath(path)) return known->reached;
  // The answer used longest ago makes room.
  FinalPathAnswer& oldest = *std::min_element(finalPaths_.begin(), finalPaths_.end(),
                                              [](const auto& a, const auto& b) { return a.used < b.used; });
  oldest = {path, CleanerIo::FinalPathOf(path), ++finalPathClock_};
  return oldest.reached;
}

std::error_code RecordingIo::Seek(HANDLE, std::uint64_t) { return {}; }
std::error_code RecordingIo::Write(HANDLE, const std::uint8_t*, std::uint32_t) { return {}; }
std::error_code RecordingIo::Flush(HANDLE) { return {}; }

void RecordingIo::Close(scourel::UniqueHandleKernel& file) {
  openFiles_.erase(file.get());
  file.reset();
}

std::error_code RecordingIo::Rename(const std::wstring& from, const std::wstring& to) {
  if (Attributes(from) == INVALID_FILE_ATTRIBUTES) return {ENOENT, std::generic_category()};
  if (Attributes(to) != INVALID_FILE_ATTRIBUTES) return {EEXIST, std::generic_category()};
  const std::wstring fromKey = FileKey(from);
  // A rename chain keeps pointing at the file first named.
  const auto earlier = renamed_.find(fromKey);
  std::wstring original = earlier != renamed_.end() ? earlier->second : from;
  if (earlier != renamed_.end()) renamed_.erase(earlier);
  goneFiles_.insert(fromKey);
  renamed_[FileKey(to)] = std::move(original);
  return {};
}

std::error_code RecordingIo::Delete(const std::wstring& path) {
  const std::wstring key = FileKey(path);
  std::wstring original = path;
  if (const auto found = renamed_.find(key); found != renamed_.end()) {
    original = found->second;
    renamed_.erase(found);
  } else {
    const DWORD attributes = Attributes(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return NotFound();
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) return Win32Error(ERROR_ACCESS_DENIED);
    goneFiles_.insert(key);
  }
  Change taken = Made(ChangeKind::kFile, original);
  if (const auto size = sizes_.find(FileKey(original)); size != sizes_.end()) {
    taken.bytes = size->second;
    sizes_.erase(size);
  }
  Add(std::move(taken));
  return {};
}

std::error_code RecordingIo::RemoveFolder(const std::wstring& path) {
  const DWORD attributes = Attributes(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) return NotFound();
  if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return Win32Error(ERROR_DIRECTORY);
  if (attributes & FILE_ATTRIBUTE_READONLY) return Win32Error(ERROR_ACCESS_DENIED);
  std::wstring folder = path;
  while (folder.size() > 3 && folder.back() == L'\\') folder.pop_back();
  // Empty once everything it lists was taken.
  const std::wstring key = FileKey(folder);
  if (lastListed_ && lastListed_->folder == key) {
    const Listing listed = std::move(*lastListed_);
    lastListed_.reset();
    for (const std::wstring& entry : listed.entries) {
      if (!goneFiles_.count(entry)) return Win32Error(ERROR_DIR_NOT_EMPTY);
    }
  } else {
    WIN32_FIND_DATAW entry;
    const scourel::UniqueFindHandle find(::FindFirstFileW((folder + L"\\*").c_str(), &entry));
    if (find) {
      do {
        const std::wstring_view name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        if (!goneFiles_.count(FileKey(folder + L"\\" + entry.cFileName))) return Win32Error(ERROR_DIR_NOT_EMPTY);
      } while (::FindNextFileW(find.get(), &entry));
    }
  }
  goneFiles_.insert(key);
  Add(Made(ChangeKind::kFolder, folder));
  return {};
}

bool RecordingIo::ProbeReadWrite(const std::wstring& path) {
  if (Attributes(path) == INVALID_FILE_ATTRIBUTES) return false;
  const DWORD real = RealAttributes(path);
  const bool clearedOnPaper = real != INVALID_FILE_ATTRIBUTES && (real & FILE_ATTRIBUTE_READONLY) &&
                              !(Attributes(path) & FILE_ATTRIBUTE_READONLY);
  const DWORD access = clearedOnPaper ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
  return scourel::UniqueHandleKernel(::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr))
      .valid();
}

void RecordingIo::ListFolder(const std::wstring& pattern,
                             const std::function<bool(const WIN32_FIND_DATAW&)>& visit) {
  const std::size_t slash = pattern.rfind(L'\\');
  const std::wstring folder = slash == std::wstring::npos ? std::wstring() : pattern.substr(0, slash + 1);
  lastListed_.reset();
  listings_.push_back({FileKey(folder), {}, {}});
  const std::size_t depth = listings_.size() - 1;
  bool toTheEnd = true;
  CleanerIo::ListFolder(pattern, [&](const WIN32_FIND_DATAW& entry) {
    const std::wstring_view name = entry.cFileName;
    if (name == L"." || name == L"..") return toTheEnd = visit(entry);
    std::wstring key = FileKey(folder + entry.cFileName);
    if (goneFiles_.count(key)) return true;
    listed_[key] = entry.dwFileAttributes;
    listings_[depth].entries.push_back(std::move(key));
    return toTheEnd = visit(entry);
  });
  Listing done = std::move(listings_.back());
  listings_.pop_back();
  for (const auto* keys : {&done.entries, &done.asked}) {
    for (const std::wstring& key : *keys) listed_.erase(key);
  }
  // A listing of every name, run to its end, tells whether the folder is
  // empty once its entries were taken: the walks remove a folder right after
  // listing it.
  if (toTheEnd && (pattern.ends_with(L"\\*") || pattern.ends_with(L"\\*.*"))) {
    lastListed_ = std::move(done);
  }
}

void RecordingIo::EnterBrowserStep(scourel::protocol::Browser browser) {
  if (onBrowserStep_) onBrowserStep_(browser);
}

// --- Registry ---------------------------------------------------------------

bool RecordingIo::KeyGone(const std::wstring& key) const {
  std::wstring name = Upper(key);
  for (;;) {
    if (goneKeys_.count(name)) return true;
    const std::size_t slash = name.rfind(L'\\');
    if (slash == std::wstring::npos || slash == 0) return false;
    name.resize(slash);
  }
}

std::wstring RecordingIo::LiveKey(HKEY root, const std::wstring& subkey, REGSAM view) {
  std::wstring name;
  if (subkey.empty() && !IsPredefined(root)) {
    name = KernelKeyName(root);
  } else {
    const scourel::OpenedKey key = scourel::OpenRegKey(root, subkey, KEY_READ | view);
    if (!key) return {};
    name = KernelKeyName(key.get());
  }
  return name.empty() || KeyGone(name) ? std::wstring() : name;
}

void RecordingIo::CountBelow(HKEY key, const std::wstring& name, Change& change) {
  const scourel::KeyCounts counts = scourel::CountsOf(key);
  for (DWORD i = 0; i < counts.values; ++i) {
    wchar_t value[16384];
    DWORD chars = 16384;
    if (::RegEnumValueW(key, i, value, &chars, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) continue;
    if (!goneValues_.count(Upper(name) + L'\n' + Upper(value))) ++change.values;
  }
  for (DWORD i = 0; i < counts.subkeys; ++i) {
    wchar_t child[256];
    DWORD chars = 256;
    if (::RegEnumKeyExW(key, i, child, &chars, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) continue;
    const std::wstring childName = name + L"\\" + child;
    if (KeyGone(childName)) continue;
    ++change.subkeys;
    if (const scourel::OpenedKey opened = scourel::OpenRegKey(key, child, KEY_READ)) {
      CountBelow(opened.get(), childName, change);
    }
  }
}

std::error_code RecordingIo::DeleteKeyTree(HKEY root, const std::wstring& subkey) {
  const std::wstring name = LiveKey(root, subkey, 0);
  if (name.empty()) return NotFound();
  Change change = Made(ChangeKind::kKey, DisplayKeyName(name, userPrefix_));
  if (const scourel::OpenedKey key = scourel::OpenRegKey(root, subkey, KEY_READ)) CountBelow(key.get(), name, change);
  goneKeys_.insert(Upper(name));
  Add(std::move(change));
  return {};
}

std::error_code RecordingIo::DeleteKey(HKEY root, const std::wstring& subkey, REGSAM view) {
  const std::wstring name = LiveKey(root, subkey, view);
  if (name.empty()) return NotFound();
  Change change = Made(ChangeKind::kKey, DisplayKeyName(name, userPrefix_));
  const scourel::OpenedKey opened =
      subkey.empty() && !IsPredefined(root) ? scourel::OpenedKey() : scourel::OpenRegKey(root, subkey, KEY_READ | view);
  CountBelow(opened ? opened.get() : root, name, change);
  // Only a key without subkeys goes.
  if (change.subkeys != 0) return Win32Error(ERROR_ACCESS_DENIED);
  goneKeys_.insert(Upper(name));
  Add(std::move(change));
  return {};
}

std::error_code RecordingIo::DeleteValue(HKEY key, const std::wstring& name) {
  const std::wstring keyName = KernelKeyName(key);
  if (keyName.empty() || KeyGone(keyName)) return NotFound();
  const std::wstring valueKey = Upper(keyName) + L'\n' + Upper(name);
  if (goneValues_.count(valueKey)) return NotFound();
  if (::RegQueryValueExW(key, name.c_str(), nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) return NotFound();
  goneValues_.insert(valueKey);
  Add(Made(ChangeKind::kValue, DisplayKeyName(keyName, userPrefix_) + L"\\" + name));
  return {};
}

std::error_code RecordingIo::SetValue(HKEY key, const std::wstring& name, DWORD, const BYTE*, DWORD) {
  const std::wstring keyName = KernelKeyName(key);
  if (keyName.empty() || KeyGone(keyName)) return Win32Error(ERROR_KEY_DELETED);
  Add(Made(ChangeKind::kValueSet, DisplayKeyName(keyName, userPrefix_) + L"\\" + name));
  return {};
}

// --- The rest ---------------------------------------------------------------

void RecordingIo::EmptyClipboard(HWND) { Add(Made(ChangeKind::kClipboard, L"clipboard")); }

void RecordingIo::EmptyRecycleBins() { Add(Made(ChangeKind::kRecycleBins, L"every Recycle Bin")); }

void RecordingIo::ClearRecentDocuments() {
  Add(Made(ChangeKind::kRecentDocuments, L"the shell's recent-documents list"));
}

std::error_code RecordingIo::DeleteUrlCacheEntry(const wchar_t* url) {
  Add(Made(ChangeKind::kUrlCacheEntry, url ? url : L""));
  return {};
}

}  // namespace overseer
