#include "overseer/preview_output.h"

#include <algorithm>
#include <unordered_set>

#include "overseer/report_output.h"
#include "protocol/size_text.h"

namespace overseer {

namespace {

std::string JsonText(const std::string& ascii) { return JsonString(std::wstring(ascii.begin(), ascii.end())); }

std::string AttributeText(std::uint32_t attributes) {
  std::string text;
  for (const auto& [bit, name] : {std::pair<DWORD, const char*>{FILE_ATTRIBUTE_READONLY, "read-only"},
                                  {FILE_ATTRIBUTE_HIDDEN, "hidden"},
                                  {FILE_ATTRIBUTE_SYSTEM, "system"},
                                  {FILE_ATTRIBUTE_ARCHIVE, "archive"}}) {
    if (!(attributes & bit)) continue;
    if (!text.empty()) text += '+';
    text += name;
  }
  return text.empty() ? "normal" : text;
}

}  // namespace

std::string GroupTitle(const PreviewGroup& group) {
  std::string title = group.area;
  if (!group.category.empty()) title += " / " + group.category;
  if (!group.owner.empty()) title += " / " + group.owner;
  return title;
}

namespace {

std::string CountsText(const PreviewGroup& group) {
  std::string text;
  for (const auto& [name, count] : group.counts) text += (text.empty() ? "" : ", ") + name + " " + std::to_string(count);
  if (group.hasBytes) text += (text.empty() ? "" : ", ") + Utf8(scourel::SizeText(static_cast<float>(group.bytes)));
  return text;
}

std::string ItemLine(const Change& change) {
  std::string line = "  " + ChangeKindName(change.kind);
  line.append(line.size() < 20 ? 20 - line.size() : 1, ' ');
  line += Utf8(change.name);
  switch (change.kind) {
    case ChangeKind::kFile: line += "  (" + std::to_string(change.bytes) + " bytes)"; break;
    case ChangeKind::kFileLeft: line += "  (counted, stays: " + LeftReason(change.before) + ")"; break;
    case ChangeKind::kRefused: line += "  (refused: " + change.reason + ")"; break;
    case ChangeKind::kAttributes:
      line += "  (" + AttributeText(change.before) + " -> " + AttributeText(change.after) + ")";
      break;
    case ChangeKind::kKey:
      line += "  (with " + std::to_string(change.subkeys) + " subkeys, " + std::to_string(change.values) + " values)";
      break;
    default: break;
  }
  return line + "\n";
}

}  // namespace

std::string ItemJson(const Change& change) {
  std::string out = "{\"kind\": " + JsonText(ChangeKindName(change.kind)) + ", \"name\": " + JsonString(change.name);
  switch (change.kind) {
    case ChangeKind::kFile: out += ", \"bytes\": " + std::to_string(change.bytes); break;
    case ChangeKind::kFileLeft:
      out += ", \"error\": " + std::to_string(change.before) + ", \"reason\": " + JsonText(LeftReason(change.before));
      break;
    case ChangeKind::kRefused: out += ", \"reason\": " + JsonText(change.reason); break;
    case ChangeKind::kAttributes:
      out += ", \"before\": " + std::to_string(change.before) + ", \"after\": " + std::to_string(change.after);
      break;
    case ChangeKind::kKey:
      out += ", \"subkeys\": " + std::to_string(change.subkeys) + ", \"values\": " + std::to_string(change.values);
      break;
    default: break;
  }
  return out + "}";
}

std::vector<std::vector<const Change*>> ItemsByGroup(const Preview& preview) {
  std::unordered_set<std::wstring> taken;
  for (const Change& change : preview.changes) {
    if (change.kind == ChangeKind::kFile || change.kind == ChangeKind::kFolder) taken.insert(FileKey(change.name));
  }
  std::vector<std::vector<const Change*>> items(preview.groups.size());
  for (const Change& change : preview.changes) {
    if (change.group >= items.size()) continue;
    if (change.kind == ChangeKind::kAttributes && taken.count(FileKey(change.name))) continue;
    items[change.group].push_back(&change);
  }
  return items;
}


std::string ChangeKindName(ChangeKind kind) {
  switch (kind) {
    case ChangeKind::kFile: return "file";
    case ChangeKind::kFileLeft: return "left";
    case ChangeKind::kFolder: return "folder";
    case ChangeKind::kAttributes: return "attributes";
    case ChangeKind::kKey: return "key";
    case ChangeKind::kValue: return "value";
    case ChangeKind::kValueSet: return "value_set";
    case ChangeKind::kClipboard: return "clipboard";
    case ChangeKind::kRecycleBins: return "recycle_bins";
    case ChangeKind::kRecentDocuments: return "recent_documents";
    case ChangeKind::kUrlCacheEntry: return "url_cache_entry";
    case ChangeKind::kRefused: return "refused";
  }
  return "change";
}

std::string LeftReason(std::uint32_t error) {
  switch (error) {
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: return "held open by another program";
    case ERROR_ACCESS_DENIED: return "access denied";
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return "no longer there";
    default: return "open fails with error " + std::to_string(error);
  }
}

std::string PreviewTable(const std::string& command, const Preview& preview) {
  std::string out = "preview   " + command + ", run by overseer from " + Utf8(preview.currentDirectory) +
                    ": nothing is changed, no worker is started\n";
  const auto items = ItemsByGroup(preview);
  std::size_t listed = 0;
  for (std::size_t g = 0; g < preview.groups.size(); ++g) {
    const PreviewGroup& group = preview.groups[g];
    // The JSON document keeps every group; the table only those with something in them.
    const bool counted = std::any_of(group.counts.begin(), group.counts.end(), [](const auto& c) { return c.second != 0; });
    if (items[g].empty() && !counted && group.bytes == 0) continue;
    // Appended piece by piece: GCC 12's -Wrestrict misreads a prefixed literal under -O3.
    out.append("\n").append(GroupTitle(group)).append(": ").append(CountsText(group)).append("\n");
    if (!group.note.empty()) out += "  note: " + group.note + "\n";
    for (const Change* change : items[g]) out += ItemLine(*change);
    listed += items[g].size();
  }
  return out + "\nlisted    " + std::to_string(listed) + " changes\n";
}

std::string PreviewJson(const std::string& command, const Preview& preview) {
  std::string out = "{\"schema\": \"overseer-preview\", \"version\": " + std::to_string(kPreviewSchemaVersion) +
                    ", \"command\": " + JsonText(command) +
                    ", \"current_directory\": " + JsonString(preview.currentDirectory) + ", \"groups\": [";
  const auto items = ItemsByGroup(preview);
  for (std::size_t g = 0; g < preview.groups.size(); ++g) {
    const PreviewGroup& group = preview.groups[g];
    out += std::string(g ? ", " : "") + "{\"area\": " + JsonText(group.area) +
           ", \"category\": " + JsonText(group.category) + ", \"owner\": " + JsonText(group.owner) + ", \"counts\": {";
    for (std::size_t i = 0; i < group.counts.size(); ++i) {
      out += std::string(i ? ", " : "") + JsonText(group.counts[i].first) + ": " +
             std::to_string(group.counts[i].second);
    }
    out += "}";
    if (group.hasBytes) {
      out += ", \"bytes\": " + std::to_string(static_cast<std::uint64_t>(group.bytes)) +
             ", \"size\": " + JsonString(scourel::SizeText(static_cast<float>(group.bytes)));
    }
    out += ", \"note\": " + JsonText(group.note) + ", \"items\": [";
    for (std::size_t i = 0; i < items[g].size(); ++i) out += std::string(i ? ", " : "") + ItemJson(*items[g][i]);
    out += "]}";
  }
  return out + "]}\n";
}

}  // namespace overseer
