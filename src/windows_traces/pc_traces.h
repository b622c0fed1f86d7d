// The PC-traces cleaners, each counting into its own PC-traces counter
// (task_totals.h) and, where it finds files, the byte total.
#pragma once

namespace scourel {

// Recent documents list.
int ScanRecentDocuments();
int CleanRecentDocuments();
// Run box, stream and typed-path history lists.
int ScanRunHistory();
int CleanRunHistory();
// Explorer search words.
int ScanSearchWords();
int CleanSearchWords();
// Stored network credentials.
int ScanCredentials();
int CleanCredentials();
// Files that disk checking leaves behind.
int ScanScanDiskFiles();
int CleanScanDiskFiles();
// Empties the clipboard, owned by the worker's command window.
void EmptyClipboardStep();
// Asks Windows to clear the page file at shutdown (needs administrator rights).
int SetClearPageFile();

}  // namespace scourel
