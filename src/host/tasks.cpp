#include "host/tasks.h"

#include <array>
#include <functional>

#include "browsers/browser_traces.h"
#include "host/replies.h"
#include "host/task_slots.h"
#include "host/worker_state.h"
#include "plugins/plugin_definitions.h"
#include "protocol/categories.h"
#include "protocol/reply_text.h"
#include "protocol/tasks.h"
#include "registry_cleaner/registry_fix.h"
#include "registry_cleaner/registry_scan.h"
#include "task/settings.h"
#include "task/task_context.h"
#include "windows_traces/dead_shortcuts.h"
#include "windows_traces/junk_files.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/recycle_bin.h"
#include "wipe/free_space_wipe.h"
#include "wipe/volume_facts.h"

namespace scourel {

namespace {

using namespace protocol;

using StepFunction = PcStepFunction;

SettingsFile Settings() { return SettingsFile(g_settingsPath); }

KeyFamily FamilyOf(int set) { return set == kFirstSet ? KeyFamily::kFirstSet : FamilyForSecondSet(g_modeArgument); }

// The context a task hands its cleaners. The wipe method is read from the
// settings at the start of every task that erases files.
TaskContext ContextFor(const TaskThread& thread, Mode mode, std::uint32_t wipeMethod = 0) {
  return TaskContext{g_totals, SystemCleanerIo(), &thread.stop(), wipeMethod, mode, g_commandWindow,
                     g_settingsDir, g_settingsPath};
}

const TaskSpec& Spec(Task task) { return SpecOf(task); }

// Ends the process at once with exit code 0. Not ExitProcess: that detaches
// every DLL after the other threads are cut off wherever they were, and one
// cut off holding the loader or heap lock (inside the shell, say) hangs it.
[[noreturn]] void EndWorker() {
  ::TerminateProcess(::GetCurrentProcess(), 0);
  for (;;) ::Sleep(INFINITE);
}

// The usual end of a task: its completion, then the slot emptied (unless a
// later start took it). A stopped task leaves at once: no reply, and the slot,
// which by now belongs to no one or to a later task, is not touched.
void Complete(TaskThread& thread, Task task, int set) {
  if (DeliverTaskReply(Spec(task), Spec(task).sets[set].done, &thread)) thread.LeaveSlot();
}

// --- Task bodies, one per task and command set -----------------------------

// Resets what a task resets when it starts, unless it was stopped already.
template <typename Reset>
void ResetUnlessStopped(const TaskThread& thread, Reset&& reset) {
  thread.stop().RunUnlessRaised(reset);
}

template <int Set>
void JunkFilesTask(TaskThread& thread) {
  ResetUnlessStopped(thread, [] { ResetForJunkFileScan(g_totals); });
  JunkFiles(ContextFor(thread, Mode::kErase, Settings().ReadWipeAlgorithm()));
  Complete(thread, Task::kJunkFiles, Set);
}

template <int Set>
void RegistryFixTask(TaskThread& thread) {
  SelectFixCategories(ContextFor(thread, Mode::kErase), FamilyOf(Set));
  Complete(thread, Task::kRegistryFix, Set);
}

template <int Set>
void ShortcutsTask(TaskThread& thread) {
  // The byte total is zeroed before the wipe method is read, as it always was.
  ResetUnlessStopped(thread, [] { g_totals.byteTotal.set(0.0f); });
  DeadShortcuts(ContextFor(thread, Mode::kErase, Settings().ReadWipeAlgorithm()));
  Complete(thread, Task::kShortcuts, Set);
}

// Runs the switched-on browser categories; the first set posts the step
// number after every category but the last.
template <int Set>
void BrowserTask(TaskThread& thread) {
  const SettingsFile settings = Settings();
  const TaskContext context = ContextFor(thread, Mode::kErase, settings.ReadWipeAlgorithm());
  ResetUnlessStopped(thread, [] { ResetBrowserTotals(g_totals); });
  for (const BrowserCategorySpec& category : kBrowserCategories) {
    if (thread.stopped()) return;
    if (settings.Switch(FamilyOf(Set), category.keySuffix, kBrowserChars)) BrowserCategoryStep(context, category.category);
    const int number = static_cast<int>(category.category) + 1;
    if (Set == kFirstSet && number < kBrowserCategoryCount) {
      DeliverMessage(kBrowserProgress, Delivery::kPost, number, 0, &thread);
    }
  }
  if (!DeliverTaskReply(Spec(Task::kBrowser), Spec(Task::kBrowser).sets[Set].done, &thread)) return;
  // The first set's task leaves its slot as it is: a later stop still finds it there.
  if (Set == kSecondSet) thread.LeaveSlot();
}

// The PC-traces steps in their fixed order. Each switch is read just before
// its step; the clipboard is emptied whatever the switches say.
template <int Set>
void PcTracesTask(TaskThread& thread) {
  const SettingsFile settings = Settings();
  const TaskContext context = ContextFor(thread, Mode::kErase, settings.ReadWipeAlgorithm());
  const unsigned chars = Set == kFirstSet ? kPcTracesFirstSetChars : kPcTracesSecondSetChars;
  for (const PcStepSpec& step : kPcSteps) {
    if (thread.stopped()) return;
    if (step.keySuffix.empty() || settings.Switch(FamilyOf(Set), step.keySuffix, chars)) {
      kPcStepFunctions[static_cast<int>(step.step)](context);
    }
    // The last step, registry traces, posts nothing.
    const int number = static_cast<int>(step.step) + 1;
    if (Set == kFirstSet && number < kPcStepCount) DeliverMessage(kPcTracesProgress, Delivery::kPost, number, 0, &thread);
  }
  const TaskSpec& spec = Spec(Task::kPcTraces);
  if (!DeliverTaskReply(spec, spec.sets[Set].done, &thread)) return;
  if (Set == kFirstSet) {
    thread.LeaveSlot();
    return;
  }
  // The second set then runs the stop sequence on its own slot. While the
  // slot still holds this task it stays taken until a stop command; when a
  // later start replaced it, that later task is the one stopped (unless this
  // one has been stopped meanwhile).
  TaskThread* later = nullptr;
  thread.stop().RunUnlessRaised([&] { later = thread.TakeLaterRecord(); });
  if (later) {
    DeliverTaskReply(spec, spec.sets[Set].stopped, nullptr);
    ReleaseTakenSlot(later);
  }
}

template <int Set>
void RecycleBinTask(TaskThread& thread) {
  // Read as every task reads it; emptying the bin does not shred.
  RecycleBins(ContextFor(thread, Mode::kErase, Settings().ReadWipeAlgorithm()));
  Complete(thread, Task::kRecycleBin, Set);
}

template <int Set>
void PluginCleanTask(TaskThread& thread) {
  RunPlugins(ContextFor(thread, Mode::kErase, g_wipeMethod.get()));
  if (Set == kFirstSet) {
    Complete(thread, Task::kPluginClean, Set);
    return;
  }
  // The second set's plug-in clean is the controller's last word to the worker.
  if (DeliverTaskReply(Spec(Task::kPluginClean), Spec(Task::kPluginClean).sets[Set].done, &thread)) EndWorker();
}

// The full scan measures every area and reports each by copy-data, in the
// order of protocol::kFullScanReplies.
void FullScanTask(TaskThread& thread) {
  const TaskContext context = ContextFor(thread, Mode::kMeasure);
  TaskTotals& totals = g_totals;
  int extensions = 0;
  float documentBytes = 0, networkBytes = 0, scanDiskBytes = 0;
  // Each size of the PC-traces record is what its step added to the byte total.
  auto measured = [&](StepFunction step) {
    const float before = totals.byteTotal.get();
    step(context);
    return totals.byteTotal.get() - before;
  };

  // What each step measures, then the record it sends. A record is read, and
  // what it resets reset, only while the scan has not been stopped.
  const struct {
    std::function<void()> measure;
    unsigned kind;
    std::function<std::wstring()> record;
  } steps[] = {
      {[&] {
         ResetUnlessStopped(thread, [&] { ResetForJunkFileScan(totals); });
         JunkFiles(context);
       },
       kScanJunkFiles,
       [&] {
         const std::int32_t first = totals.junkFirst.take();
         const std::int32_t second = totals.junkSecond.take();
         return JunkScanText(first, totals.byteTotal.get(), second);
       }},
      {[&] { RunRegistryScan(context); }, kScanRegistry,
       [] { return RegistryScanText(RegistryReportCounts()); }},
      {nullptr, kScanRegistryDone, [] { return std::wstring(kScanCompletedText); }},
      {[&] { DeadShortcuts(context); }, kScanShortcuts,
       [&] {
         std::wstring text = ShortcutScanText(totals.junkSecond.get(), totals.byteTotal.get());
         totals.junkSecond.set(0);
         return text;
       }},
      {[&] { extensions = RunFileExtensionScan(context); }, kScanExtensions,
       [&] { return ExtensionScanText(extensions); }},
      {[&] {
         ResetUnlessStopped(thread, [&] { ResetBrowserTotals(totals); });
         ScanBrowserTraces(context);
       },
       kScanBrowser, [] { return TaskRecordText(kBrowserDone); }},
      {[&] {
         documentBytes = measured(RecentDocuments);
         RunHistory(context);
         SearchWords(context);
         networkBytes = measured(Credentials);
         scanDiskBytes = measured(ScanDiskFiles);
       },
       kScanPcTraces,
       [&] {
         PcCounters pc{};
         for (int i = 0; i < kPcStepCount; ++i) pc[i] = totals.pcTraces[i].get();
         return PcTracesScanText(pc, documentBytes, networkBytes, scanDiskBytes);
       }},
      {[&] { RecycleBins(context); }, kScanRecycleBin,
       [&] {
         std::wstring text = RecycleBinScanText(totals.recycleBinItems.get(), totals.recycleBinBytes.get());
         totals.recycleBinItems.set(0);
         totals.recycleBinBytes.set(0.0f);
         return text;
       }},
      {[&] { RunPlugins(context); }, kScanPlugins,
       [&] { return PluginScanText(totals.pluginItems.get(), totals.pluginBytes.get()); }},
  };
  for (const auto& step : steps) {
    if (step.measure) step.measure();
    if (!SendTotalsRecord(step.kind, step.record, &thread)) return;
  }
  thread.LeaveSlot();
}

// Wipes the free space of the drive whose letter the start command carried.
// A stopped wipe removes its fill before it leaves, and sends nothing.
void FreeSpaceWipeTask(TaskThread& thread) {
  const auto argument = thread.argument();
  const std::optional<wchar_t> letter =
      argument > 0 && argument < 128 ? DriveLetterOf(std::wstring(1, static_cast<wchar_t>(argument))) : std::nullopt;
  FreeSpaceReport report;
  if (letter) {
    CFreeSpaceWipe wipe(&thread.stop(), g_commandWindow, [&thread](std::uint8_t percent, std::uint64_t bytes) {
      DeliverMessage(kFreeSpaceProgress, Delivery::kPost, percent, static_cast<LPARAM>(bytes), &thread);
    });
    report = wipe.Wipe(*letter, Settings().ReadWipeAlgorithm());
  } else {
    report.status = L"no drive";
    report.solidState = L"unknown";
  }
  if (SendTotalsRecord(kFreeSpaceDone, [&] { return FreeSpaceDoneText(report); }, &thread)) thread.LeaveSlot();
}

// The body of each task, in the order of Task, for each command set; null
// where the set has none.
constexpr TaskBody kBodies[kTaskCount][2] = {
    {JunkFilesTask<kFirstSet>, JunkFilesTask<kSecondSet>},
    {ShortcutsTask<kFirstSet>, ShortcutsTask<kSecondSet>},
    {RecycleBinTask<kFirstSet>, RecycleBinTask<kSecondSet>},
    {BrowserTask<kFirstSet>, BrowserTask<kSecondSet>},
    {PcTracesTask<kFirstSet>, PcTracesTask<kSecondSet>},
    {PluginCleanTask<kFirstSet>, PluginCleanTask<kSecondSet>},
    {RegistryFixTask<kFirstSet>, RegistryFixTask<kSecondSet>},
    {nullptr, nullptr},  // the file-extension fix runs on the main thread
    {FullScanTask, nullptr},
    {FreeSpaceWipeTask, nullptr},
};

// How long a stop of the free-space wipe waits for its fill to be removed
// before it answers all the same.
constexpr DWORD kFillRemovalWaitMs = 60'000;

void RunCommand(const CommandMatch& match, WPARAM wParam) {
  const TaskSpec& spec = *match.spec;
  if (match.stop) {
    // The stop handler reports the totals so far; an empty slot answers nothing.
    if (TaskThread* stopped = TakeSlot(spec.slot)) {
      // A stopped wipe answers once the volume is as it was: no fill left.
      if (spec.slot == Slot::kFreeSpace) stopped->WaitForEnd(kFillRemovalWaitMs);
      DeliverTaskReply(spec, match.commands().stopped, nullptr);
      ReleaseTakenSlot(stopped);
    }
    return;
  }
  if (spec.slot == Slot::kMainThread) {
    // The file-extension fix: the window procedure returns only when done.
    FixFileExtensions(TaskContext{g_totals, SystemCleanerIo(), nullptr, 0, Mode::kErase, g_commandWindow,
                                  g_settingsDir, g_settingsPath});
    DeliverTaskReply(spec, match.commands().done, nullptr);
    return;
  }
  StartTask(spec.slot, kBodies[static_cast<int>(spec.task)][match.set], wParam);
}

}  // namespace

std::optional<LRESULT> HandleCommand(UINT message, WPARAM wParam) {
  if (message == WM_CLOSE) EndWorker();  // nothing is stopped or saved first
  if (message == kIgnoredCommand) return 0;
  const std::optional<CommandMatch> match = FindCommand(message);
  if (!match) return std::nullopt;
  RunCommand(*match, wParam);
  return 0;
}

}  // namespace scourel
