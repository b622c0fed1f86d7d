// overseer preview: runs the cleaners' erasing form in overseer's own
// process, from the worker's folder and with the worker's settings (as the
// command line overrides them, in memory only), through a RecordingIo. What
// it lists is what a clean would take; what it counts is what the clean's
// totals would say. Nothing is changed.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "overseer/command_line.h"
#include "overseer/recording_io.h"

namespace overseer {

inline constexpr int kPreviewSchemaVersion = 1;

struct PreviewGroup {
  std::string area;      // the clean or fix target: junk, browser, registry...
  std::string category;  // browser, PC and registry categories; empty elsewhere
  std::string owner;     // the browser or the plug-in; empty elsewhere
  // The totals the clean would report for the group, by the reply's field names.
  std::vector<std::pair<std::string, std::int64_t>> counts;
  double bytes = 0;       // float sum, as the worker adds
  bool hasBytes = false;  // the area reports a size
  std::string note;       // where the listing and the counts differ by design
};

struct Preview {
  std::wstring currentDirectory;  // where it ran: the worker's folder
  std::vector<PreviewGroup> groups;
  std::vector<Change> changes;  // in the order made; Change::group indexes groups
};

// The areas a preview takes: the one its target names, or for "all" every
// clean and fix in the order of the task table.
std::vector<const scourel::protocol::TaskSpec*> PreviewAreas(const Options& options);

// Runs the preview of options.task (all areas when null) for the worker at
// workerPath; *error says why when its install root cannot be told.
Preview RunPreview(const Options& options, const std::wstring& workerPath, std::string* error);

}  // namespace overseer
