#include "task/link_rule.h"

#include "common/final_path.h"
#include "common/win.h"

namespace scourel {

namespace {

// Absolute, so that a location relative to the current drive or folder is
// checked where it really lies, and without its closing backslash.
std::wstring Absolute(const std::wstring& given) {
  if (given.empty()) return {};
  std::wstring path(given.size() + MAX_PATH, L'\0');
  const DWORD length = ::GetFullPathNameW(given.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
  if (length == 0 || length >= path.size()) return given;
  path.resize(length);
  while (path.size() > 3 && path.back() == L'\\') path.pop_back();
  return path;
}

bool IsLinkOrMissing(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

}  // namespace

bool ReachedWithoutLinks(CleanerIo& io, const std::wstring& base, const std::wstring& location) {
  // An empty location is the current folder, as a listing of it would be.
  const std::wstring path = Absolute(location.empty() ? L"." : location);
  std::wstring root = Absolute(base);
  const bool below = !root.empty() && path.size() >= root.size() &&
                     ::CompareStringOrdinal(path.c_str(), static_cast<int>(root.size()), root.c_str(),
                                            static_cast<int>(root.size()), TRUE) == CSTR_EQUAL &&
                     (path.size() == root.size() || path[root.size()] == L'\\' || root.back() == L'\\');
  if (!below) root.clear();
  // Every folder after the base shows its link in its attributes (a
  // junction, or a directory symlink under Wine)...
  const std::size_t start = root.empty() ? 3 : root.size() + 1;  // a drive's root is never a link
  for (std::size_t at = path.find(L'\\', start); at != std::wstring::npos; at = path.find(L'\\', at + 1)) {
    if (IsLinkOrMissing(path.substr(0, at))) return false;
  }
  if (path.size() > root.size() && IsLinkOrMissing(path)) return false;
  // ...but a unix symlink to a file does not, and a folder swapped since the
  // check would not either: the handle's final path tells.
  const std::wstring reached = io.FinalPathOf(path);
  if (root.empty()) return SamePathName(path, reached);
  const std::wstring rootReached = io.FinalPathOf(root);
  return !rootReached.empty() && SamePathName(rootReached + path.substr(root.size()), reached);
}

}  // namespace scourel
