#include "overseer/shred_paths.h"

#include "common/text.h"
#include "common/unique_handle.h"
#include "common/win.h"
#include "overseer/report_output.h"
#include "task/folder_walk.h"
#include "wipe/file_shred.h"

namespace overseer {

namespace {

std::wstring FullPathOf(const std::wstring& path) {
  wchar_t full[MAX_PATH * 4] = {};
  const DWORD length = ::GetFullPathNameW(path.c_str(), MAX_PATH * 4, full, nullptr);
  std::wstring out = length && length < MAX_PATH * 4 ? std::wstring(full, length) : path;
  while (out.size() > 3 && (out.back() == L'\\' || out.back() == L'/')) out.pop_back();
  return out;
}

// "a" is "b", or a folder that holds it.
bool Covers(const std::wstring& a, const std::wstring& b) {
  if (b.empty() || a.size() > b.size()) return false;
  if (!scourel::SameTextIgnoringCase(std::wstring_view(b).substr(0, a.size()), a)) return false;
  return a.size() == b.size() || b[a.size()] == L'\\' || a.back() == L'\\';
}

// `listed`: the folder walk found the name, so a path that no longer
// resolves is a link whose target is gone. Goes as deep as the worker's
// walks: a deeper folder is left whole, so no tree can end overseer.
void ShredTree(const std::wstring& path, unsigned method, ShredRun& run, bool listed = false, int depth = 0) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES && listed && ::DeleteFileW(path.c_str())) {
    run.lines.push_back({path, "dangling link removed"});
    return;
  }
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    run.lines.push_back({path, "not found"});
    run.allDone = false;
    return;
  }
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
    if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) {
      const bool removed = ::RemoveDirectoryW(path.c_str()) != 0;
      run.lines.push_back({path, removed ? "link removed, its target left alone" : "link left"});
      run.allDone = run.allDone && removed;
      return;
    }
    if (depth >= scourel::kMaxFolderDepth) {
      run.lines.push_back({path, "folder left: deeper than the walk goes"});
      run.allDone = false;
      return;
    }
    WIN32_FIND_DATAW found{};
    scourel::UniqueFindHandle find(::FindFirstFileW((path + L"\\*").c_str(), &found));
    if (find) {
      do {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..") ShredTree(path + L"\\" + name, method, run, true, depth + 1);
      } while (::FindNextFileW(find.get(), &found));
    }
    find.reset();
    const bool removed = ::RemoveDirectoryW(path.c_str()) != 0;
    run.lines.push_back({path, removed ? "folder removed" : "folder left"});
    run.allDone = run.allDone && removed;
    return;
  }
  scourel::CFileShred shredder;
  switch (shredder.Shred(path, method)) {
    case scourel::ShredOutcome::kOverwrittenAndDeleted: run.lines.push_back({path, "shredded"}); return;
    case scourel::ShredOutcome::kDeletedWithoutOverwrite:
      run.lines.push_back({path, "deleted, not overwritten (a link, or data another name shares)"});
      return;
    case scourel::ShredOutcome::kReachesAnotherFile:
      run.lines.push_back({path, "left: the name leads to another file (a link), which is not overwritten"});
      run.allDone = false;
      return;
    case scourel::ShredOutcome::kLeftInPlace:
    case scourel::ShredOutcome::kStopped: break;
  }
  run.lines.push_back({path, "left in place (it would not open)"});
  run.allDone = false;
}

}  // namespace

std::optional<std::string> ShredRefusal(const std::wstring& full, const scourel::PluginFolders& folders) {
  if (full.size() <= 3) return "a drive root";
  if (Covers(folders.windows, full)) return "the Windows folder or something in it";
  const std::size_t slash = folders.profile.rfind(L'\\');
  if (slash != std::wstring::npos && Covers(full, folders.profile.substr(0, slash))) return "the folder of all profiles";
  if (Covers(full, folders.profile)) return "a whole profile";
  for (const std::wstring& folder : folders.programFiles) {
    if (Covers(full, folder)) return "a Program Files folder";
  }
  std::vector<std::wstring> special = folders.special;
  special.insert(special.end(), folders.tokens.begin(), folders.tokens.end());
  for (const std::wstring& folder : special) {
    if (Covers(full, folder)) return "a whole special folder";
  }
  return std::nullopt;
}

ShredRun ShredPaths(const std::vector<std::wstring>& paths, unsigned method, const scourel::PluginFolders& folders) {
  ShredRun run;
  std::vector<std::wstring> full;
  for (const std::wstring& path : paths) {
    full.push_back(FullPathOf(path));
    if (const auto why = ShredRefusal(full.back(), folders)) {
      run.refusal = "refused to shred " + Utf8(full.back()) + ": " + *why;
      run.allDone = false;
      return run;
    }
  }
  for (const std::wstring& path : full) ShredTree(path, method, run);
  return run;
}

}  // namespace overseer
