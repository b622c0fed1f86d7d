#include "plugins/plugin_files.h"

#include <knownfolders.h>

#include "common/known_folders.h"
#include "common/unique_handle.h"

namespace scourel {

namespace {

// The user folders that have a known-folder id but no CSIDL, with the name
// each has below the profile when the system does not say where it is.
struct UserFolder {
  const KNOWNFOLDERID* id;
  const wchar_t* name;
};
const UserFolder kUserFolders[] = {
    {&FOLDERID_Downloads, L"Downloads"}, {&FOLDERID_Desktop, L"Desktop"},     {&FOLDERID_Documents, L"Documents"},
    {&FOLDERID_Pictures, L"Pictures"},   {&FOLDERID_Music, L"Music"},         {&FOLDERID_Videos, L"Videos"},
    {&FOLDERID_SavedGames, L"Saved Games"}, {&FOLDERID_SkyDrive, L"OneDrive"}, {&FOLDERID_Favorites, L"Favorites"},
    {&FOLDERID_Links, L"Links"},         {&FOLDERID_Contacts, L"Contacts"},   {&FOLDERID_SavedSearches, L"Searches"},
    {&FOLDERID_PublicDownloads, nullptr},
};

std::wstring KnownFolder(const KNOWNFOLDERID& id) {
  wchar_t* path = nullptr;
  std::wstring result;
  // Where it would be, whether or not it exists yet.
  if (SUCCEEDED(::SHGetKnownFolderPath(id, KF_FLAG_DONT_VERIFY, nullptr, &path)) && path) result = path;
  ::CoTaskMemFree(path);
  return result;
}

}  // namespace

std::wstring PluginsFolder(const std::wstring& installRoot) { return installRoot + L"\\plugins"; }

std::vector<std::wstring> PluginNames(const std::wstring& folder, CleanerIo* clearReadOnly) {
  std::vector<std::wstring> names;
  WIN32_FIND_DATAW entry;
  const UniqueFindHandle find(::FindFirstFileW((folder + L"\\*.cv").c_str(), &entry));
  if (!find) return names;
  do {
    const std::wstring name = entry.cFileName;
    // A link is left as it is: its attributes may be another file's.
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) continue;
    if (clearReadOnly && (entry.dwFileAttributes & FILE_ATTRIBUTE_READONLY)) {
      (void)clearReadOnly->SetAttributes(folder + L"\\" + name, entry.dwFileAttributes & ~FILE_ATTRIBUTE_READONLY);
    }
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) continue;
    // The pattern also matches short names: the long name must end in ".cv" itself.
    if (name.size() < 3 || !SameName(std::wstring_view(name).substr(name.size() - 3), L".cv")) continue;
    names.push_back(name.substr(0, name.size() - 3));
  } while (::FindNextFileW(find.get(), &entry));
  return names;
}

LoadedPlugin LoadPlugin(const std::wstring& folder, const std::wstring& name) {
  LoadedPlugin loaded;
  const std::wstring path = folder + L"\\" + name + L".cv";
  const UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size{};
  if (!file || !::GetFileSizeEx(file.get(), &size)) return loaded;
  if (static_cast<std::uint64_t>(size.QuadPart) > kMaxPluginFileBytes) {
    loaded.status = LoadStatus::kTooLarge;
    return loaded;
  }
  std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
  DWORD read = 0;
  if (!bytes.empty() && !::ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
    return loaded;
  }
  bytes.resize(read);
  loaded.status = LoadStatus::kRead;
  // Without a byte-order mark the profile functions read the ANSI code page.
  loaded.definition = ReadPlugin(DecodeIniBytes(bytes, CP_ACP));
  return loaded;
}

PluginFolders SystemPluginFolders() {
  PluginFolders folders;
  for (size_t i = 0; i < kFolderTokenCount; ++i) folders.tokens[i] = SpecialFolder(kFolderTokens[i].csidl);
  std::wstring& drive = folders.tokens[kFolderTokenCount - 1];
  const size_t slash = drive.rfind(L'\\');
  drive = slash == std::wstring::npos ? std::wstring() : drive.substr(0, slash);

  folders.windows = SpecialFolder(CSIDL_WINDOWS);
  folders.profile = SpecialFolder(CSIDL_PROFILE);
  for (const int csidl : {CSIDL_PROGRAM_FILES, CSIDL_PROGRAM_FILESX86, CSIDL_PROGRAM_FILES_COMMON,
                          CSIDL_PROGRAM_FILES_COMMONX86}) {
    folders.programFiles.push_back(SpecialFolder(csidl));
  }
  for (const int csidl :
       {CSIDL_DESKTOPDIRECTORY, CSIDL_COMMON_DESKTOPDIRECTORY, CSIDL_PERSONAL, CSIDL_COMMON_DOCUMENTS,
        CSIDL_MYPICTURES, CSIDL_COMMON_PICTURES, CSIDL_MYMUSIC, CSIDL_COMMON_MUSIC, CSIDL_MYVIDEO,
        CSIDL_COMMON_VIDEO, CSIDL_FAVORITES, CSIDL_COMMON_FAVORITES, CSIDL_STARTMENU, CSIDL_COMMON_STARTMENU,
        CSIDL_PROGRAMS, CSIDL_COMMON_PROGRAMS, CSIDL_STARTUP, CSIDL_COMMON_STARTUP, CSIDL_RECENT, CSIDL_SENDTO,
        CSIDL_TEMPLATES, CSIDL_COMMON_TEMPLATES, CSIDL_NETHOOD, CSIDL_PRINTHOOD, CSIDL_FONTS, CSIDL_APPDATA,
        CSIDL_LOCAL_APPDATA, CSIDL_COMMON_APPDATA, CSIDL_INTERNET_CACHE, CSIDL_COOKIES, CSIDL_HISTORY,
        CSIDL_ADMINTOOLS, CSIDL_COMMON_ADMINTOOLS, CSIDL_SYSTEM, CSIDL_SYSTEMX86, CSIDL_RESOURCES,
        CSIDL_CDBURN_AREA}) {
    folders.special.push_back(SpecialFolder(csidl));
  }
  for (const UserFolder& folder : kUserFolders) {
    folders.special.push_back(KnownFolder(*folder.id));
    if (folder.name && !folders.profile.empty()) folders.special.push_back(folders.profile + L"\\" + folder.name);
  }
  return folders;
}

}  // namespace scourel
