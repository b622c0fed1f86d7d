// overseer and a real worker over a sandbox an attacker prepared: beside a
// real target in every place the worker walks, links to canary copies of it;
// linked browser profiles; registry links where keys are deleted; trees
// 2,000 levels deep. Every command completes, no canary changes, and the
// scan after the clean counts what the scan before the planting counted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "common/known_folders.h"
#include "common/registry_links.h"
#include "common/text.h"
#include "overseer_runner.h"
#include "sandbox_snapshot.h"
#include "support/browser_fixture.h"
#include "windows_traces/traces_fixture.h"

namespace scourel::test {
namespace {

// How a hostile name beside a place's target reaches the canary copy.
const struct {
  const wchar_t* name;  // before the target's name
  const wchar_t* ln;
  bool folder;  // names the folder of the place's canary copies
} kLinks[] = {
    {L"link-", L"ln -s", false},  // Wine shows it with plain attributes
    {L"hard-", L"ln", false},     // the canary's data under a second name
    {L"folder-link", L"ln -s", true},  // a reparse point
};

// Where a clean deletes a key: each a link to a canary key.
const struct {
  HKEY root;
  std::wstring path;
} kKeyLinks[] = {
    {HKEY_CURRENT_USER, L"Software\\Microsoft\\Internet Explorer\\TypedURLsTime"},
    {HKEY_CURRENT_USER, L"Software\\Microsoft\\Internet Explorer\\IntelliForms\\Storage2"},
    {HKEY_CURRENT_USER, kTypedPathsKey},
    {HKEY_CURRENT_USER, L"Software\\Microsoft\\scourel-hostile"},  // the plug-in's key
    {HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\scourel-hostile.exe"},
};
constexpr wchar_t kKeyCanaries[] = L"Software\\ScourelHostile";

struct Place {
  std::wstring folder, target;  // a name the walk there takes
  bool deep = false;            // holds a tree 2,000 levels deep, canaries at level 300 and at the bottom
};

std::wstring Levels(int count, wchar_t slash) {
  std::wstring path = L"d";
  for (int i = 1; i < count; ++i) path += slash + std::wstring(L"d");
  return path;
}

// A scan's counts, less what differs from run to run: the worker's process
// and the sizes (overseer's captured output lies in the temporary folder).
std::string Counts(const std::string& json) {
  return std::regex_replace(json, std::regex("\"(worker|text|[a-z_]*size)\": (\\{[^}]*\\}|\"[^\"]*\")"), "");
}

TEST(HostileTreeTest, EveryCommandCompletesTakesItsTargetsAndNoCanary) {
  const WineVersionOf overseerTold(L"overseer.exe", L"win7"), workerTold(L"scourel.exe", L"win7");
  Installed worker(L"hostile-worker");
  WriteFileBytes(worker / L"plugins\\hostile.cv",
                 "[Info]\r\nDelRegKey1=HKEY_CURRENT_USER\\Software\\Microsoft\\scourel-hostile"
                 "\r\nDeleteFile1=%LocalAppData%\\scourel-hostile\r\n");
  const auto run = [&](const std::wstring& command) {
    const OverseerRun done = RunOverseer(worker.Worker(L"--json --browser all --pc all --registry all " + command));
    EXPECT_EQ(done.exitCode, 0) << Narrow(command) << "\n" << done.out << done.err;
    return done.out;
  };
  // The fix takes what a full scan found: overseer runs one before it.
  const std::wstring backup = L"--yes --backup \"" + (worker / L"fix.reg") + L"\" fix registry";
  const auto cleanAll = [&] {
    for (const wchar_t* command : {L"clean junk", L"clean shortcuts", L"clean recycle", L"clean browser",
                                   L"clean pc", L"clean plugins"}) {
      run(command);
    }
    run(backup);
  };
  cleanAll();  // what the sandbox held of its own
  const std::string before = run(L"scan");

  BrowserFixture browsers({.extraProfile = false, .safariGate = false, .held = false});
  ScratchDir canaries(L"hostile-canary"), scratch(L"hostile");
  const std::wstring local = ShellFolderPath(CSIDL_LOCAL_APPDATA), roaming = ShellFolderPath(CSIDL_APPDATA);
  const std::wstring windows = WindowsDirectoryWithBackslash(), gone = scratch / L"gone.exe";
  std::vector<Place> places = {
      {TempFolder() + L"scourel-hostile", L"a.tmp", true},
      {windows + L"temp\\scourel-hostile", L"a.tmp"},
      {windows + L"Logs\\CBS\\scourel-hostile", L"CBS.log"},
      {ShellFolderPath(CSIDL_COMMON_APPDATA) + L"\\Microsoft\\Windows\\WER\\ReportQueue\\scourel-hostile",
       L"Report.wer"},
      {local + L"\\Microsoft\\Windows\\WER\\scourel-hostile", L"Report.wer"},
      {ShellFolderPath(CSIDL_RECENT), L"scourel-hostile.lnk"},
      {roaming + L"\\Microsoft\\Credentials", L"scourel-hostile"},
      {ShellFolderPath(CSIDL_PROFILE) + L"\\scourel-hostile", L"dead.lnk", true},
      {ShellFolderPath(CSIDL_COMMON_PROGRAMS) + L"\\scourel-hostile", L"dead.lnk"},
      {local + L"\\scourel-hostile", L"a.dat"},  // the plug-in's
      {local + L"\\Mozilla\\Firefox\\Profiles\\abcd.default\\Cache", L"a.bin", true},
  };
  for (const std::wstring& file : browsers.TakenFiles()) {
    const std::wstring folder = file.substr(0, file.rfind(L'\\'));
    if (std::ranges::none_of(places, [&](const Place& p) { return p.folder == folder; })) {
      places.push_back({folder, file.substr(folder.size() + 1)});
    }
  }
  // Each moved to the canaries and replaced by a link to it.
  const std::wstring linkedProfiles[] = {
      roaming + L"\\Mozilla\\Firefox\\Profiles\\abcd.default", local + L"\\Google\\Chrome\\User Data\\Default",
      roaming + L"\\Opera\\Opera", roaming + L"\\Apple Computer\\Safari", local + L"\\Microsoft\\Internet Explorer"};

  // Wine cannot delete a link to a file: the host plants and removes all of it.
  const auto sh = [&](const std::wstring& name, const std::wstring& script, const std::wstring& until, bool appears) {
    WriteFileBytes(scratch / name, Narrow(L"set -e\n" + script));
    return RunUnix(L"sh '" + UnixPath(scratch / name) + L"'", until, appears, 60000);
  };
  std::wstring plant, unplant = L"rm -rf", bottoms;
  const auto unix = [](const std::wstring& path) { return L" '" + UnixPath(path) + L"'"; };
  WriteFileBytes(gone, "x");
  for (size_t i = 0; i < places.size(); ++i) {
    const Place& place = places[i];
    const std::wstring copies = canaries / std::to_wstring(i);
    const bool existed = PathExists(place.folder);
    for (const std::wstring& folder : {place.folder, copies}) {
      MakeDirs(folder);
      const std::wstring path = folder + L"\\" + place.target;
      if (!place.target.ends_with(L".lnk")) WriteFileBytes(path, "target " + Narrow(path));
      else ASSERT_TRUE(CreateShortcut(path, gone));
    }
    unplant += unix(existed ? place.folder + L"\\" + place.target : place.folder);
    for (const auto& link : kLinks) {
      const std::wstring name = place.folder + L"\\" + link.name + (link.folder ? L"" : place.target);
      plant += link.ln + unix(link.folder ? copies : copies + L"\\" + place.target) + unix(name) + L"\n";
      unplant += unix(name);
    }
    if (!place.deep) continue;
    // Built a step at a time: the whole path outgrows the host's PATH_MAX.
    const std::wstring steps = L"cd" + unix(place.folder + L"\\deep") + L" && cd -P " + Levels(300, L'/');
    plant += L"mkdir -p" + unix(place.folder) + L"/deep/" + Levels(300, L'/') + L"\n(" + steps +
             L" && printf canary > deep.txt && mkdir -p " + Levels(1700, L'/') + L" && cd -P " +
             Levels(1700, L'/') + L" && printf canary > bottom.txt)\n";
    unplant += unix(place.folder + L"\\deep");
    bottoms += L"(" + steps + L" && cd -P " + Levels(1700, L'/') + L" && test \"$(cat bottom.txt)\" = canary)\n";
  }
  ::DeleteFileW(gone.c_str());
  for (size_t i = 0; i < std::size(linkedProfiles); ++i) {
    const std::wstring from = unix(linkedProfiles[i]), to = unix(canaries / (L"profile" + std::to_wstring(i)));
    plant += L"mv" + from + to + L"\nln -s" + to + from + L"\n";
    unplant += from;
  }
  unplant += unix(canaries.path()) + unix(scratch.path());
  const Cleanup unplanted([&] { sh(L"unplant.sh", unplant, scratch.path(), false); });
  ASSERT_TRUE(sh(L"plant.sh", plant + L"touch" + unix(scratch / L"planted"), scratch / L"planted", true));
  // The bin gets targets only: under Wine, recycling a file link moves its
  // target into the bin, and emptying the bin deletes a link's target.
  ASSERT_TRUE(PlantRecycledFiles(scratch / L"bin", 2, 100));

  PlantedRegistry keyCanaries;
  const Cleanup keyLinksRemoved([] {
    for (const auto& link : kKeyLinks) (void)DeleteKeyTreeUnfollowed(link.root, link.path, 0);
  });
  for (size_t i = 0; i < std::size(kKeyLinks); ++i) {
    const std::wstring canary = kKeyCanaries + (L"\\" + std::to_wstring(i));
    keyCanaries.Plant(HKEY_LOCAL_MACHINE, canary, L"", gone);  // names a missing program
    keyCanaries.Plant(HKEY_LOCAL_MACHINE, canary, L"url1", L"http://example.com/");
    ::RegDeleteTreeW(kKeyLinks[i].root, kKeyLinks[i].path.c_str());
    ASSERT_TRUE(MakeRegistryLink(kKeyLinks[i].root, kKeyLinks[i].path, canary)) << Narrow(kKeyLinks[i].path);
  }
  const Snapshot kept = TakeSnapshot({canaries.path()}, {{HKEY_LOCAL_MACHINE, kKeyCanaries}});

  run(L"scan");
  cleanAll();
  EXPECT_EQ(Counts(run(L"scan")), Counts(before));
  EXPECT_THAT(TakeSnapshot({canaries.path()}, {{HKEY_LOCAL_MACHINE, kKeyCanaries}}), testing::ContainerEq(kept));
  // Past the walks' depth: left.
  for (const Place& place : places) {
    if (place.deep) {
      EXPECT_EQ(ReadFileBytes(place.folder + L"\\deep\\" + Levels(300, L'\\') + L"\\deep.txt"), "canary");
    }
  }
  EXPECT_TRUE(sh(L"bottoms.sh", bottoms + L"touch" + unix(scratch / L"bottoms"), scratch / L"bottoms", true));
}

}  // namespace
}  // namespace scourel::test
