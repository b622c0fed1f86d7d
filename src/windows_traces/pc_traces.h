// The PC-traces steps, each counting into its own PC-traces counter and,
// where it finds files, the byte total. Each takes the task's context: with
// Mode::kMeasure it counts (the full scan), with Mode::kErase it erases and
// counts the same things (the PC-traces task).
#pragma once

#include "protocol/categories.h"
#include "task/task_context.h"

namespace scourel {

// The Recent folder's shortcuts; erasing also clears the shell's list.
void RecentDocuments(const TaskContext& context);
// Run box, stream and typed-path history lists.
void RunHistory(const TaskContext& context);
// Explorer search words.
void SearchWords(const TaskContext& context);
// Empties the clipboard, owned by the worker's command window; whatever the mode.
void EmptyClipboardStep(const TaskContext& context);
// Stored network credentials.
void Credentials(const TaskContext& context);
// Files that disk checking leaves behind.
void ScanDiskFiles(const TaskContext& context);
// Asks Windows to clear the page file at shutdown (needs administrator
// rights). Erasing only: there is nothing to measure.
void SetClearPageFile(const TaskContext& context);

// The steps in the order of protocol::kPcSteps.
using PcStepFunction = void (*)(const TaskContext&);
inline constexpr PcStepFunction kPcStepFunctions[protocol::kPcStepCount] = {
    RecentDocuments, RunHistory, SearchWords, EmptyClipboardStep, Credentials, ScanDiskFiles, SetClearPageFile,
};

}  // namespace scourel
