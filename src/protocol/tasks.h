// Every task of the worker described once: its slot, the commands that start
// and stop it in each command set, and the replies that end it. The worker's
// dispatch and overseer's command plans and reply titles are read from here.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "protocol/messages.h"

namespace scourel::protocol {

// The eight slots a task thread can occupy, plus the main thread, where the
// file-extension fix runs.
enum class Slot : int {
  kJunkFiles,
  kRegistry,
  kShortcuts,
  kBrowser,
  kPcTraces,
  kRecycleBin,
  kPluginClean,
  kFullScan,
  kFreeSpace,
  kMainThread,
};
inline constexpr int kSlotCount = 9;

// In the order overseer lists them.
enum class Task : int {
  kJunkFiles,
  kShortcuts,
  kRecycleBin,
  kBrowser,
  kPcTraces,
  kPluginClean,
  kRegistryFix,
  kExtensionFix,
  kFullScan,
  kFreeSpaceWipe,
};
inline constexpr int kTaskCount = 10;

enum class Delivery : unsigned char { kSend, kPost };

// What a reply carries.
enum class Payload : unsigned char {
  kNothing,        // no reply at all
  kCountAndBytes,  // wParam: a counter, lParam: the byte total truncated
  kWorkerWindow,   // wParam: the worker's command window, lParam: 0
  kZeros,          // wParam 0, lParam 0
  kCopyData,       // WM_COPYDATA of `kind`
};

struct Reply {
  unsigned id = 0;    // message id; WM_COPYDATA (74) for copy-data
  unsigned kind = 0;  // copy-data kind, else 0
  Payload payload = Payload::kNothing;
  Delivery delivery = Delivery::kSend;

  constexpr bool exists() const { return payload != Payload::kNothing; }
};

inline constexpr unsigned kCopyDataMessage = 74;  // WM_COPYDATA

// One command set of a task. A start of 0 means the set has no such task.
struct CommandSet {
  unsigned start = 0;
  unsigned stop = 0;  // 0: no stop command
  Reply done;         // sent or posted by the task when it ends
  Reply stopped;      // sent or posted by the stop handler for a busy slot
};

struct TaskSpec {
  Task task;
  Slot slot;
  std::string_view command;   // overseer's command that starts it: "clean", "fix", "scan"
  std::string_view name;      // overseer's word for it: "junk", "browser", ...
  std::string_view title;     // what overseer's replies call it: "junk files", ...
  std::string_view doneVerb;  // "cleaned", "emptied", "fixed", "done"
  std::string_view countName;  // the counter a count-and-bytes reply carries
  CommandSet sets[2];      // first set (IDS_C keys), second set
  unsigned progress = 0;   // progress message the first set posts, 0 none
};

inline constexpr int kFirstSet = 0;
inline constexpr int kSecondSet = 1;

namespace detail {
constexpr Reply Numeric(unsigned id, Payload payload, Delivery delivery = Delivery::kSend) {
  return {id, 0, payload, delivery};
}
constexpr Reply Record(unsigned kind) { return {kCopyDataMessage, kind, Payload::kCopyData, Delivery::kSend}; }
}  // namespace detail

inline constexpr TaskSpec kTasks[kTaskCount] = {
    {Task::kJunkFiles, Slot::kJunkFiles, "clean", "junk", "junk files", "cleaned", "junk_files",
     {{2034, 2036, detail::Numeric(2035, Payload::kCountAndBytes), detail::Numeric(2036, Payload::kCountAndBytes)},
      {2058, 2060, detail::Numeric(2059, Payload::kCountAndBytes), detail::Numeric(2060, Payload::kCountAndBytes)}}},
    {Task::kShortcuts, Slot::kShortcuts, "clean", "shortcuts", "dead shortcuts", "cleaned", "dead_shortcuts",
     {{2040, 2042, detail::Numeric(2041, Payload::kCountAndBytes), detail::Numeric(2042, Payload::kCountAndBytes)},
      {2064, 2066, detail::Numeric(2065, Payload::kCountAndBytes), detail::Numeric(2066, Payload::kCountAndBytes)}}},
    {Task::kRecycleBin, Slot::kRecycleBin, "clean", "recycle", "Recycle Bin", "emptied", "recycle_bin_items",
     {{2052, 2054, detail::Numeric(2053, Payload::kCountAndBytes), detail::Numeric(2054, Payload::kCountAndBytes)},
      {2076, 2078, detail::Numeric(2077, Payload::kCountAndBytes), detail::Numeric(2078, Payload::kCountAndBytes)}}},
    {Task::kBrowser, Slot::kBrowser, "clean", "browser", "browser traces", "cleaned", "",
     {{2046, 2048, detail::Record(kBrowserDone), detail::Record(kBrowserStopped)},
      {2070, 2072, detail::Numeric(2071, Payload::kWorkerWindow),
       detail::Numeric(2072, Payload::kWorkerWindow, Delivery::kPost)}},
     kBrowserProgress},
    {Task::kPcTraces, Slot::kPcTraces, "clean", "pc", "PC traces", "cleaned", "",
     {{2049, 2051, detail::Record(kPcTracesDone), detail::Record(kPcTracesStopped)},
      {2073, 2075, detail::Numeric(2074, Payload::kWorkerWindow, Delivery::kPost),
       detail::Numeric(2075, Payload::kWorkerWindow)}},
     kPcTracesProgress},
    {Task::kPluginClean, Slot::kPluginClean, "clean", "plugins", "plug-in clean", "done", "",
     {{2055, 2057, detail::Numeric(2056, Payload::kZeros, Delivery::kPost), detail::Numeric(2057, Payload::kWorkerWindow)},
      {2079, 2081, detail::Numeric(2080, Payload::kZeros, Delivery::kPost),
       detail::Numeric(2081, Payload::kWorkerWindow)}}},
    // One stop command serves both sets of the registry fix.
    {Task::kRegistryFix, Slot::kRegistry, "fix", "registry", "registry", "fixed", "",
     {{2037, 2063, detail::Numeric(2038, Payload::kZeros, Delivery::kPost), detail::Numeric(2063, Payload::kZeros)},
      {2061, 2063, detail::Numeric(2062, Payload::kZeros, Delivery::kPost), detail::Numeric(2063, Payload::kZeros)}}},
    // Runs on the main thread: no slot, no stop.
    {Task::kExtensionFix, Slot::kMainThread, "fix", "extensions", "file extensions", "fixed", "",
     {{2043, 0, detail::Numeric(2044, Payload::kWorkerWindow), {}},
      {2067, 0, detail::Numeric(2068, Payload::kWorkerWindow), {}}}},
    // Reports by copy-data only (kFullScanReplies); its stop answers nothing.
    {Task::kFullScan, Slot::kFullScan, "scan", "scan", "scan", "done", "", {{2087, 2088, {}, {}}, {}}},
    // Takes the drive letter as wParam and posts kFreeSpaceProgress while it
    // fills; its stop answers once the fill files are gone.
    {Task::kFreeSpaceWipe, Slot::kFreeSpace, "wipe", "free", "free-space wipe", "done", "",
     {{2089, 2090, detail::Record(kFreeSpaceDone), detail::Numeric(2090, Payload::kWorkerWindow)}, {}}},
};

// The full scan's records, in the order they are sent.
inline constexpr unsigned kFullScanReplies[] = {kScanJunkFiles, kScanRegistry,  kScanRegistryDone,
                                                kScanShortcuts, kScanExtensions, kScanBrowser,
                                                kScanPcTraces,  kScanRecycleBin, kScanPlugins};

// Accepted and ignored.
inline constexpr unsigned kIgnoredCommand = 2039;

constexpr const TaskSpec& SpecOf(Task task) { return kTasks[static_cast<int>(task)]; }
static_assert([] {
  for (int i = 0; i < kTaskCount; ++i) {
    if (static_cast<int>(kTasks[i].task) != i) return false;
  }
  return true;
}(), "kTasks is in the order of Task");

// The task a command id starts or stops, with its set.
struct CommandMatch {
  const TaskSpec* spec = nullptr;
  int set = kFirstSet;
  bool stop = false;
  const CommandSet& commands() const { return spec->sets[set]; }
};
std::optional<CommandMatch> FindCommand(unsigned id);

// The task reply, numeric or copy-data, with this message id and kind.
struct ReplyMatch {
  const TaskSpec* spec = nullptr;
  int set = kFirstSet;
  bool stop = false;  // the stop handler's reply rather than the completion
  const Reply* reply = nullptr;
};
std::optional<ReplyMatch> FindReply(unsigned id, unsigned kind = 0);

}  // namespace scourel::protocol
