#include "overseer/command_plan.h"

#include <gtest/gtest.h>

namespace overseer {
namespace {

constexpr unsigned kCopy = 74;

struct PlanCase {
  Verb verb;
  Target target;
  bool secondSet;
  unsigned message;
  EndOn end;
  std::vector<ReplyKey> awaited;
  std::vector<ReplyKey> stoppedBy;
};

TEST(OverseerCommandPlanTest, MessageAndCompletionOfEachCommand) {
  const PlanCase cases[] = {
      {Verb::kClean, Target::kJunk, false, 2034, EndOn::kAwaitedReplies, {{2035, 0}}, {{2036, 0}}},
      {Verb::kClean, Target::kJunk, true, 2058, EndOn::kAwaitedReplies, {{2059, 0}}, {{2060, 0}}},
      {Verb::kClean, Target::kShortcuts, false, 2040, EndOn::kAwaitedReplies, {{2041, 0}}, {{2042, 0}}},
      {Verb::kClean, Target::kShortcuts, true, 2064, EndOn::kAwaitedReplies, {{2065, 0}}, {{2066, 0}}},
      {Verb::kClean, Target::kRecycle, false, 2052, EndOn::kAwaitedReplies, {{2053, 0}}, {{2054, 0}}},
      {Verb::kClean, Target::kRecycle, true, 2076, EndOn::kAwaitedReplies, {{2077, 0}}, {{2078, 0}}},
      {Verb::kClean, Target::kBrowser, false, 2046, EndOn::kAwaitedReplies, {{kCopy, 305}}, {{kCopy, 306}}},
      {Verb::kClean, Target::kBrowser, true, 2070, EndOn::kAwaitedReplies, {{2071, 0}}, {{2072, 0}}},
      {Verb::kClean, Target::kPc, false, 2049, EndOn::kAwaitedReplies, {{kCopy, 303}}, {{kCopy, 304}}},
      {Verb::kClean, Target::kPc, true, 2073, EndOn::kAwaitedReplies, {{2074, 0}}, {{2075, 0}}},
      {Verb::kClean, Target::kPlugins, false, 2055, EndOn::kAwaitedReplies, {{2056, 0}}, {{2057, 0}}},
      {Verb::kClean, Target::kPlugins, true, 2079, EndOn::kAwaitedReplies, {{2080, 0}}, {{2081, 0}}},
      {Verb::kFix, Target::kRegistry, false, 2037, EndOn::kAwaitedReplies, {{2038, 0}}, {{2063, 0}}},
      {Verb::kFix, Target::kRegistry, true, 2061, EndOn::kAwaitedReplies, {{2062, 0}}, {{2063, 0}}},
      {Verb::kFix, Target::kExtensions, false, 2043, EndOn::kAwaitedReplies, {{2044, 0}}, {}},
      {Verb::kFix, Target::kExtensions, true, 2067, EndOn::kAwaitedReplies, {{2068, 0}}, {}},
      {Verb::kStop, Target::kJunk, false, 2036, EndOn::kSendReturns, {{2036, 0}}, {}},
      {Verb::kStop, Target::kBrowser, false, 2048, EndOn::kSendReturns, {{kCopy, 306}}, {}},
      {Verb::kStop, Target::kBrowser, true, 2072, EndOn::kSendReturns, {{2072, 0}}, {}},
      {Verb::kStop, Target::kPc, false, 2051, EndOn::kSendReturns, {{kCopy, 304}}, {}},
      {Verb::kStop, Target::kPc, true, 2075, EndOn::kSendReturns, {{2075, 0}}, {}},
      {Verb::kStop, Target::kRegistry, false, 2063, EndOn::kSendReturns, {{2063, 0}}, {}},
      {Verb::kStop, Target::kPlugins, true, 2081, EndOn::kSendReturns, {{2081, 0}}, {}},
      {Verb::kStop, Target::kScan, false, 2088, EndOn::kSendReturns, {}, {}},
      {Verb::kClose, Target::kNone, false, 16, EndOn::kProcessExit, {}, {}},
  };
  for (const PlanCase& c : cases) {
    Options options;
    options.verb = c.verb;
    options.target = c.target;
    options.secondSet = c.secondSet;
    SCOPED_TRACE(testing::Message() << CommandName(c.verb, c.target) << (c.secondSet ? " second set" : ""));
    const auto plan = PlanFor(options);
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->message, c.message);
    EXPECT_EQ(plan->end, c.end);
    EXPECT_EQ(plan->awaited, c.awaited);
    EXPECT_EQ(plan->stoppedBy, c.stoppedBy);
    EXPECT_EQ(plan->needsRunningWorker, c.verb == Verb::kStop || c.verb == Verb::kClose);
  }
}

TEST(OverseerCommandPlanTest, ScanAwaitsTheNineKindsInOrder) {
  Options options;
  options.verb = Verb::kScan;
  const auto plan = PlanFor(options);
  ASSERT_TRUE(plan);
  EXPECT_EQ(plan->message, 2087u);
  std::vector<unsigned> kinds;
  for (const ReplyKey& key : plan->awaited) {
    EXPECT_EQ(key.id, kCopy);
    kinds.push_back(key.kind);
  }
  EXPECT_EQ(kinds, (std::vector<unsigned>{101, 107, 109, 102, 108, 105, 104, 103, 106}));
}

TEST(OverseerCommandPlanTest, SettingsSendsNothing) {
  Options options;
  options.verb = Verb::kSettings;
  EXPECT_FALSE(PlanFor(options));
}

}  // namespace
}  // namespace overseer
