// Registry symbolic links: a key created with REG_OPTION_CREATE_LINK whose
// REG_LINK "SymbolicLinkValue" names another key, which every ordinary open
// reaches instead (CurrentControlSet is one). Nothing deleted or emptied
// through here ever reaches past a link: a key on the way that is a link
// stops the open, and a link that is itself to go goes as a link.
#pragma once

#include <string>
#include <system_error>

#include "common/registry_key.h"

namespace scourel {

struct UnfollowedKey {
  OpenedKey opened;
  bool isLink = false;  // the key opened is a link itself, not what it names
};

// Opens root\path one key at a time with REG_OPTION_OPEN_LINK. A key before
// the last that is a link fails the open (ERROR_CANT_RESOLVE_FILENAME); the
// last is opened as itself, link or not. `access` gains KEY_QUERY_VALUE.
[[nodiscard]] UnfollowedKey OpenRegKeyUnfollowed(HKEY root, const std::wstring& path, REGSAM access);
// The same, failing also when the last key is a link: for reading or
// deleting values, which would otherwise land in the key a link names.
[[nodiscard]] OpenedKey OpenRegKeyWithoutLinks(HKEY root, const std::wstring& path, REGSAM access);

bool IsRegistryLink(HKEY key);
// Deletes the key the handle holds (a link as a link), when it has no subkeys.
[[nodiscard]] std::error_code DeleteOpenedKey(HKEY key);
// Deletes root\path with everything below it, never descending through a
// link: a link met on the way is deleted as a link. Walks with a stack of
// its own, so no depth can exhaust the thread's.
[[nodiscard]] std::error_code DeleteKeyTreeUnfollowed(HKEY root, const std::wstring& path, REGSAM view);

}  // namespace scourel
