#include "browsers/browser_steps.h"

#include <optional>

#include "browsers/url_cache_cookies.h"
#include "common/known_folders.h"
#include "common/registry_links.h"

namespace scourel {

namespace {

constexpr wchar_t kFirefoxProfiles[] = L"\\Mozilla\\Firefox\\Profiles\\";

bool IsFolderTreatment(Treatment treatment) {
  switch (treatment) {
    case Treatment::kSingleFile:
    case Treatment::kKeyValues:
    case Treatment::kUrlCacheCookies: return false;
    default: return true;
  }
}

// A key's values are counted when it opens with full access and no registry
// link leads to it; a clean deletes it with everything below it whether or
// not it opened (a link there goes as a link).
void TakeKeyValues(const TaskContext& context, const std::wstring& path, Tally tally) {
  if (const OpenedKey opened = OpenRegKeyWithoutLinks(HKEY_CURRENT_USER, path, KEY_ALL_ACCESS)) {
    const auto values = static_cast<std::int32_t>(CountsOf(opened.get()).values);
    context.Record([&] { tally.count.add(values); });
  }
  if (context.erasing()) (void)context.io.DeleteKeyTree(HKEY_CURRENT_USER, path);
}

// One run of one category: the conditions, the profile name and Chrome's
// extra profile are worked out when first needed and then kept.
class StepRunner {
 public:
  StepRunner(const TaskContext& context, protocol::BrowserCategory category, OsVersion version)
      : context_(context), category_(category), version_(version), walker_(context) {}

  void Run(const BrowserStep& step) {
    if (!Passes(step.gate)) return;
    const std::optional<std::wstring> location = Location(step);
    if (!location) return;
    context_.io.EnterBrowserStep(step.browser);
    BrowserTotals& totals = context_.totals.browser;
    const protocol::BrowserCategory column = step.column.value_or(category_);
    CountAndBytes& cell = totals.cell(step.browser, column);
    switch (step.treatment) {
      case Treatment::kSingleFile:
        if (walker_.VisitFile(RootOf(step.base), *location, cell.tally())) context_.Record([&] { AlsoCount(step.also, 1); });
        return;
      case Treatment::kKeyValues:
        TakeKeyValues(context_, *location, cell.tally());
        return;
      case Treatment::kUrlCacheCookies:
        // The entries are counted apart from the cell; their bytes join it.
        TakeUrlCacheCookies(context_, *location, {totals.ieCookieEntries, cell.bytes});
        return;
      default:
        break;
    }
    context_.Record([&] { totals.ZeroCurrent(); });
    walker_.VisitFolder(RootOf(step.base), *location, step.treatment);
    // Nothing a stopped task found reaches the totals its stop reported.
    context_.Record([&] {
      totals.AddCurrentTo(step.browser, column);
      AlsoCount(step.also, totals.current.count.get());
    });
  }

 private:
  bool Passes(Gate gate) {
    std::optional<bool>& known = gates_[static_cast<int>(gate)];
    if (!known) known = Test(gate);
    return *known;
  }

  bool Test(Gate gate) {
    switch (gate) {
      case Gate::kAlways: return true;
      case Gate::kFirefoxData: return FirefoxPathPresent(LocalAppData());
      case Gate::kFirefoxProfile: return FirefoxPathPresent(RoamingAppData());
      case Gate::kChromeDefault: return Below(LocalAppData(), L"\\Google\\Chrome\\User Data\\Default");
      case Gate::kSafariNamedProfile:
        // A relative name: it is looked up in the current directory.
        return !ProfileName().empty() && PathPresent(ProfileName());
      case Gate::kSafariRoaming: return Below(RoamingAppData(), L"\\Apple Computer\\Safari");
      case Gate::kSafariCookies: return Below(RoamingAppData(), L"\\Apple Computer\\Safari\\Cookies");
      case Gate::kOperaNewFolder: return Below(LocalAppData(), L"\\Opera Software\\Opera Stable");
      case Gate::kExtraChromeProfile:
        if (!SearchesExtraChromeProfile(version_)) return false;
        extraProfile_ = FindExtraChromeProfile(context_);
        return true;
      case Gate::kOperaOld: return Opera() == OperaLayout::kOld;
      case Gate::kOperaNew: return Opera() == OperaLayout::kNew;
    }
    return false;
  }

  static bool Below(const std::wstring& base, const wchar_t* rest) {
    return !base.empty() && PathPresent(base + rest);
  }

  bool FirefoxPathPresent(const std::wstring& base) {
    return !base.empty() && IsUsableProfileName(ProfileName()) &&
           PathPresent(base + kFirefoxProfiles + ProfileName() + L"\\");
  }

  // Nothing when the base is unknown: the place is left out rather than
  // looked for from the root of a drive.
  std::optional<std::wstring> BaseFolder(Base base) {
    auto below = [](std::wstring folder, const std::wstring& rest) -> std::optional<std::wstring> {
      if (folder.empty()) return std::nullopt;
      return folder + rest;
    };
    switch (base) {
      case Base::kLocal: return below(LocalAppData(), L"");
      case Base::kRoaming: return below(RoamingAppData(), L"");
      case Base::kChromeDefaultProfile: return below(LocalAppData(), L"\\Google\\Chrome\\User Data\\Default");
      case Base::kFirefoxLocal: return below(LocalAppData(), kFirefoxProfiles + ProfileName());
      case Base::kFirefoxRoaming: return below(RoamingAppData(), kFirefoxProfiles + ProfileName());
      // Without a "Profile" folder this is empty, and the location becomes
      // a folder at the root of the current drive: kept so.
      case Base::kChromeExtra: return extraProfile_;
      case Base::kWindows: return below(WindowsDirectoryWithBackslash(), L"");
      case Base::kCurrentUser:
      case Base::kUrlCache: return std::wstring();
    }
    return std::nullopt;
  }

  // The folder below which no link may lead: a Firefox profile folder, or
  // Chrome's extra one, is checked as part of the way.
  static std::wstring RootOf(Base base) {
    switch (base) {
      case Base::kLocal:
      case Base::kChromeDefaultProfile:
      case Base::kFirefoxLocal:
      case Base::kChromeExtra: return LocalAppData();
      case Base::kRoaming:
      case Base::kFirefoxRoaming: return RoamingAppData();
      case Base::kWindows: return WindowsDirectoryWithBackslash();
      case Base::kCurrentUser:
      case Base::kUrlCache: break;
    }
    return {};
  }

  // The base, fetched afresh, joined with the step's path, and a closing
  // backslash for a folder.
  std::optional<std::wstring> Location(const BrowserStep& step) {
    if (step.base == Base::kCurrentUser || step.base == Base::kUrlCache) return std::wstring(step.path);
    std::optional<std::wstring> location = BaseFolder(step.base);
    if (!location) return std::nullopt;
    if (!step.path.empty()) {
      if (location->empty() || location->back() != L'\\') *location += L'\\';
      *location += step.path;
    }
    if (IsFolderTreatment(step.treatment) && step.treatment != Treatment::kIndexFilesBare) *location += L'\\';
    return location;
  }

  void AlsoCount(AlsoCounted also, std::int32_t count) {
    switch (also) {
      case AlsoCounted::kNowhere: return;
      case AlsoCounted::kFirefoxOfflineCacheCounter: context_.totals.browser.firefoxOfflineCache.add(count); return;
      case AlsoCounted::kIconsCounter: context_.totals.browser.icons.add(count); return;
    }
  }

  const std::wstring& ProfileName() {
    if (!profileName_) profileName_ = FirefoxProfileName();
    return *profileName_;
  }

  OperaLayout Opera() {
    if (!opera_) opera_ = ChooseOperaLayout();
    return *opera_;
  }

  const TaskContext& context_;
  protocol::BrowserCategory category_;
  OsVersion version_;
  LocationWalker walker_;
  std::optional<bool> gates_[static_cast<int>(Gate::kOperaNewFolder) + 1];
  std::optional<std::wstring> profileName_;
  std::optional<std::wstring> extraProfile_;
  std::optional<OperaLayout> opera_;
};

}  // namespace

CategorySteps StepsOf(protocol::BrowserCategory category) {
  switch (category) {
    case protocol::BrowserCategory::kCache: return {category, CacheSteps()};
    case protocol::BrowserCategory::kCookies: return {category, CookieSteps()};
    case protocol::BrowserCategory::kHistory: return {category, HistorySteps()};
    case protocol::BrowserCategory::kAutocomplete: return {category, LoginSteps()};
    case protocol::BrowserCategory::kSession: return {category, SessionSteps()};
    case protocol::BrowserCategory::kDownloadHistory: return {category, DownloadSteps()};
    case protocol::BrowserCategory::kAddressBar: return {category, AddressBarSteps()};
    case protocol::BrowserCategory::kProgramFiles: return {category, ProgramFileSteps()};
    case protocol::BrowserCategory::kIndex: return {category, TrackingCacheSteps()};
    case protocol::BrowserCategory::kIcons: return {category, IconSteps()};
  }
  return {category, {}};
}

void RunCategorySteps(const TaskContext& context, const CategorySteps& steps, OsVersion version) {
  StepRunner runner(context, steps.category, version);
  for (const BrowserStep& step : steps.steps) {
    if (context.stopped()) return;
    runner.Run(step);
  }
}

}  // namespace scourel
