#include "task/folder_walk.h"


namespace scourel {

void ForEachEntry(const TaskContext& context, const std::wstring& pattern,
                  const std::function<void(const WIN32_FIND_DATAW&)>& visit) {
  context.io.ListFolder(pattern, [&](const WIN32_FIND_DATAW& entry) {
    if (context.stopped()) return false;
    visit(entry);
    return true;
  });
}

void ClearReadOnly(const TaskContext& context, const std::wstring& folder, const WIN32_FIND_DATAW& entry) {
  if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_READONLY) || IsReparsePoint(entry)) return;
  (void)context.io.SetAttributes(folder + entry.cFileName, entry.dwFileAttributes & ~FILE_ATTRIBUTE_READONLY);
}

}  // namespace scourel
