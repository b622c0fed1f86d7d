#include "overseer/local_state.h"

// Browsers write this file; a bad one must give a result, never end overseer.
// The library's non-throwing parse is used, and nothing below can throw.
#define JSON_NOEXCEPTION
#include <nlohmann/json.hpp>

#include "common/win.h"

namespace overseer {

std::wstring FromUtf8(std::string_view text) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
  if (length <= 0) return {};
  std::wstring wide(static_cast<size_t>(length), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
  return wide;
}

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
