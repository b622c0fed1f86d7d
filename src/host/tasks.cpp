#include "host/tasks.h"

#include <array>

#include "browsers/browser_traces.h"
#include "common/task_stop.h"
#include "host/protocol.h"
#include "host/replies.h"
#include "host/reply_text.h"
#include "host/settings.h"
#include "host/task_slots.h"
#include "host/task_totals.h"
#include "host/worker_state.h"
#include "plugins/plugin_definitions.h"
#include "registry_cleaner/registry_fix.h"
#include "windows_traces/dead_shortcuts.h"
#include "windows_traces/junk_files.h"
#include "windows_traces/pc_traces.h"
#include "windows_traces/recycle_bin.h"

namespace scourel {

namespace {

using namespace protocol;

WPARAM WorkerWindowParam() { return reinterpret_cast<WPARAM>(g_commandWindow); }

PcCounters PcCounterValues() {
  PcCounters values{};
  for (int i = 0; i < kPcTracesCounterCount; ++i) values[i] = g_totals.pcTraces[i].get();
  return values;
}

std::wstring BrowserTotalsText() {
  std::array<std::int32_t, kBrowserCategoryCount> counts{};
  std::array<float, kBrowserCategoryCount> bytes{};
  for (int i = 0; i < kBrowserCategoryCount; ++i) {
    counts[i] = g_totals.browserCounts[i].get();
    bytes[i] = g_totals.browserBytes[i].get();
  }
  return BrowserText(counts, bytes);
}

// A stopped task leaves at once: no reply, and the slot (which may by now
// hold a later task) is not touched.
bool Abandoned() { return TaskStopRequested(); }

// --- Task bodies, one per slot and command set ----------------------------

template <unsigned Done>
void JunkFilesTask(Slot slot) {
  CleanJunkFiles();
  if (Abandoned()) return;
  SendJunkFilesReply(Done);
  ReleaseSlot(slot);
}

template <KeyFamily Family, unsigned Done>
void RegistryFixTask(Slot slot) {
  SelectFixCategories(Family);
  if (Abandoned()) return;
  PostReply(Done, 0, 0);
  ReleaseSlot(slot);
}

void RegistryFixSecondSet(Slot slot) {
  if (FamilyForSecondSet(g_modeArgument) == KeyFamily::kO) {
    RegistryFixTask<KeyFamily::kO, kRegistryFixDone2>(slot);
  } else {
    RegistryFixTask<KeyFamily::kPlain, kRegistryFixDone2>(slot);
  }
}

template <unsigned Done>
void ShortcutsTask(Slot slot) {
  CleanDeadShortcuts();
  if (Abandoned()) return;
  SendShortcutsReply(Done);
  ReleaseSlot(slot);
}

// Runs the switched-on browser categories; with progress, posts the step
// number after every category but the last.
void RunBrowserCategories(KeyFamily family, bool progress) {
  ReadWipeAlgorithm();
  ResetBrowserTotals();
  for (int i = 0; i < kBrowserCategoryCount; ++i) {
    if (Abandoned()) return;
    if (ReadSwitch(family, kBrowserKeys[i], kBrowserChars)) CleanBrowserCategory(i);
    if (progress && i + 1 < kBrowserCategoryCount) PostReply(kBrowserProgress, i + 1, 0);
  }
}

void BrowserFirstSet(Slot) {
  RunBrowserCategories(KeyFamily::kFirstSet, true);
  if (Abandoned()) return;
  SendCopyData(kBrowserDone, BrowserTotalsText());
  // This task leaves its slot as it is: a later stop still finds it there.
}

void BrowserSecondSet(Slot slot) {
  RunBrowserCategories(FamilyForSecondSet(g_modeArgument), false);
  if (Abandoned()) return;
  SendReply(kBrowserDone2, WorkerWindowParam(), 0);
  ReleaseSlot(slot);
}

// The PC-traces steps in their fixed order. Each switch is read just before
// its step; the clipboard is emptied whatever the switches say.
void RunPcTracesSteps(KeyFamily family, unsigned chars, bool progress) {
  ReadWipeAlgorithm();
  struct Step {
    const wchar_t* key;  // null: always run
    void (*run)();
  };
  static constexpr Step kSteps[] = {
      {L"PCDOCUMENT", [] { CleanRecentDocuments(); }},
      {L"PCRUNHISTORY", [] { CleanRunHistory(); }},
      {L"PCFINDFILES", [] { CleanSearchWords(); }},
      {nullptr, [] { EmptyClipboardStep(); }},
      {L"PCNETWORK", [] { CleanCredentials(); }},
      {L"PCSCANDISKFILES", [] { CleanScanDiskFiles(); }},
      {L"PCCLEARREGISTRY", [] { SetClearPageFile(); }},
  };
  int number = 0;
  for (const Step& step : kSteps) {
    if (Abandoned()) return;
    ++number;
    if (!step.key || ReadSwitch(family, step.key, chars)) step.run();
    // The last step, registry traces, posts nothing.
    if (progress && number < static_cast<int>(std::size(kSteps))) PostReply(kPcTracesProgress, number, 0);
  }
}

void PcTracesFirstSet(Slot slot) {
  RunPcTracesSteps(KeyFamily::kFirstSet, kPcTracesFirstSetChars, true);
  if (Abandoned()) return;
  SendCopyData(kPcTracesDone, PcTracesDoneText(PcCounterValues()));
  ReleaseSlot(slot);
}

void PcTracesSecondSet(Slot) {
  RunPcTracesSteps(FamilyForSecondSet(g_modeArgument), kPcTracesSecondSetChars, false);
  if (Abandoned()) return;
  PostReply(kPcTracesDone2, WorkerWindowParam(), 0);
  // This thread stops itself here and never ends; its slot stays taken until
  // a stop command (2075) empties it.
  for (;;) ::Sleep(INFINITE);
}

template <unsigned Done>
void RecycleBinTask(Slot slot) {
  EmptyRecycleBins();
  if (Abandoned()) return;
  SendRecycleBinReply(Done);
  ReleaseSlot(slot);
}

void PluginCleanFirstSet(Slot slot) {
  CleanPlugins();
  if (Abandoned()) return;
  PostReply(kPluginCleanDone, 0, 0);
  ReleaseSlot(slot);
}

void PluginCleanSecondSet(Slot) {
  CleanPlugins();
  if (Abandoned()) return;
  PostReply(kPluginCleanDone2, 0, 0);
  // The second set's plug-in clean is the controller's last word to the worker.
  ::ExitProcess(0);
}

// The full scan measures every area and reports each by copy-data, in the
// order 101, 107, 109, 102, 108, 105, 104, 103, 106.
void FullScanTask(Slot slot) {
  ResetForJunkFileScan();
  MeasureJunkFiles();
  if (Abandoned()) return;
  {
    const std::int32_t first = g_totals.junkFirst.take();
    const std::int32_t second = g_totals.junkSecond.take();
    SendCopyData(kScanJunkFiles, JunkScanText(first, g_totals.byteTotal.get(), second));
  }

  RunRegistryScan();
  if (Abandoned()) return;
  {
    std::array<std::int32_t, kRegistryCategoryCount> counts{};
    for (int i = 0; i < kRegistryCategoryCount; ++i) counts[i] = g_totals.registry[i].get();
    SendCopyData(kScanRegistry, RegistryScanText(counts));
    SendCopyData(kScanRegistryDone, kScanCompletedText);
  }

  MeasureDeadShortcuts();
  if (Abandoned()) return;
  SendCopyData(kScanShortcuts, ShortcutScanText(g_totals.junkSecond.get(), g_totals.byteTotal.get()));
  g_totals.junkSecond.set(0);

  const int extensions = RunFileExtensionScan();
  if (Abandoned()) return;
  SendCopyData(kScanExtensions, ExtensionScanText(extensions));

  ResetBrowserTotals();
  ScanBrowserTraces();
  if (Abandoned()) return;
  SendCopyData(kScanBrowser, BrowserTotalsText());

  // Each size of the PC-traces record is what its step added to the byte total.
  auto measured = [](int (*scan)()) {
    const float before = g_totals.byteTotal.get();
    scan();
    return g_totals.byteTotal.get() - before;
  };
  const float documentBytes = measured(ScanRecentDocuments);
  ScanRunHistory();
  ScanSearchWords();
  const float networkBytes = measured(ScanCredentials);
  const float scanDiskBytes = measured(ScanScanDiskFiles);
  if (Abandoned()) return;
  SendCopyData(kScanPcTraces, PcTracesScanText(PcCounterValues(), documentBytes, networkBytes, scanDiskBytes));

  MeasureRecycleBins();
  if (Abandoned()) return;
  SendCopyData(kScanRecycleBin,
               RecycleBinScanText(g_totals.recycleBinItems.get(), g_totals.recycleBinBytes.get()));
  g_totals.recycleBinItems.set(0);
  g_totals.recycleBinBytes.set(0.0f);

  ScanPlugins();
  if (Abandoned()) return;
  SendCopyData(kScanPlugins, PluginScanText(g_totals.pluginItems.get(), g_totals.pluginBytes.get()));

  ReleaseSlot(slot);
}

// --- Stop handlers, on the main thread -------------------------------------

void StopJunkFiles(unsigned id) {
  if (StopSlot(Slot::JunkFilesSlot)) SendJunkFilesReply(id);
}

void StopShortcuts(unsigned id) {
  if (StopSlot(Slot::ShortcutsSlot)) SendShortcutsReply(id);
}

void StopRecycleBin(unsigned id) {
  if (StopSlot(Slot::RecycleBinSlot)) SendRecycleBinReply(id);
}

void StopWithWorkerWindow(Slot slot, unsigned id) {
  if (StopSlot(slot)) SendReply(id, WorkerWindowParam(), 0);
}

}  // namespace

LRESULT CALLBACK CommandWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CLOSE:
      ::ExitProcess(0);

    case kJunkFilesStart: StartTask(Slot::JunkFilesSlot, JunkFilesTask<kJunkFilesDone>); return 0;
    case kJunkFilesStart2: StartTask(Slot::JunkFilesSlot, JunkFilesTask<kJunkFilesDone2>); return 0;
    case kJunkFilesStop: StopJunkFiles(kJunkFilesStop); return 0;
    case kJunkFilesStop2: StopJunkFiles(kJunkFilesStop2); return 0;

    case kRegistryFixStart:
      StartTask(Slot::RegistrySlot, RegistryFixTask<KeyFamily::kFirstSet, kRegistryFixDone>);
      return 0;
    case kRegistryFixStart2: StartTask(Slot::RegistrySlot, RegistryFixSecondSet); return 0;
    case kRegistryFixStop:
      if (StopSlot(Slot::RegistrySlot)) SendReply(kRegistryFixStop, 0, 0);
      return 0;
    case kIgnored: return 0;

    case kShortcutsStart: StartTask(Slot::ShortcutsSlot, ShortcutsTask<kShortcutsDone>); return 0;
    case kShortcutsStart2: StartTask(Slot::ShortcutsSlot, ShortcutsTask<kShortcutsDone2>); return 0;
    case kShortcutsStop: StopShortcuts(kShortcutsStop); return 0;
    case kShortcutsStop2: StopShortcuts(kShortcutsStop2); return 0;

    case kExtensionFix:
    case kExtensionFix2:
      // Runs on the main thread: the window procedure returns only when done.
      FixFileExtensions();
      SendReply(message == kExtensionFix ? kExtensionFixDone : kExtensionFixDone2, WorkerWindowParam(), 0);
      return 0;

    case kBrowserStart: StartTask(Slot::BrowserSlot, BrowserFirstSet); return 0;
    case kBrowserStart2: StartTask(Slot::BrowserSlot, BrowserSecondSet); return 0;
    case kBrowserStop:
      if (StopSlot(Slot::BrowserSlot)) SendCopyData(kBrowserStopped, BrowserTotalsText());
      return 0;
    case kBrowserStop2:
      if (StopSlot(Slot::BrowserSlot)) PostReply(kBrowserStop2, WorkerWindowParam(), 0);
      return 0;

    case kPcTracesStart: StartTask(Slot::PcTracesSlot, PcTracesFirstSet); return 0;
    case kPcTracesStart2: StartTask(Slot::PcTracesSlot, PcTracesSecondSet); return 0;
    case kPcTracesStop:
      if (StopSlot(Slot::PcTracesSlot)) SendCopyData(kPcTracesStopped, PcTracesStoppedText(PcCounterValues()));
      return 0;
    case kPcTracesStop2: StopWithWorkerWindow(Slot::PcTracesSlot, kPcTracesStop2); return 0;

    case kRecycleBinStart: StartTask(Slot::RecycleBinSlot, RecycleBinTask<kRecycleBinDone>); return 0;
    case kRecycleBinStart2: StartTask(Slot::RecycleBinSlot, RecycleBinTask<kRecycleBinDone2>); return 0;
    case kRecycleBinStop: StopRecycleBin(kRecycleBinStop); return 0;
    case kRecycleBinStop2: StopRecycleBin(kRecycleBinStop2); return 0;

    case kPluginCleanStart: StartTask(Slot::PluginCleanSlot, PluginCleanFirstSet); return 0;
    case kPluginCleanStart2: StartTask(Slot::PluginCleanSlot, PluginCleanSecondSet); return 0;
    case kPluginCleanStop: StopWithWorkerWindow(Slot::PluginCleanSlot, kPluginCleanStop); return 0;
    case kPluginCleanStop2: StopWithWorkerWindow(Slot::PluginCleanSlot, kPluginCleanStop2); return 0;

    case kFullScanStart: StartTask(Slot::FullScanSlot, FullScanTask); return 0;
    case kFullScanStop: StopSlot(Slot::FullScanSlot); return 0;

    default:
      return ::DefWindowProcW(window, message, wParam, lParam);
  }
}

}  // namespace scourel
