#include "windows_traces/recycle_bin.h"

#include <vector>

#include "common/win.h"

namespace scourel {

namespace {

// Adds every drive root's Recycle Bin to the item counter and to `bytes`.
void QueryAllBins(const TaskContext& context, Relaxed<float>& bytes) {
  const DWORD length = ::GetLogicalDriveStringsW(0, nullptr);
  if (length == 0) return;
  std::vector<wchar_t> roots(length + 2, L'\0');
  if (::GetLogicalDriveStringsW(static_cast<DWORD>(roots.size()), roots.data()) == 0) return;
  // A list of zero-terminated roots, ended by an empty one.
  for (const wchar_t* root = roots.data(); *root; root += wcslen(root) + 1) {
    if (context.stopped()) return;
    SHQUERYRBINFO info{};
    info.cbSize = sizeof info;
    if (FAILED(::SHQueryRecycleBinW(root, &info))) continue;
    context.Record([&] {
      context.totals.recycleBinItems.add(static_cast<std::int32_t>(info.i64NumItems));
      AddBytes(bytes, static_cast<std::uint64_t>(info.i64Size));
    });
  }
}

}  // namespace

void RecycleBins(const TaskContext& context) {
  if (!context.erasing()) {
    QueryAllBins(context, context.totals.recycleBinBytes);
    return;
  }
  QueryAllBins(context, context.totals.byteTotal);
  // Emptying the bin does not shred: the bin's files go as the shell deletes them.
  if (!context.stopped()) context.io.EmptyRecycleBins();
}

}  // namespace scourel
