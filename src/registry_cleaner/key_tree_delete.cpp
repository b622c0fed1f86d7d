#include "registry_cleaner/key_tree_delete.h"

#include "common/registry_links.h"
#include "common/registry_paths.h"

namespace scourel {

namespace {

bool DeleteDirectly(CleanerIo& io, HKEY root, const std::wstring& path, REGSAM view) {
  return !io.DeleteKey(root, path, view);
}

// `deleted` counts the keys removed below, so that a child whose deletion
// takes nothing away is not tried again: it would fail the same way forever.
int DeleteTree(CleanerIo& io, HKEY root, const std::wstring& path, REGSAM view, int& deleted) {
  if (DeleteDirectly(io, root, path, view)) {
    ++deleted;
    return 0;
  }
  // A link fails here, and the direct delete above took it as a link.
  const OpenedKey key = OpenRegKeyWithoutLinks(root, path, KEY_ALL_ACCESS | view);
  if (!key) return -1;
  const std::wstring base = path.empty() || path.back() != L'\\' ? path + L'\\' : path;
  std::wstring child = EnumSubkeyName(key.get(), 0);
  if (child.empty()) return -1;
  while (!child.empty()) {
    if (base.size() + child.size() > kDeletePathChars) break;
    const int before = deleted;
    if (DeleteTree(io, root, base + child, view, deleted) == 0) break;
    if (deleted == before) break;
    child = EnumSubkeyName(key.get(), 0);
  }
  if (!DeleteDirectly(io, root, path, view)) return -1;
  ++deleted;
  return 0;
}

}  // namespace

int DeleteKeyTree(CleanerIo& io, HKEY root, const std::wstring& path, REGSAM view) {
  // An empty path would name the root itself.
  if (path.empty() || path.size() > kDeletePathChars) return -1;
  int deleted = 0;
  return DeleteTree(io, root, path, view, deleted);
}

}  // namespace scourel
