// overseer preview over planted traces of every area: its totals are the
// real worker's scan replies for the same state, its items are the planted
// ones, and the sandbox is byte for byte as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "common/known_folders.h"
#include "overseer/report_output.h"
#include "protocol/messages.h"
#include "registry_cleaner/registry_issues.h"
#include "overseer_runner.h"
#include "sandbox_snapshot.h"
#include "support/browser_fixture.h"
#include "support/registry_seed.h"
#include "support/worker_harness.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

using nlohmann::json;
using testing::ContainerEq;

// The preview's group, null when the preview has none.
json Group(const json& preview, const std::string& area, const std::string& category = "",
           const std::string& owner = "") {
  for (const json& group : preview["groups"]) {
    if (group["area"] == area && group["category"] == category && group["owner"] == owner) return group;
  }
  return {};
}

// The fields of a scan's reply of this kind.
json ScanFields(const json& scan, unsigned kind) {
  for (const json& reply : scan["replies"]) {
    if (reply.value("kind", 0u) == kind) return reply["fields"];
  }
  return {};
}

// A group's count, or a field beside its counts; null when absent.
json Count(const json& group, const std::string& name) {
  return group.is_object() ? group.value("counts", json::object()).value(name, group.value(name, json())) : json();
}

// The items below a folder, as "kind name[ bytes][ error][ reason]" lines, the name after the folder.
std::set<std::string> ItemsBelow(const json& items, const std::wstring& folder) {
  const std::string root = overseer::Utf8(folder);
  std::set<std::string> lines;
  for (const json& item : items) {
    const std::string name = item["name"];
    if (!name.starts_with(root)) continue;
    std::string line = item["kind"].get<std::string>().append(" ").append(name.substr(root.size()));
    for (const char* extra : {"bytes", "error", "reason"}) {
      const json value = item.value(extra, json());
      if (!value.is_null()) line.append(" ").append(value.is_string() ? value.get<std::string>() : value.dump());
    }
    lines.insert(line);
  }
  return lines;
}

// What the junk and plug-in cleans take. In the temporary folder: a
// read-only file, a plain one, one another program holds open for reading
// only (it passes the probe, so it is counted, but the shredder's open
// fails) and empty folders that go once their files are gone. In Local
// AppData: a log a plug-in of the worker's names beside an entry the worker refuses.
struct PlantedJunk {
  explicit PlantedJunk(const Installed& worker) : plugins(worker / L"plugins") {
    MakeDirs(folder + L"\\empty\\deeper");
    WriteFileBytes(folder + L"\\readonly.tmp", std::string(1000, 'r'));
    MakeReadOnly(folder + L"\\readonly.tmp");
    WriteFileBytes(folder + L"\\plain.tmp", std::string(300, 'p'));
    WriteFileBytes(held, "held");
    holder = UniqueHandleKernel(
        ::CreateFileW(held.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    WriteFileBytes(logs + L"\\a.log", std::string(200, 'a'));
    WriteFileBytes(plugins + L"\\logs.cv",
              "[Info]\r\nDeleteFile1=%LocalAppData%\\scourel-preview\\*.log\r\nDeleteFile2=C:\\boot.ini\r\n");
  }
  const std::wstring folder = TempFolder() + L"scourel-preview", held = folder + L"\\held.tmp";
  const std::wstring plugins, logs = ShellFolderPath(CSIDL_LOCAL_APPDATA) + L"\\scourel-preview";
  const Cleanup removed = RemovedAtEnd({folder, plugins, logs});
  UniqueHandleKernel holder;
};

TEST(PreviewTest, TotalsAreTheWorkersScanItemsThePlantedOnesAndNothingChanges) {
  const WineVersionOf overseerTold(L"overseer.exe", L"win7"), workerTold(L"scourel.exe", L"win7");
  BrowserFixture browsers({.extraProfile = false, .safariGate = false});
  SeededRegistry seed;
  const RegistryCanary canary;
  PlantList(kRunMruKey, {{L"a", L"cmd\\1"}, {L"b", L"notepad"}, {L"MRUList", L"ba"}});
  Installed worker(L"preview-e2e");
  const PlantedJunk junk(worker);
  ASSERT_TRUE(junk.holder);

  const std::vector<std::wstring> folders = {ShellFolderPath(CSIDL_PROFILE), ShellFolderPath(CSIDL_COMMON_APPDATA),
                                             worker.path()};
  std::vector<std::pair<HKEY, std::wstring>> keys = seed.Keys();
  keys.emplace_back(HKEY_CURRENT_USER, L"Software");
  // overseer's captured output comes and goes in the temporary folder; Wine
  // writes its volatile desktop parameters when a fresh wineserver's first
  // window program starts.
  const auto snapshot = [&] {
    Snapshot taken = TakeSnapshot(folders, keys);
    std::erase_if(taken, [](const auto& entry) {
      return entry.first.find(L"overseer-run-") != std::wstring::npos ||
             entry.first.find(L"Software\\Wine\\Temporary System Parameters") != std::wstring::npos ||
             entry.first == TempFolder().substr(0, TempFolder().size() - 1);
    });
    return taken;
  };
  const Snapshot before = snapshot();
  const OverseerRun preview = RunOverseer(worker.Worker(L"--json --browser all --pc all --registry all preview all"));
  ASSERT_EQ(preview.exitCode, 0) << preview.out << preview.err;
  EXPECT_THAT(snapshot(), ContainerEq(before));
  const json document = json::parse(preview.out);
  EXPECT_EQ(document["schema"], "overseer-preview");
  EXPECT_EQ(document["version"], 1);

  const OverseerRun scan = RunOverseer(worker.Worker(L"--json --timeout 120 scan"));
  ASSERT_EQ(scan.exitCode, 0) << scan.out << scan.err;
  const json scanned = json::parse(scan.out);

  // Area by area: the preview's counts against the scan's fields.
  const struct {
    std::string group, category, owner;
    unsigned kind;
    std::vector<std::pair<std::string, std::string>> fields;  // preview's name, scan's name
  } areas[] = {
      {"junk", "", "", 101, {{"temporary_files", "temporary_files"}, {"other_files", "other_junk_files"},
                             {"size", "size"}}},
      {"shortcuts", "", "", 102, {{"dead_shortcuts", "dead_shortcuts"}}},
      {"recycle", "", "", 103, {{"recycle_bin_items", "recycle_bin_items"}}},
      {"pc", "run_history", "", 104, {{"run_history", "run_history"}}},
      {"pc", "documents", "", 104, {{"documents", "documents"}}},
      {"pc", "network", "", 104, {{"network", "network"}}},
      {"plugins", "", "logs", 106, {{"plugin_items", "plugin_items"}, {"size", "size"}}},
      {"registry", "com", "", 107, {{"com", "com"}}},
      {"registry", "paths", "", 107, {{"paths", "paths"}}},
      {"registry", "current_user", "", 107, {{"current_user", "current_user"}}},
      {"extensions", "file_extensions", "", 108, {{"file_extensions", "entries"}}},
  };
  for (const auto& area : areas) {
    const json group = Group(document, area.group, area.category, area.owner);
    for (const auto& [ours, theirs] : area.fields) {
      EXPECT_EQ(Count(group, ours), Count(ScanFields(scanned, area.kind), theirs)) << area.group << " " << ours;
    }
  }
  // Browser traces: the preview is the clean's count, per browser.
  for (int c = 0; c < protocol::kBrowserCategoryCount; ++c) {
    const auto category = static_cast<protocol::BrowserCategory>(c);
    for (int b = 0; b < protocol::kBrowserCount; ++b) {
      const std::string name(protocol::kBrowserCategoryNames[c]);
      const json count = Count(Group(document, "browser", name, std::string(protocol::kBrowserNames[b])), name);
      EXPECT_EQ(count.is_null() ? 0 : count.get<int>(),
                browsers.Of(static_cast<protocol::Browser>(b), category, CleanEverything()).count)
          << protocol::kBrowserCategoryNames[c] << " " << protocol::kBrowserNames[b];
    }
  }

  // A history list goes with its key, every value counted.
  const json runMru = {{"kind", "key"}, {"name", "HKEY_CURRENT_USER\\" + overseer::Utf8(kRunMruKey)},
                       {"subkeys", 0}, {"values", 3}};
  EXPECT_EQ(std::ranges::count(Group(document, "pc", "run_history")["items"], runMru), 1);
}

// A clean with a receipt: what it took, and what it left and why (a file
// held open, a plug-in entry the worker refuses). Both lists come from the
// preview before the clean, so they also pin the preview's items.
TEST(PreviewTest, ReceiptListsWhatTheCleanTookAndWhatItLeftAndWhy) {
  Installed worker(L"preview-receipt");
  const PlantedJunk junk(worker);
  ASSERT_TRUE(junk.holder);

  const struct {
    std::wstring target, root;
    std::set<std::string> taken, left;
  } cases[] = {
      {L"junk", junk.folder,
       {"file \\readonly.tmp 1000", "file \\plain.tmp 300", "folder \\empty\\deeper", "folder \\empty"},
       {"left \\held.tmp 32 held open by another program"}},
      {L"plugins", junk.logs, {"file \\a.log 200"}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.target.begin(), c.target.end()));
    const std::wstring receipt = worker / (c.target + L".json");
    const OverseerRun run = RunOverseer(worker.Worker(L"--timeout 120 --receipt \"" + receipt + L"\" clean " + c.target));
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    const json text = json::parse(ReadFileBytes(receipt));
    EXPECT_EQ(text["schema"], "overseer-receipt");
    EXPECT_EQ(text["status"], "completed");
    EXPECT_NE(run.out.find("receipt   " + text["summary"].get<std::string>() + " ("), std::string::npos) << run.out;
    EXPECT_EQ(ItemsBelow(text["taken"], c.root), c.taken) << text;
    EXPECT_EQ(ItemsBelow(text["left"], c.root), c.left) << text;
  }
  // The refused entry is left, named as written.
  EXPECT_EQ(ItemsBelow(json::parse(ReadFileBytes(worker / L"plugins.json"))["left"], L"C:\\boot.ini"),
            std::set<std::string>{"refused  no folder token before the first \\"});
}

// Links are neither followed nor taken; a name outside the BMP is listed as
// it is; a file past MAX_PATH, which the worker's walk does not reach under
// Wine, is not listed and the clean leaves it. The preview changes nothing.
TEST(PreviewTest, LinksStayAndLongAndNonBmpNamesAreListedAsTheCleanTakesThem) {
  Installed worker(L"preview-names");
  const CanaryTree canary(worker / L"canary");
  const std::wstring folder = TempFolder() + L"scourel-preview-names", link = folder + L"\\file-link.tmp";
  const Cleanup removed = RemovedAtEnd({folder});
  const Cleanup unlinked([&] { RemoveUnixLink(link); });
  std::wstring distant = L"\\\\?\\" + folder;
  for (wchar_t part = L'a'; part < L'k'; ++part) distant += L"\\" + std::wstring(30, part);
  distant += L"\\far.tmp";
  ASSERT_GT(distant.size(), static_cast<std::size_t>(MAX_PATH));
  WriteFileBytes(distant, "far");
  const std::wstring smile = L"\\smile-\U0001F600.tmp";
  WriteFileBytes(folder + smile, "smile");
  ASSERT_TRUE(MakeUnixSymlink(canary.root() + L"\\canary.txt", link));
  ASSERT_TRUE(MakeUnixSymlink(canary.root() + L"\\sub", folder + L"\\folder-link"));

  const Snapshot before = TakeSnapshot({folder, canary.root()}, {});
  const OverseerRun preview = RunOverseer(worker.Worker(L"--json preview junk"));
  ASSERT_EQ(preview.exitCode, 0) << preview.out << preview.err;
  EXPECT_EQ(ItemsBelow(Group(json::parse(preview.out), "junk")["items"], folder),
            std::set<std::string>{"file " + overseer::Utf8(smile) + " 5"}) << preview.out;
  EXPECT_THAT(TakeSnapshot({folder, canary.root()}, {}), ContainerEq(before));
  ASSERT_EQ(RunOverseer(worker.Worker(L"--timeout 120 clean junk")).exitCode, 0);
  EXPECT_FALSE(PathExists(folder + smile));
  EXPECT_TRUE(PathExists(distant));  // links beside junk through a clean: the hostile test
}

// However the clean ends, the receipt is written and says why what it was
// to take is still there: a worker that answers the clean with "stopped",
// and one that never answers.
TEST(PreviewTest, ReceiptOfAStoppedOrUnfinishedCleanSaysWhyItemsWereLeft) {
  CloseRunningWorkers();
  ScratchDir dir(L"preview-receipt-ends");
  const std::wstring folder = TempFolder() + L"scourel-receipt-ends";
  const Cleanup removed = RemovedAtEnd({folder});
  WriteFileBytes(folder + L"\\left.tmp", "left");
  const struct {
    bool stops;
    std::string status, reason;
  } cases[] = {{true, "stopped", "the task was stopped"}, {false, "failed", "the clean did not finish"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.status);
    const WindowThread worker(protocol::kWorkerClass, protocol::kWorkerWindowTitle,
                              [&](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
                                if (message != 2034) return std::nullopt;  // junk's start; 2036 its "stopped"
                                if (c.stops) ::PostMessageW(::FindWindowW(protocol::kControllerClass, nullptr), 2036, 0, 0);
                                return 0;
                              });
    const std::wstring receipt = dir / L"receipt.json";
    const OverseerRun run = RunOverseer(L"--timeout " + std::wstring(c.stops ? L"120" : L"1") + L" --receipt \"" +
                                        receipt + L"\" clean junk");
    EXPECT_EQ(run.exitCode, c.stops ? 3 : 1) << run.out << run.err;
    const json text = json::parse(ReadFileBytes(receipt));
    EXPECT_EQ(text["status"], c.status);
    EXPECT_EQ(ItemsBelow(text["left"], folder), (std::set<std::string>{"file \\left.tmp 4 " + c.reason, "folder  " + c.reason}))
        << text;
  }
}

// A fix needs the worker's last scan: one that overseer starts for a receipt
// scans first, so the fix takes what the preview listed.
TEST(PreviewTest, FixWithAReceiptScansInTheWorkerItStarts) {
  SeededRegistry seed;
  Installed worker(L"preview-fix-receipt");
  const std::wstring receipt = worker / L"fix.json";
  const OverseerRun run = RunOverseer(worker.Worker(L"--timeout 120 --yes --receipt \"" + receipt + L"\" fix extensions"));
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  const json totals = json::parse(ReadFileBytes(receipt))["totals"];
  EXPECT_NE(totals["taken"], 0) << totals;
  EXPECT_EQ(totals["left"], 0) << totals;
  EXPECT_EQ(seed.Damage({kCatExtensions}), L"");
}

}  // namespace
}  // namespace scourel::test
