#include "windows_traces/credentials.h"

#include "common/known_folders.h"
#include "task/folder_walk.h"
#include "task/trace_file.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

void VisitCredentialFiles(const TaskContext& context, const std::wstring& baseFolder) {
  const std::wstring folder = baseFolder + L"\\Microsoft\\Credentials";
  const Tally tally = context.totals.byteTotalWith(context.totals.pc(protocol::PcStep::kNetwork));
  ForEachEntry(context, folder + L"\\*.*", [&](const WIN32_FIND_DATAW& entry) {
    // Folders (and "." and "..") do not open under the probe; neither do
    // files in use. Both are passed over.
    if (IsFolder(entry)) return;
    TakeTraceFile(context, FromListing(folder + L"\\" + entry.cFileName, entry), {}, tally);
  });
}

void Credentials(const TaskContext& context) {
  // Roaming first, then local.
  for (const int csidl : {CSIDL_APPDATA, CSIDL_LOCAL_APPDATA}) {
    const std::wstring base = ShellFolderPath(csidl);
    if (!base.empty()) VisitCredentialFiles(context, base);
  }
}

}  // namespace scourel
