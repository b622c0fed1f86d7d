// Every change a cleaner makes to the system goes through one object: the
// shredder's file calls (ShredIo) and the rest, namely attributes of listed
// entries, folder removals, registry deletions and writes, the clipboard, the
// Recycle Bin, the shell's recent-documents list and URL-cache entries. The
// worker uses the system's; a test or a preview can put another in its place,
// which records the changes and answers as the system would have.
#pragma once

#include <functional>
#include <string>
#include <system_error>

#include "common/win.h"
#include "protocol/categories.h"
#include "wipe/shred_io.h"

namespace scourel {

class CleanerIo : public ShredIo {
 public:
  // FindFirstFileW/FindNextFileW: every entry the pattern lists, "." and ".."
  // included, until `visit` returns false. A read, not a change: the walks
  // list through here so that a stand-in can show what a disk may hold and
  // Wine cannot (a read-only folder).
  virtual void ListFolder(const std::wstring& pattern, const std::function<bool(const WIN32_FIND_DATAW&)>& visit);
  // RemoveDirectoryW: only an empty folder goes.
  [[nodiscard]] virtual std::error_code RemoveFolder(const std::wstring& path);

  // The key with everything below it. Never through a registry link: a link
  // on the way fails the call, a link in the tree (or the key itself being
  // one) is deleted as a link, and what it names stays.
  [[nodiscard]] virtual std::error_code DeleteKeyTree(HKEY root, const std::wstring& subkey);
  // One key without subkeys, in the registry view given, with the same care
  // for links. `root` may be an open key and `subkey` empty: the key itself.
  [[nodiscard]] virtual std::error_code DeleteKey(HKEY root, const std::wstring& subkey, REGSAM view);
  // RegDeleteValueW through an open key.
  [[nodiscard]] virtual std::error_code DeleteValue(HKEY key, const std::wstring& name);
  // RegSetValueExW through an open key.
  [[nodiscard]] virtual std::error_code SetValue(HKEY key, const std::wstring& name, DWORD type, const BYTE* data,
                                                 DWORD bytes);

  // Opens the clipboard for `owner` and empties it.
  virtual void EmptyClipboard(HWND owner);
  // SHEmptyRecycleBinW for every drive, with no confirmation, progress or sound.
  virtual void EmptyRecycleBins();
  // SHAddToRecentDocs(0, null), which empties the shell's recent-documents list.
  virtual void ClearRecentDocuments();
  // DeleteUrlCacheEntryW.
  [[nodiscard]] virtual std::error_code DeleteUrlCacheEntry(const wchar_t* url);

  // The path a name really reaches, "" when it does not open
  // (common/final_path.h). A read the link rule makes through here: a walk
  // asks it of the same folder for every file in it, and a stand-in that
  // changes nothing need not ask the system again.
  virtual std::wstring FinalPathOf(const std::wstring& path);

  // The erasing walks' read-write probe, taken after read-only was cleared.
  virtual bool ProbeReadWrite(const std::wstring& path);
  // The browser whose traces a browser step is about to take: a recording
  // io files what follows under it.
  virtual void EnterBrowserStep(protocol::Browser browser);
};

// The process's one system-backed instance.
CleanerIo& SystemCleanerIo();

}  // namespace scourel
