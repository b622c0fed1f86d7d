// Every recursive folder walk stops at the depth bound on a thread with the
// worker's stack, over a tree with no bottom: under Wine no real tree reaches
// the bound (names past MAX_PATH fail first), so the listing is the seam.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "browsers/location_walker.h"
#include "common/known_folders.h"
#include "common/text.h"
#include "plugins/plugin_definitions.h"
#include "support/fixtures.h"
#include "task/folder_walk.h"
#include "windows_traces/dead_shortcuts.h"
#include "windows_traces/junk_walker.h"

namespace scourel::test {
namespace {

// Below `root`, every folder holds one folder "d" and one file "f.log",
// for ever. Records the deepest level listed.
struct BottomlessIo : CleanerIo {
  std::wstring root;
  int deepest = -1;

  void ListFolder(const std::wstring& pattern, const std::function<bool(const WIN32_FIND_DATAW&)>& visit) override {
    if (!SameTextIgnoringCase(pattern.substr(0, root.size()), root)) return CleanerIo::ListFolder(pattern, visit);
    int level = 0;
    for (std::size_t at = root.size() - 1; (at = pattern.find(L"\\d\\", at)) != std::wstring::npos; ++at) ++level;
    deepest = std::max(deepest, level);
    for (const auto& [name, attributes] : {std::pair{L".", FILE_ATTRIBUTE_DIRECTORY}, {L"..", FILE_ATTRIBUTE_DIRECTORY},
                                           {L"d", FILE_ATTRIBUTE_DIRECTORY}, {L"f.log", FILE_ATTRIBUTE_ARCHIVE}}) {
      WIN32_FIND_DATAW entry{};
      entry.dwFileAttributes = attributes;
      std::wcscpy(entry.cFileName, name);
      if (!visit(entry)) return;
    }
  }
};

TEST(FolderDepthTest, EveryWalkStopsAtTheBoundOnAWorkerSizedStack) {
  const std::wstring local = ShellFolderPath(CSIDL_LOCAL_APPDATA), profile = ShellFolderPath(CSIDL_PROFILE);
  const struct {
    const char* walk;
    std::wstring top;  // a real folder; the tree below it has no bottom
    std::function<void(const TaskContext&)> run;
    int above = 0;  // levels from where the walk starts down to `top`
  } cases[] = {
      {"temporary files", local + L"\\scourel-deep-temp", [&](const TaskContext& c) {
         JunkWalker(c).TempFolderWalk(local + L"\\scourel-deep-temp\\", false, true); }},
      {"report tree", local + L"\\scourel-deep-tree", [&](const TaskContext& c) {
         JunkWalker(c).TreeWalk(local + L"\\scourel-deep-tree\\", false, true); }},
      {"logs", local + L"\\scourel-deep-logs", [&](const TaskContext& c) {
         JunkWalker(c).LogWalk(local + L"\\scourel-deep-logs"); }},
      {"browser location", local + L"\\scourel-deep-cache", [&](const TaskContext& c) {
         LocationWalker(c).VisitFolder(local, local + L"\\scourel-deep-cache\\", Treatment::kWholeTree); }},
      {"shortcuts", profile + L"\\scourel-deep-links", [&](const TaskContext& c) { DeadShortcuts(c); }, 1},
      {"plug-in folder", local + L"\\scourel-deep-plugin", [&](const TaskContext& c) {
         RunPlugin(c, {true, L"deep", {{EntryKind::kFile, 1, L"%LocalAppData%\\scourel-deep-plugin"}}}); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.walk);
    MakeDirs(c.top);
    const Cleanup removed = RemovedAtEnd({c.top});
    BottomlessIo io;
    io.root = c.top + L"\\";
    const TaskContext context{g_totals, io, nullptr, 0, Mode::kMeasure, nullptr, L"", L""};
    // The worker's task threads take the default stack, as this one does.
    // An overflow shows as a walk that ends short of the bound: under Wine
    // the thread just dies, and even its exit code says nothing.
    std::function<void()> walk = [&] { c.run(context); };
    const UniqueHandleKernel thread(::CreateThread(nullptr, 0, [](void* walk) -> DWORD {
      (*static_cast<std::function<void()>*>(walk))();
      return 0;
    }, &walk, 0, nullptr));
    ASSERT_TRUE(thread);
    ASSERT_EQ(::WaitForSingleObject(thread.get(), 60000), WAIT_OBJECT_0);
    EXPECT_EQ(io.deepest + c.above, kMaxFolderDepth);
  }
}

}  // namespace
}  // namespace scourel::test
