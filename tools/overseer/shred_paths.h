// `overseer shred PATH...`: named files, and folders with everything in them,
// shredded in overseer's own process with the worker's shredder, so that the
// same passes, rename and delete reach them. The worker's protocol carries no
// paths, and a shred the user names needs none of the worker's slots.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plugins/plugin_targets.h"

namespace overseer {

// Why a full path must not be shredded: a drive root, the Windows folder or
// anything in it, the folder of all profiles, a whole profile, a Program
// Files folder or a special folder; nullopt when it may be.
std::optional<std::string> ShredRefusal(const std::wstring& fullPath, const scourel::PluginFolders& folders);

struct ShredLine {
  std::wstring path;
  std::string result;  // shredded, deleted, left, link removed, not found
};

// Shreds each path with `method`; folders are walked depth first and never
// through a link (a link is removed, its target left alone). Nothing is
// touched when any path is refused: `refusal` says which and why.
struct ShredRun {
  std::vector<ShredLine> lines;
  std::string refusal;
  bool allDone = true;
};
ShredRun ShredPaths(const std::vector<std::wstring>& paths, unsigned method, const scourel::PluginFolders& folders);

}  // namespace overseer
