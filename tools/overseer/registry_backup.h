// A .reg file of everything a registry fix may delete, written just before
// the fix. overseer runs the worker's own scans in this process, checks that
// they find what the worker's scan reported, and saves, for every row the
// fix will take, the row's key with all below it, and the key above it (a fix
// may take an emptied parent along). reg import puts back whatever the fix
// deleted; what it did not delete is written again as it was.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "overseer/reply_decoding.h"
#include "registry_cleaner/registry_issues.h"

namespace overseer {

// Why no backup could be written, or nullopt when it was; *keys: keys saved.
std::optional<std::string> WriteFixBackup(const std::wstring& file, const std::vector<int>& categories,
                                          const std::vector<DecodedReply>& workerScan, std::size_t* keys);

// The .reg text of the rows as the registry holds them now; an error when a
// key or value cannot be written so that an import restores it exactly.
std::optional<std::string> RegistryBackupText(const std::vector<scourel::RegistryIssue>& rows, bool withParents,
                                              std::wstring* text, std::size_t* keys);

}  // namespace overseer
