// What a browser of today keeps in a profile folder, per browser family: one
// table each, a row per file or folder with the category that takes it.
// Nothing else in a profile is ever named: bookmarks, preferences,
// extensions and their data, certificates and "Local State" have no row.
#pragma once

#include <span>
#include <string_view>

#include "protocol/categories.h"

namespace overseer {

enum class BrowserFamily { kChromium, kFirefox };

enum class Place {
  kData,   // the profile folder itself
  kCacheFolder,  // its twin under local application data, where caches go
};

struct LocationRow {
  std::wstring_view path;  // below the profile folder; "folder\*": each folder in it, but extensions
  bool folder;             // a folder goes with everything in it
  Place place;
  scourel::protocol::BrowserCategory category;
};

std::span<const LocationRow> LocationsOf(BrowserFamily family);

}  // namespace overseer
