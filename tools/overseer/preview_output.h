// A preview as text: a block per group with its totals and every item, or
// one JSON document (schema "overseer-preview", described in the README).
#pragma once

#include <string>

#include "overseer/preview.h"

namespace overseer {

// "file", "left", "folder", "attributes", "key", "value", "value_set",
// "clipboard", "recycle_bins", "recent_documents", "url_cache_entry".
std::string ChangeKindName(ChangeKind kind);
// Why a file stays, from its open's error: "held open by another program"...
std::string LeftReason(std::uint32_t error);

// "browser / cache / chrome"
std::string GroupTitle(const PreviewGroup& group);
// One item as a JSON object: kind, name, and what the kind carries.
std::string ItemJson(const Change& change);
// Attribute changes of what is taken anyway are no change of their own:
// every shown item of each group, in the order made.
std::vector<std::vector<const Change*>> ItemsByGroup(const Preview& preview);

std::string PreviewTable(const std::string& command, const Preview& preview);
std::string PreviewJson(const std::string& command, const Preview& preview);

}  // namespace overseer
