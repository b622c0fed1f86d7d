// What every registry scan does with a key: open it for reading, read its
// values (each one counted as examined) and subkey names, and judge the
// references it holds. Shared by the scans of every category.
#pragma once

#include <string>
#include <vector>

#include "common/registry_key.h"
#include "common/text.h"
#include "common/unique_handle.h"
#include "task/task_context.h"

namespace scourel {

// Deeper than any real registry goes; a walk stops there.
inline constexpr int kMaxScanDepth = 512;

struct ValueText {
  std::wstring name;
  std::wstring text;  // strings as they stand, REG_DWORD in decimal, other types empty
};

// A key opened for a scan: for reading, or failing that with all access in
// the 32-bit view. Opening sets the progress text to "<root name>\<path>".
class ScanKey {
 public:
  ScanKey(HKEY root, std::wstring path);

  explicit operator bool() const { return open_; }
  HKEY get() const { return key_.get(); }
  HKEY root() const { return root_; }
  const std::wstring& rootName() const { return rootName_; }
  const std::wstring& path() const { return path_; }
  const KeyCounts& counts() const { return counts_; }
  bool Empty() const { return counts_.values == 0 && counts_.subkeys == 0; }

  std::vector<ValueText> Values() const;
  std::vector<std::wstring> SubkeyNames() const;
  // The text of the named value among Values(); empty when there is none.
  static std::wstring Find(const std::vector<ValueText>& values, const std::wstring& name);
  // path\name, or name alone below the root itself.
  std::wstring Child(const std::wstring& name) const;

  bool Record(int category, const std::wstring& valueName = {}, const std::wstring& valueData = {}) const;

 private:
  HKEY root_;
  std::wstring rootName_;
  std::wstring path_;
  UniqueRegKey key_;
  bool open_ = false;
  KeyCounts counts_;
};

// A scan does not descend into a path holding "SOFTWARE\CLASSES" past its
// first character (case-sensitive), nor one that is, ignoring case,
// "INTERFACE", "TYPELIB" or "CLSID".
bool IsExcludedPath(const std::wstring& path);

// True only when the text holds a drive path ("X:\") and neither the whole
// text nor its leading program (the quoted part, or up to the first ".exe"
// and the like) passes the file reference test. Names without a drive are
// never judged: they depend on a search path the scan cannot know.
bool NamesMissingFile(const std::wstring& text);

// "{...}" of 38 characters, as class ids are written.
bool LooksLikeClassId(const std::wstring& text);
// Registered under HKEY_CLASSES_ROOT in CLSID or its 32-bit twin.
bool ClassRegistered(const std::wstring& classId);
// A key of that name under HKEY_CLASSES_ROOT; names holding a backslash or
// nothing count as present.
bool ProgIdRegistered(const std::wstring& progId);

bool EndsWithText(const std::wstring& text, const std::wstring& tail);  // ignoring case

// A scan of one starting key, recording into the category given.
using ScanFunction = void (*)(const TaskContext& context, HKEY root, const std::wstring& path, int category);

// Calls visit(name, path) for each subkey of the key that the exclusion test
// lets a scan descend into, until the task is stopped.
template <typename Visit>
void ForEachSubkey(const TaskContext& context, const ScanKey& parent, Visit visit) {
  for (const std::wstring& name : parent.SubkeyNames()) {
    if (context.stopped()) return;
    const std::wstring path = parent.Child(name);
    if (!IsExcludedPath(path)) visit(name, path);
  }
}

// Records each value of the key that `invalid` picks out.
template <typename Test>
void RecordValuesWhere(const TaskContext& context, HKEY root, const std::wstring& path, int category, Test invalid) {
  const ScanKey key(root, path);
  if (!key) return;
  for (const ValueText& value : key.Values()) {
    if (context.stopped()) return;
    if (invalid(value)) key.Record(category, value.name, value.text);
  }
}

}  // namespace scourel
