#include "task/trace_file.h"

#include "task/file_probe.h"
#include "task/link_rule.h"

namespace scourel {

namespace {

bool PassesProbe(const TaskContext& context, const TraceFile& file, const TraceRule& rule) {
  switch (rule.probe) {
    case Probe::kNone:
      return true;
    case Probe::kRead:
      return ReadProbe(file.path);
    case Probe::kReadWrite:
      if (!context.erasing() && rule.readOnlyCleared && (file.attributes & FILE_ATTRIBUTE_READONLY)) {
        return ReadProbeSharingWrite(file.path);
      }
      return context.erasing() ? context.io.ProbeReadWrite(file.path) : ReadWriteProbe(file.path);
  }
  return false;
}

}  // namespace

bool TakeTraceFile(const TaskContext& context, const TraceFile& file, const TraceRule& rule, Tally tally) {
  // What a listing shows as a folder or a link is not a file of ours to
  // overwrite: it is counted as found, and left. A file that shows plain but
  // whose name reaches another file (a unix symlink under Wine) is a location
  // reached through a link: neither counted nor touched.
  const bool plainFile = !(file.attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT));
  const std::wstring folder = file.path.substr(0, file.path.rfind(L'\\') + 1);
  if (context.stopped() || (plainFile && !ReachedWithoutLinks(context.io, folder, file.path)) ||
      !PassesProbe(context, file, rule)) {
    return false;
  }
  std::uint64_t size = 0;
  switch (rule.size) {
    case SizeFrom::kListing: size = file.listedSize; break;
    case SizeFrom::kReadOpen: size = SizeByReadProbe(file.path); break;
    case SizeFrom::kNothing: break;
  }
  const bool counted = context.Record([&] {
    tally.count.add(1);
    if (rule.size != SizeFrom::kNothing) AddBytes(tally.bytes, size);
  });
  if (!counted) return false;
  if (context.erasing() && plainFile) ShredFile(context, file.path);
  return true;
}

ShredOutcome ShredFile(const TaskContext& context, const std::wstring& path) {
  CFileShred shredder(context.io, context.stop, context.window);
  return shredder.Shred(path, context.wipeMethod);
}

}  // namespace scourel
