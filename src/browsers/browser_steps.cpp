#include "browsers/browser_steps.h"

#include <optional>

namespace scourel {

namespace {

constexpr wchar_t kFirefoxProfiles[] = L"\\Mozilla\\Firefox\\Profiles\\";

// One run of one category: the conditions, the profile name and Chrome's
// extra profile are worked out when first needed and then kept.
class StepRunner {
 public:
  StepRunner(const TaskContext& context, protocol::BrowserCategory category, OsVersion version)
      : context_(context), category_(category), version_(version), walker_(context) {}

  void Run(const BrowserStep& step) {
    if (!Passes(step.gate)) return;
    // Base folders are fetched afresh for every location.
    const std::optional<std::wstring> base = BaseFolder(step.base);
    if (!base) return;
    const std::wstring path = *base + L"\\" + std::wstring(step.path);
    BrowserTotals& totals = context_.totals.browser;
    if (step.treatment == Treatment::kSingleFile) {
      walker_.VisitFile(path, totals.cell(step.browser, category_).tally());
      return;
    }
    totals.ZeroCurrent();
    walker_.VisitFolder(path + L"\\", step.treatment);
    totals.AddCurrentTo(step.browser, category_);
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
      case Gate::kChromeDefault: {
        const std::wstring local = LocalAppData();
        return !local.empty() && PathPresent(local + L"\\Google\\Chrome\\User Data\\Default");
      }
      case Gate::kSafariNamedProfile:
        // A relative name: it is looked up in the current directory.
        return !ProfileName().empty() && PathPresent(ProfileName());
      case Gate::kExtraChromeProfile:
        if (!SearchesExtraChromeProfile(version_)) return false;
        extraProfile_ = FindExtraChromeProfile(context_);
        return true;
      case Gate::kOperaOld: return Opera() == OperaLayout::kOld;
      case Gate::kOperaNew: return Opera() == OperaLayout::kNew;
    }
    return false;
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
      case Base::kFirefoxLocal: return below(LocalAppData(), kFirefoxProfiles + ProfileName());
      case Base::kFirefoxRoaming: return below(RoamingAppData(), kFirefoxProfiles + ProfileName());
      // Without a "Profile" folder this is empty, and the location becomes
      // a folder at the root of the current drive: kept so.
      case Base::kChromeExtra: return extraProfile_;
    }
    return std::nullopt;
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
  std::optional<bool> gates_[static_cast<int>(Gate::kOperaNew) + 1];
  std::optional<std::wstring> profileName_;
  std::optional<std::wstring> extraProfile_;
  std::optional<OperaLayout> opera_;
};

}  // namespace

CategorySteps StepsOf(protocol::BrowserCategory category) {
  switch (category) {
    case protocol::BrowserCategory::kCache: return {category, CacheSteps()};
    default: return {category, {}};
  }
}

void RunCategorySteps(const TaskContext& context, const CategorySteps& steps, OsVersion version) {
  StepRunner runner(context, steps.category, version);
  for (const BrowserStep& step : steps.steps) {
    if (context.stopped()) return;
    runner.Run(step);
  }
}

}  // namespace scourel
