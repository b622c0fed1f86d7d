#include "plugins/plugin_definitions.h"

#include "common/registry_links.h"
#include "plugins/plugin_files.h"
#include "task/folder_walk.h"
#include "task/link_rule.h"
#include "task/trace_file.h"

namespace scourel {

namespace {

// Files in a folder entry or matched by a wildcard are taken as the listing
// shows them; a file named alone must first open for reading.
constexpr TraceRule kListedFile{Probe::kNone, SizeFrom::kListing};
constexpr TraceRule kNamedFile{Probe::kRead, SizeFrom::kReadOpen};

bool IsLink(DWORD attributes) {
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

class PluginWalk {
 public:
  PluginWalk(const TaskContext& context, PluginFolders folders) : context_(context), folders_(std::move(folders)) {}

  void Run(const PluginDefinition& plugin) {
    Relaxed<std::int32_t> items;
    for (const PluginEntry& entry : plugin.entries) {
      if (context_.stopped()) return;
      const EntryTarget target = ResolveEntry(entry, folders_);
      if (!target.refusal.empty()) continue;
      const Tally tally{items, context_.totals.pluginBytes};
      switch (entry.kind) {
        case EntryKind::kKey: Key(target.registry, tally); break;
        case EntryKind::kValue: Value(target.registry, tally); break;
        case EntryKind::kFile: File(target.file, tally); break;
      }
    }
    context_.Record([&] { context_.totals.pluginItems.add(items.get()); });
  }

 private:
  void Key(const RegistryTarget& target, Tally tally) {
    // A key that is a registry link is counted and goes as a link.
    if (!OpenRegKeyUnfollowed(target.root, target.subkey, KEY_ALL_ACCESS).opened) return;
    if (context_.erasing()) (void)context_.io.DeleteKeyTree(target.root, target.subkey);
    context_.Record([&] { tally.count.add(1); });
  }

  void Value(const RegistryTarget& target, Tally tally) {
    const OpenedKey key = OpenRegKeyWithoutLinks(target.root, target.subkey, KEY_ALL_ACCESS);
    if (!key) return;
    // The scan does not look the value up; the clean counts only what it deleted.
    if (!context_.erasing() || !context_.io.DeleteValue(key.get(), target.valueName)) {
      context_.Record([&] { tally.count.add(1); });
    }
  }

  // Nothing is followed through a link: a path that passes through one below
  // its token's folder is skipped whole, so a link cannot carry a plug-in
  // into a folder the refusal rules keep it out of. A pattern's location is
  // the folder it lists.
  bool PassesThroughLink(const FileTarget& target) const {
    const std::wstring base = target.path.substr(0, target.baseLength);
    const std::wstring location = target.wildcard ? target.path.substr(0, target.path.rfind(L'\\')) : target.path;
    return !ReachedWithoutLinks(context_.io, base, location);
  }

  void File(const FileTarget& target, Tally tally) {
    if (PassesThroughLink(target)) return;
    if (target.wildcard) {
      Matches(target.path, tally);
      return;
    }
    const DWORD attributes = ::GetFileAttributesW(target.path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || IsLink(attributes)) return;
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
      Folder(target.path, tally);
      Remove(target.path, attributes);
      return;
    }
    TakeTraceFile(context_, TraceFile{target.path, 0, attributes}, kNamedFile, tally);
  }

  // Only the files of the pattern's own folder, each shredded with the task's
  // wipe method like a file named alone: a matching subfolder is neither
  // counted nor entered, so "*.*" empties one folder and no more.
  void Matches(const std::wstring& pattern, Tally tally) {
    const size_t slash = pattern.rfind(L'\\');
    const std::wstring folder = pattern.substr(0, slash);
    const std::wstring_view spec = std::wstring_view(pattern).substr(slash + 1);
    ForEachEntry(context_, pattern, [&](const WIN32_FIND_DATAW& entry) {
      // The listing matches short names too; the name itself must match.
      if (IsFolder(entry) || IsReparsePoint(entry) || !MatchesPattern(entry.cFileName, spec)) return;
      TakeTraceFile(context_, FromListing(folder + L"\\" + entry.cFileName, entry), kListedFile, tally);
    });
  }

  // A folder entry goes with everything in it, each file shredded. A link
  // inside is neither entered nor removed, and keeps its folders in place.
  void Folder(const std::wstring& folder, Tally tally, int depth = 0) {
    ForEachEntry(context_, folder + L"\\*", [&](const WIN32_FIND_DATAW& entry) {
      if (IsDotEntry(entry) || IsReparsePoint(entry)) return;
      const std::wstring path = folder + L"\\" + entry.cFileName;
      if (IsFolder(entry)) {
        if (depth >= kMaxFolderDepth) return;
        Folder(path, tally, depth + 1);
        Remove(path, entry.dwFileAttributes);
        return;
      }
      TakeTraceFile(context_, FromListing(path, entry), kListedFile, tally);
    });
  }

  // Succeeds only for a folder left empty.
  void Remove(const std::wstring& folder, DWORD attributes) {
    if (!context_.erasing() || context_.stopped()) return;
    if (attributes & FILE_ATTRIBUTE_READONLY) {
      (void)context_.io.SetAttributes(folder, attributes & ~FILE_ATTRIBUTE_READONLY);
    }
    (void)context_.io.RemoveFolder(folder);
  }

  const TaskContext& context_;
  const PluginFolders folders_;
};

}  // namespace

int RunPlugins(const TaskContext& context) {
  if (context.installRoot.empty()) return -1;
  const std::wstring folder = PluginsFolder(context.installRoot);
  const std::vector<std::wstring> names = PluginNames(folder, &context.io);
  PluginWalk walk(context, SystemPluginFolders());
  for (const std::wstring& name : names) {
    if (context.stopped()) break;
    const LoadedPlugin plugin = LoadPlugin(folder, name);
    if (plugin.status == LoadStatus::kRead) walk.Run(plugin.definition);
  }
  return static_cast<int>(names.size());
}

void RunPlugin(const TaskContext& context, const PluginDefinition& plugin) {
  PluginWalk(context, SystemPluginFolders()).Run(plugin);
}

}  // namespace scourel
