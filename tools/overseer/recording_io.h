// The cleaners' io for a preview: every change is written down instead of
// made, and every call answers as the system would have once the changes
// recorded so far were made. Files are opened (with the access asked for, so
// a file another program holds answers as it would) but never written;
// listings, attributes, folder removals and the registry answer from the
// real state with the recorded changes laid over it.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "task/cleaner_io.h"

namespace overseer {

enum class ChangeKind {
  kFile,             // shredded: renamed and deleted
  kFileLeft,         // counted, but its open fails: it stays
  kFolder,           // removed once empty
  kAttributes,       // attributes changed on something that stays
  kKey,              // a key with everything below it
  kValue,            // one value
  kValueSet,         // a value written
  kClipboard,        // emptied
  kRecycleBins,      // every bin emptied
  kRecentDocuments,  // the shell's list emptied
  kUrlCacheEntry,    // one URL-cache entry deleted
  kRefused,          // a plug-in entry the worker refuses: nothing is done
};

struct Change {
  ChangeKind kind = ChangeKind::kFile;
  std::uint32_t group = 0;
  std::wstring name;           // path, key path, key path + "\" + value name, or URL
  std::uint64_t bytes = 0;     // a file's size
  std::uint32_t subkeys = 0;   // a key's: those below it, at any depth
  std::uint32_t values = 0;    // a key's: every value it and its subkeys hold
  std::uint32_t before = 0;    // attributes before, or a failed open's error
  std::uint32_t after = 0;     // attributes after
  std::string reason;          // why a plug-in entry is refused
};

// A change of the kind, to the name, with every other field zero.
Change Made(ChangeKind kind, std::wstring name);

class RecordingIo : public scourel::CleanerIo {
 public:
  RecordingIo();
  ~RecordingIo() override;

  // Changes recorded from now on belong to this group.
  void SetGroup(std::uint32_t group) { group_ = group; }
  // Called as each browser step begins, to set the group of what it takes.
  void OnBrowserStep(std::function<void(scourel::protocol::Browser)> choose) { onBrowserStep_ = std::move(choose); }
  const std::vector<Change>& changes() const { return changes_; }
  std::vector<Change> TakeChanges() { return std::move(changes_); }
  // Files what the cleaners decide without a call of their own (a refusal).
  void Note(Change change) { Add(std::move(change)); }
  // Whether the path was recorded as taken (a file or a folder).
  bool Taken(const std::wstring& path) const;

  DWORD Attributes(const std::wstring& path) override;
  std::error_code SetAttributes(const std::wstring& path, DWORD attributes) override;
  std::error_code OpenFile(const std::wstring& path, DWORD access, DWORD shareMode, DWORD flags,
                           scourel::UniqueHandleKernel& file) override;
  std::error_code OpenVolume(const std::wstring& drive, scourel::UniqueHandleKernel& volume) override;
  std::error_code DiskFreeSpace(const std::wstring& drive, DWORD* sectorsPerCluster, DWORD* bytesPerSector) override;
  std::error_code FileSize(HANDLE file, std::uint64_t* size) override;
  std::error_code Identity(HANDLE file, DWORD* attributes, DWORD* linkCount) override;
  std::error_code FinalPath(HANDLE file, std::wstring* path) override;
  std::error_code Seek(HANDLE file, std::uint64_t offset) override;
  std::error_code Write(HANDLE file, const std::uint8_t* bytes, std::uint32_t length) override;
  std::error_code Flush(HANDLE file) override;
  void Close(scourel::UniqueHandleKernel& file) override;
  std::error_code Rename(const std::wstring& from, const std::wstring& to) override;
  std::error_code Delete(const std::wstring& path) override;

  std::error_code RemoveFolder(const std::wstring& path) override;
  std::error_code DeleteKeyTree(HKEY root, const std::wstring& subkey) override;
  std::error_code DeleteKey(HKEY root, const std::wstring& subkey, REGSAM view) override;
  std::error_code DeleteValue(HKEY key, const std::wstring& name) override;
  std::error_code SetValue(HKEY key, const std::wstring& name, DWORD type, const BYTE* data, DWORD bytes) override;
  void EmptyClipboard(HWND owner) override;
  void EmptyRecycleBins() override;
  void ClearRecentDocuments() override;
  std::error_code DeleteUrlCacheEntry(const wchar_t* url) override;
  bool ProbeReadWrite(const std::wstring& path) override;
  std::wstring FinalPathOf(const std::wstring& path) override;
  // The real listing less what was recorded as taken.
  void ListFolder(const std::wstring& pattern, const std::function<bool(const WIN32_FIND_DATAW&)>& visit) override;
  void EnterBrowserStep(scourel::protocol::Browser browser) override;

 private:
  void Add(Change change);
  bool KeyGone(const std::wstring& key) const;
  // The key's full name when it exists and was not recorded as deleted.
  std::wstring LiveKey(HKEY root, const std::wstring& subkey, REGSAM view);
  void CountBelow(HKEY key, const std::wstring& name, Change& change);
  // GetFileAttributesW, answered from the listing when the path is an entry
  // of a folder being listed: the walks act on each entry as the listing
  // gives it, and asking the system again would only repeat its answer.
  DWORD RealAttributes(const std::wstring& path);

  std::uint32_t group_ = 0;
  std::function<void(scourel::protocol::Browser)> onBrowserStep_;
  std::vector<Change> changes_;
  std::unordered_set<std::wstring> goneFiles_;        // by FileKey(): files and folders taken
  std::unordered_map<std::wstring, DWORD> attributes_;  // by FileKey(): attributes as recorded
  std::unordered_map<std::wstring, std::wstring> renamed_;  // by FileKey() of the new name: the old path
  std::unordered_map<HANDLE, std::wstring> openFiles_;
  std::unordered_map<std::wstring, std::uint64_t> sizes_;  // by FileKey(): size read through an open
  std::unordered_set<std::wstring> goneKeys_;         // upper-cased full key names
  std::unordered_set<std::wstring> goneValues_;       // upper-cased key name + '\n' + value name
  std::wstring userPrefix_;
  struct Listing {
    std::wstring folder;                // FileKey()
    std::vector<std::wstring> entries;  // FileKey() of each entry listed
    std::vector<std::wstring> asked;    // other names of the folder asked for while it was listed
  };
  std::vector<Listing> listings_;     // the folders being listed, outermost first
  std::optional<Listing> lastListed_;  // the last folder listed whole, until RemoveFolder asks for it
  std::unordered_map<std::wstring, DWORD> listed_;  // by FileKey(): real attributes of their entries
  // A volume's geometry does not change while a preview runs: asked once a drive.
  struct Volume {
    std::error_code spaceError, openError;
    DWORD sectorsPerCluster = 0, bytesPerSector = 0;
    scourel::UniqueHandleKernel handle;
  };
  std::map<std::wstring, Volume> volumes_;
  // The final paths asked last, by the name asked: the link rule asks its
  // base folder's for every file, then the shredder the file's own. Nothing
  // a preview does changes where a name leads.
  struct FinalPathAnswer {
    std::wstring name, reached;
    std::uint64_t used = 0;
  };
  std::array<FinalPathAnswer, 4> finalPaths_;
  std::uint64_t finalPathClock_ = 0;
  const FinalPathAnswer* KnownFinalPath(const std::wstring& name);
  Volume& VolumeOf(const std::wstring& drive);                           // the current user's hive, as the kernel names it
};

// The file-system key of a path: upper case, without "\\?\" and closing backslashes.
std::wstring FileKey(const std::wstring& path);
// A registry key's kernel name in the usual root names (HKEY_CURRENT_USER...).
std::wstring DisplayKeyName(const std::wstring& kernelName, const std::wstring& userPrefix);

}  // namespace overseer
