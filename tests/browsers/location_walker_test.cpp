// The folder visitor's attribute calls, seen through the cleaners' io.
#include "browsers/location_walker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/fixtures.h"
#include "task/folder_walk.h"

namespace scourel::test {
namespace {

// A disk that keeps read-only on folders, as Windows marks some shell folders
// and Wine never does: every "." and ".." lists as read-only (".." with
// `dotDotAlso` as well). Entries come in descending name order, not the
// disk's, and every attribute change and folder removal is recorded before
// it is passed on.
struct ReadOnlyFoldersIo : CleanerIo {
  DWORD dotDotAlso = 0;
  std::vector<std::wstring> trace;

  void ListFolder(const std::wstring& pattern, const std::function<bool(const WIN32_FIND_DATAW&)>& visit) override {
    std::vector<WIN32_FIND_DATAW> entries;
    CleanerIo::ListFolder(pattern, [&](const WIN32_FIND_DATAW& entry) {
      entries.push_back(entry);
      return true;
    });
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
      return std::wstring_view(a.cFileName) > std::wstring_view(b.cFileName);
    });
    for (WIN32_FIND_DATAW& entry : entries) {
      if (IsDotEntry(entry)) entry.dwFileAttributes |= FILE_ATTRIBUTE_READONLY;
      if (std::wstring_view(entry.cFileName) == L"..") entry.dwFileAttributes |= dotDotAlso;
      if (!visit(entry)) return;
    }
  }
  std::error_code SetAttributes(const std::wstring& path, DWORD attributes) override {
    trace.push_back(L"A " + path);
    return CleanerIo::SetAttributes(path, attributes);
  }
  std::error_code RemoveFolder(const std::wstring& path) override {
    trace.push_back(L"X " + path);
    return CleanerIo::RemoveFolder(path);
  }
};

// Read-only goes from every listed entry, "." and ".." included, in the order
// of the listing, and never through a link; the emptied folders then go.
TEST(LocationWalkerTest, ClearsReadOnlyOnEveryListedEntryThenRemovesTheEmptiedFolder) {
  for (const DWORD dotDotAlso : {DWORD{0}, DWORD{FILE_ATTRIBUTE_REPARSE_POINT}}) {
    SCOPED_TRACE(dotDotAlso);
    ScratchDir dir(L"location-walker");
    CanaryTree canary(dir / L"canary");
    const std::wstring top = dir / L"top\\", sub = top + L"sub\\";
    MakeDirs(sub);
    ReadOnlyFoldersIo io;
    io.dotDotAlso = dotDotAlso;
    const TaskContext context{g_totals, io, nullptr, 0, Mode::kErase, nullptr, L"", L""};
    LocationWalker(context).VisitFolder(dir.path(), top, Treatment::kWholeTree);

    std::vector<std::wstring> expected = {L"A " + sub + L"..", L"A " + sub + L".", L"X " + sub,
                                          L"A " + top + L"..", L"A " + top + L".", L"X " + top};
    if (dotDotAlso) std::erase_if(expected, [](const std::wstring& call) { return call.ends_with(L".."); });
    EXPECT_EQ(io.trace, expected);
    EXPECT_FALSE(PathExists(top));
    EXPECT_EQ(canary.Damage(), L"");
  }
}

}  // namespace
}  // namespace scourel::test
