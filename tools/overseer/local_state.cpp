#include "overseer/local_state.h"

// Browsers write this file; a bad one must give a result, never end overseer.
// The library's non-throwing parse is used, and nothing below can throw.
#define JSON_NOEXCEPTION
#include <nlohmann/json.hpp>

#include "common/win.h"
#include "plugins/plugin_format.h"

namespace overseer {

std::wstring FromUtf8(std::string_view text) { return scourel::DecodeIniBytes(text, CP_UTF8); }

std::optional<std::vector<ListedProfile>> ParseLocalState(std::string_view bytes) {
  const nlohmann::json document = nlohmann::json::parse(bytes.begin(), bytes.end(), nullptr, false);
  if (document.is_discarded() || !document.is_object()) return std::nullopt;
  const auto profile = document.find("profile");
  if (profile == document.end() || !profile->is_object()) return std::nullopt;
  const auto cache = profile->find("info_cache");
  if (cache == profile->end() || !cache->is_object()) return std::nullopt;
  std::vector<ListedProfile> listed;
  for (const auto& [folder, entry] : cache->items()) {
    ListedProfile row{FromUtf8(folder), {}};
    if (entry.is_object()) {
      const auto name = entry.find("name");
      if (name != entry.end() && name->is_string()) row.displayName = FromUtf8(name->get_ref<const std::string&>());
    }
    listed.push_back(std::move(row));
  }
  return listed;
}

}  // namespace overseer
