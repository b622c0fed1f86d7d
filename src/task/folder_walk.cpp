#include "task/folder_walk.h"

#include "common/unique_handle.h"

namespace scourel {

void ForEachEntry(const TaskContext& context, const std::wstring& pattern,
                  const std::function<void(const WIN32_FIND_DATAW&)>& visit) {
  WIN32_FIND_DATAW entry;
  const UniqueFindHandle find(::FindFirstFileW(pattern.c_str(), &entry));
  if (!find) return;
  do {
    if (context.stopped()) return;
    visit(entry);
  } while (::FindNextFileW(find.get(), &entry));
}

}  // namespace scourel
