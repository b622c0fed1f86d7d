// The recent-documents list: the shortcuts in the user's Recent folder.
#pragma once

#include <string>

namespace scourel {

// Counts each entry matching "<folder>\*.lnk*" and adds its size to the byte total.
void ScanRecentDocumentsIn(const std::wstring& folder);
// Counts the same entries, shreds each, then calls clearShellList once the
// listing ends, whether or not anything was found.
void CleanRecentDocumentsIn(const std::wstring& folder, void (*clearShellList)());

}  // namespace scourel
