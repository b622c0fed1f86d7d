// The registry cleaner through a real worker: the full scan's registry
// records on the seeded registry, then the two fix commands.
#include <gtest/gtest.h>

#include "protocol/categories.h"
#include "registry_cleaner/registry_issues.h"
#include "support/registry_seed.h"
#include "support/worker_harness.h"

namespace scourel::test {
namespace {

TEST(RegistryWorkerTest, ScanRecordsThenFixCommands) {
  SeededRegistry seed;
  WorkerHarness worker(L"registry-worker");
  ASSERT_TRUE(worker.Started());
  worker.Send(2087);
  const auto counts = worker.WaitForCopyData(107);
  const auto extensions = worker.WaitForCopyData(108);  // after 109, whose order the overseer scan test checks
  ASSERT_TRUE(counts && extensions);
  EXPECT_EQ(counts->text, L"2\\cv 3\\cv 3\\cv 2\\cv 2\\cv 1\\cv 1\\cv 2\\cv 4\\cv 1\\cv 2\\cv 0\\cv");
  EXPECT_EQ(extensions->text, std::to_wstring(kSeedExtensions));
  ASSERT_TRUE(worker.WaitForCopyData(106));

  for (const auto& registrySwitch : protocol::kRegistrySwitches) {
    const bool on = registrySwitch.category == kCatEmptyKeys || registrySwitch.category == kCatTypes;
    worker.WriteSetting(L"IDS_C" + std::wstring(registrySwitch.keySuffix), on ? L"TRUE" : L"FALSE");
  }
  worker.Send(2037);
  ASSERT_TRUE(worker.WaitFor(2038));
  EXPECT_EQ(seed.Damage({kCatEmptyKeys, kCatTypes}), L"");
  EXPECT_EQ(worker.Send(2043), 0);  // returns once the fix is done
  ASSERT_TRUE(worker.WaitFor(2044));
  EXPECT_EQ(seed.Damage({kCatEmptyKeys, kCatTypes, kCatExtensions}), L"");
}

}  // namespace
}  // namespace scourel::test
