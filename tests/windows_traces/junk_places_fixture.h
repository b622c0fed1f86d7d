// Junk planted in the real places the junk-file task walks (the sandbox's
// temp folder, Windows folder and error-report folders), with links from
// the temp and report folders to a canary that must survive.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/fixtures.h"

namespace scourel::test {

class PlantedJunk {
 public:
  // Plants everything; `name` keeps the planted folders apart per test.
  explicit PlantedJunk(const std::wstring& name);
  ~PlantedJunk();
  PlantedJunk(const PlantedJunk&) = delete;
  PlantedJunk& operator=(const PlantedJunk&) = delete;

  bool ok() const { return ok_; }
  // What a measure or a clean adds for the planted files alone.
  std::int32_t first() const { return 2; }   // two temporary files
  std::int32_t second() const { return 5; }  // dump, two logs, two reports
  float bytes() const { return 1000 + 300 + 700 + 250 + 60 + 100 + 50; }

  // Files a clean must erase / keep.
  const std::vector<std::wstring>& erased() const { return erased_; }
  const std::vector<std::wstring>& kept() const { return kept_; }
  std::wstring Damage() const { return canary_->Damage(); }
  // The temp folder subfolder whose tree a clean removes, top folders kept.
  std::wstring tempSubfolder() const { return tempSub_; }

 private:
  std::wstring tempSub_;
  std::vector<std::wstring> erased_;
  std::vector<std::wstring> kept_;
  std::vector<std::wstring> cleanup_;
  std::vector<std::wstring> links_;
  std::unique_ptr<ScratchDir> canaryDir_;
  std::unique_ptr<CanaryTree> canary_;
  bool ok_ = false;
};

// Removes a link made by MakeUnixSymlink from the host side (Wine's own
// RemoveDirectoryW and DeleteFileW refuse a link to a folder).

std::wstring TempDir();
std::wstring LocalAppDataDir();

}  // namespace scourel::test
