#include "windows_traces/recent_documents.h"

#include "common/known_folders.h"
#include "task/folder_walk.h"
#include "task/trace_file.h"
#include "windows_traces/pc_traces.h"

namespace scourel {

void VisitRecentDocuments(const TaskContext& context, const std::wstring& folder) {
  const Tally tally = context.totals.byteTotalWith(context.totals.pc(protocol::PcStep::kDocuments));
  // Text after ".lnk" still matches (notes.lnk.old).
  ForEachEntry(context, folder + L"\\*.lnk*", [&](const WIN32_FIND_DATAW& entry) {
    // Every entry counts, whatever the shredder makes of it; a folder (or a
    // link to one) is counted and left whole.
    if (!IsDotEntry(entry)) TakeTraceFile(context, FromListing(folder + L"\\" + entry.cFileName, entry), {Probe::kNone}, tally);
  });
  if (context.erasing() && !context.stopped()) context.io.ClearRecentDocuments();
}

void RecentDocuments(const TaskContext& context) {
  const std::wstring folder = ShellFolderPath(CSIDL_RECENT);
  if (!folder.empty()) {
    VisitRecentDocuments(context, folder);
  } else if (context.erasing()) {
    context.io.ClearRecentDocuments();
  }
}

}  // namespace scourel
