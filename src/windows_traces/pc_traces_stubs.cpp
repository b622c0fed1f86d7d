// Placeholders until the PC-traces cleaners land.
#include "windows_traces/pc_traces.h"

#include "common/win.h"
#include "host/worker_state.h"

namespace scourel {

int ScanRecentDocuments() { return 0; }
int CleanRecentDocuments() { return 0; }
int ScanRunHistory() { return 0; }
int CleanRunHistory() { return 0; }
int ScanSearchWords() { return 0; }
int CleanSearchWords() { return 0; }
int ScanCredentials() { return 0; }
int CleanCredentials() { return 0; }
int ScanScanDiskFiles() { return 0; }
int CleanScanDiskFiles() { return 0; }
int SetClearPageFile() { return 0; }

void EmptyClipboardStep() {
  if (::OpenClipboard(g_commandWindow)) {
    ::EmptyClipboard();
    ::CloseClipboard();
  }
}

}  // namespace scourel
