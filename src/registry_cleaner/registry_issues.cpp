#include "registry_cleaner/registry_issues.h"

#include "registry_cleaner/scan_keys.h"

namespace scourel {

RegistryFindings g_registry;

namespace {

bool ValidCategory(int category) { return category >= 0 && category < kRegistryCategoryTotal; }

}  // namespace

bool IssueTables::Append(int category, RegistryIssue issue) {
  if (!ValidCategory(category)) return false;
  std::lock_guard<std::mutex> guard(lock_);
  const std::int32_t count = counts_[category].get();
  if (count >= kIssueRowCap) return false;
  std::vector<RegistryIssue>& rows = rows_[category];
  if (static_cast<std::size_t>(count) < rows.size()) {
    rows[count] = std::move(issue);
  } else {
    rows.push_back(std::move(issue));
  }
  counts_[category].set(count + 1);
  return true;
}

void IssueTables::ResetCounts() {
  std::lock_guard<std::mutex> guard(lock_);
  for (auto& count : counts_) count.set(0);
}

std::int32_t IssueTables::Count(int category) const { return ValidCategory(category) ? counts_[category].get() : 0; }

std::vector<RegistryIssue> IssueTables::Rows(int category) const {
  if (!ValidCategory(category)) return {};
  std::lock_guard<std::mutex> guard(lock_);
  const auto& rows = rows_[category];
  return {rows.begin(), rows.begin() + counts_[category].get()};
}

void RegistryFindings::SetProgress(std::wstring keyText) {
  std::lock_guard<std::mutex> guard(lock_);
  progress_ = std::move(keyText);
}

std::wstring RegistryFindings::Progress() const {
  std::lock_guard<std::mutex> guard(lock_);
  return progress_;
}

void RegistryFindings::SetIgnoreList(std::vector<std::wstring> keyTexts) {
  std::lock_guard<std::mutex> guard(lock_);
  ignore_ = std::move(keyTexts);
}

bool RegistryFindings::Ignored(const std::wstring& keyText) const {
  std::lock_guard<std::mutex> guard(lock_);
  for (const auto& entry : ignore_) {
    if (SameTextIgnoringCase(entry, keyText)) return true;
  }
  return false;
}

bool RecordIssue(int category, const std::wstring& rootName, const std::wstring& keyPath, const std::wstring& valueName,
                 const std::wstring& valueData) {
  if (g_registry.Ignored(rootName + L"\\" + keyPath)) return false;
  if (!g_registry.found.Append(category, {rootName, keyPath, valueName, valueData})) return false;
  g_registry.foundTotal.add(1);
  return true;
}

}  // namespace scourel
