// The profile list of a Chromium-family browser's "Local State" file: the
// folder names of "profile.info_cache" with the name each profile shows.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace overseer {

struct ListedProfile {
  std::wstring folder;       // as written: checked by the caller before use
  std::wstring displayName;  // empty when the entry has none
};

// The file is rewritten by the browser at any moment, so it may be cut short
// or garbage: nullopt unless it is JSON whose "profile.info_cache" is an
// object. Entries that are not objects still list their folder.
std::optional<std::vector<ListedProfile>> ParseLocalState(std::string_view bytes);

// Text from UTF-8 (a leading byte-order mark dropped); invalid sequences
// become U+FFFD.
std::wstring FromUtf8(std::string_view text);

}  // namespace overseer
