// Stop storm: one worker driven through real window messages with bounded
// random sequences of starts (either command set), stops and closes over
// every slot. Checks that every reply is one the protocol table documents,
// with its payload and its way of delivery; that every started task gives
// exactly its replies, and none after the stop that took it (a sent reply
// decided just before the stop may trail it by a few milliseconds); that a
// stop answers exactly when the slot holds a task; that no command and no
// wait hangs; and that WM_CLOSE, or the second-set plug-in clean, ends the
// worker with exit code 0.
//
//   wine-run bench_stop_storm.exe [--sequences N] [--seed S]
//
// Prints the sequences run, the replies checked and the failures; exits 1
// when anything failed. The worker runs from C:\scourel-storm with its own
// Settings.INI (every switch off) and its own temporary folder.
#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <functional>
#include <limits>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "common/hidden_window.h"
#include "common/unique_handle.h"
#include "common/win.h"
#include "overseer/reply_decoding.h"
#include "protocol/categories.h"
#include "protocol/messages.h"
#include "protocol/tasks.h"
#include "support/process_threads.h"

namespace {

namespace p = scourel::protocol;
using scourel::UniqueHandleKernel;
using scourel::test::ThreadsOf;

constexpr long kNever = std::numeric_limits<long>::max();
constexpr DWORD kCommandTimeoutMs = 10000;
constexpr ULONGLONG kSettleTimeoutMs = 60000;
constexpr DWORD kTrailMs = 5;
constexpr ULONGLONG kStartTimeoutMs = 30000;
const std::wstring kRoot = L"C:\\scourel-storm";

struct Arrival {
  UINT id = 0;
  unsigned kind = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  bool sent = false;
  std::uint32_t cbData = 0;
  std::wstring text;
  long stamp = 0;
  bool stopReply = false;  // the answer of a stop command
};

// What a task sends on its own: its completion, a progress step, a full-scan record.
struct ReplyType {
  int task = -1;
  int set = 0;
  unsigned id = 0;    // message id, WM_COPYDATA for records
  unsigned kind = 0;  // copy-data kind or progress step
};

struct Record {
  int task = 0;
  int set = 0;
  long start = 0;
  long deadline = kNever;  // nothing of it may arrive after this
  bool must = true;        // it has to send every reply it has
};

// Joins words and numbers by appending, piece by piece: GCC 12 at -O3 takes
// `"text" + std::to_string(n)` for an overlapping copy (-Wrestrict).
template <typename... Pieces>
std::string Words(const Pieces&... pieces) {
  std::string text;
  auto add = [&text](const auto& piece) {
    if constexpr (std::is_arithmetic_v<std::decay_t<decltype(piece)>>) {
      text += std::to_string(piece);
    } else {
      text += piece;
    }
  };
  (add(pieces), ...);
  return text;
}

const p::TaskSpec& Spec(int task) { return p::kTasks[task]; }
int TaskOf(const p::TaskSpec& spec) { return static_cast<int>(spec.task); }

std::vector<ReplyType> RepliesOf(const Record& record) {
  std::vector<ReplyType> types;
  const p::TaskSpec& spec = Spec(record.task);
  if (spec.task == p::Task::kFullScan) {
    for (unsigned kind : p::kFullScanReplies) types.push_back({record.task, 0, WM_COPYDATA, kind});
    return types;
  }
  const p::Reply& done = spec.sets[record.set].done;
  if (done.exists()) types.push_back({record.task, record.set, done.id, done.kind});
  if (spec.progress && record.set == p::kFirstSet) {
    const unsigned steps = spec.progress == p::kPcTracesProgress ? p::kPcStepCount - 1 : p::kBrowserCategoryCount - 1;
    for (unsigned step = 1; step <= steps; ++step) types.push_back({record.task, 0, spec.progress, step});
  }
  return types;
}

// A task keeps its slot after its completion: the first-set browser task and
// the second-set PC-traces task.
bool KeepsSlot(const Record& record) {
  const p::Task task = Spec(record.task).task;
  return (task == p::Task::kBrowser && record.set == p::kFirstSet) ||
         (task == p::Task::kPcTraces && record.set == p::kSecondSet);
}

void WriteFileOfSize(const std::wstring& path, std::size_t size) {
  UniqueHandleKernel file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  const std::string bytes(size, 'S');
  DWORD written = 0;
  if (file) ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(size), &written, nullptr);
}

struct Command {
  unsigned id = 0;
  int task = -1;  // -1: an id no task has
  int set = 0;
  bool stop = false;
};

class Storm {
 public:
  explicit Storm(std::uint32_t seed) : random_(seed) {}

  bool Open();
  void RunSequence();
  void Finish();
  void Report(long sequences) const;
  bool Failed() const { return failures_ > 0; }

 private:
  std::optional<LRESULT> Receive(UINT message, WPARAM wParam, LPARAM lParam);
  void Pump();
  void PumpFor(DWORD ms);
  bool WorkerEnded() const { return process_ && ::WaitForSingleObject(process_.get(), 0) == WAIT_OBJECT_0; }
  void Fail(const std::string& what);

  bool StartWorker();
  void PlantTemporaryFiles();
  // Sends one command; false when the worker is gone or did not answer.
  bool Send(unsigned id);
  bool Start(const Command& command);
  // `settled`: sent once no task thread runs, to empty the slot.
  bool Stop(const Command& command, bool settled = false);
  void Close();
  // Waits until the worker runs no task thread; false when it still does.
  bool Settle();
  void EndedWorker(bool closed);
  void CheckReplies();
  // The reply as the protocol table documents it: an id it has, sent or
  // posted as it says, with its payload.
  void CheckDocumented(const Arrival& arrival);
  std::string Describe(const ReplyType& type) const;

  scourel::HiddenWindow window_;
  std::mt19937 random_;
  std::vector<Command> commands_;
  std::vector<Command> noOps_;  // ids that start and stop nothing
  UniqueHandleKernel process_;
  HWND worker_ = nullptr;
  HWND sequenceWorker_ = nullptr;  // the worker of the replies being checked
  DWORD pid_ = 0;
  std::set<DWORD> idle_;
  long clock_ = 0;
  std::vector<Arrival> arrivals_;
  std::vector<Record> records_;
  bool slotEmpty_[p::kSlotCount] = {};
  long checked_ = 0;
  long failures_ = 0;
  std::string history_;  // the commands of the sequence, for failure reports
};

bool Storm::Open() {
  scourel::WindowSpec spec;
  spec.className = p::kControllerClass;
  spec.title = L"stop storm";
  if (window_.Register(spec)) return false;
  if (window_.Create([this](HWND, UINT message, WPARAM wParam, LPARAM lParam) {
        return Receive(message, wParam, lParam);
      })) {
    return false;
  }
  for (const p::TaskSpec& spec : p::kTasks) {
    for (int set = p::kFirstSet; set <= p::kSecondSet; ++set) {
      const p::CommandSet& commands = spec.sets[set];
      if (commands.start) commands_.push_back({commands.start, TaskOf(spec), set, false});
      const bool shared = set == p::kSecondSet && commands.stop == spec.sets[p::kFirstSet].stop;
      if (commands.stop && !shared) commands_.push_back({commands.stop, TaskOf(spec), set, true});
    }
  }
  // Accepted and ignored, and every id between the commands that no command has.
  for (unsigned id = 2034; id <= 2088; ++id) {
    if (!p::FindCommand(id)) noOps_.push_back({id});
  }

  // A worker left behind by anything else would answer our commands.
  while (HWND stray = ::FindWindowW(p::kWorkerClass, nullptr)) {
    ::PostMessageW(stray, WM_CLOSE, 0, 0);
    PumpFor(100);
  }
  ::CreateDirectoryW(kRoot.c_str(), nullptr);
  ::CreateDirectoryW((kRoot + L"\\bin").c_str(), nullptr);
  ::CreateDirectoryW((kRoot + L"\\temp").c_str(), nullptr);
  wchar_t self[MAX_PATH];
  ::GetModuleFileNameW(nullptr, self, MAX_PATH);
  std::wstring source = self;
  source = source.substr(0, source.rfind(L'\\')) + L"\\scourel.exe";
  if (!::CopyFileW(source.c_str(), (kRoot + L"\\bin\\scourel.exe").c_str(), FALSE)) return false;
  // The junk-file task walks the worker's temporary folder: this one.
  ::SetEnvironmentVariableW(L"TMP", (kRoot + L"\\temp").c_str());
  ::SetEnvironmentVariableW(L"TEMP", (kRoot + L"\\temp").c_str());
  return true;
}

std::optional<LRESULT> Storm::Receive(UINT message, WPARAM wParam, LPARAM lParam) {
  const bool reply = message == WM_COPYDATA || (message >= 2034 && message <= 2090);
  if (!reply) return std::nullopt;
  Arrival arrival;
  arrival.id = message;
  arrival.wParam = wParam;
  arrival.lParam = lParam;
  arrival.sent = ::InSendMessage();
  arrival.stamp = ++clock_;
  if (message == WM_COPYDATA) {
    const auto* record = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
    arrival.kind = static_cast<unsigned>(record->dwData);
    arrival.cbData = record->cbData;
    const auto* text = static_cast<const wchar_t*>(record->lpData);
    std::size_t length = 0;
    while (text && length < record->cbData / sizeof(wchar_t) && text[length]) ++length;
    arrival.text.assign(text ? text : L"", length);
  }
  arrivals_.push_back(std::move(arrival));
  return message == WM_COPYDATA ? TRUE : 0;
}

void Storm::Pump() {
  MSG message;
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
}

void Storm::PumpFor(DWORD ms) {
  const ULONGLONG end = ::GetTickCount64() + ms;
  for (ULONGLONG now = ::GetTickCount64(); now < end; now = ::GetTickCount64()) {
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    Pump();
  }
  Pump();
}

void Storm::Fail(const std::string& what) {
  if (++failures_ <= 30) std::printf("FAIL: %s (in the sequence%s)\n", what.c_str(), history_.c_str());
}

bool Storm::StartWorker() {
  const bool modeO = random_() % 2 == 0;
  std::wstring line = L"\"" + kRoot + L"\\bin\\scourel.exe\"" + (modeO ? L" o" : L"");
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info{};
  if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, kRoot.c_str(),
                        &startup, &info)) {
    return false;
  }
  process_.reset(info.hProcess);
  UniqueHandleKernel thread(info.hThread);
  pid_ = info.dwProcessId;
  // Its own window, not one of a worker still on its way out.
  worker_ = nullptr;
  for (const ULONGLONG end = ::GetTickCount64() + kStartTimeoutMs; !worker_ && ::GetTickCount64() < end;) {
    for (HWND window = nullptr; (window = ::FindWindowExW(nullptr, window, p::kWorkerClass, nullptr)) != nullptr;) {
      DWORD owner = 0;
      ::GetWindowThreadProcessId(window, &owner);
      if (owner == pid_) worker_ = window;
    }
    if (!worker_) PumpFor(5);
  }
  if (!worker_ || !Send(p::kIgnoredCommand)) return false;
  idle_ = ThreadsOf(pid_);
  for (bool& empty : slotEmpty_) empty = true;
  return true;
}

void Storm::PlantTemporaryFiles() {
  // Something for the junk-file task to shred, and to be stopped in.
  for (int i = 0; i < 3; ++i) WriteFileOfSize(kRoot + L"\\temp\\small" + std::to_wstring(i) + L".tmp", 16384);
  WriteFileOfSize(kRoot + L"\\temp\\large.tmp", 1 << 20);
  const wchar_t* const methods[] = {L"0", L"1", L"3"};
  ::WritePrivateProfileStringW(L"Corvane Suite", L"IDS_WIPEALGORITHM", methods[random_() % 3],
                               (kRoot + L"\\Settings.INI").c_str());
}

bool Storm::Send(unsigned id) {
  history_ += Words(" ", id);
  DWORD_PTR result = 0;
  const bool answered = ::SendMessageTimeoutW(worker_, id, 0, 0, SMTO_NORMAL, kCommandTimeoutMs, &result) != 0;
  Pump();
  if (answered) {
    if (result != 0) Fail(Words("command ", id, " returned ", result));
    return true;
  }
  // A worker that is ending (the second-set plug-in clean) has no window left to answer.
  if (::WaitForSingleObject(process_.get(), 2000) != WAIT_OBJECT_0) {
    Fail(Words("the worker did not accept command ", id, " within 10 s"));
  }
  return false;
}

bool Storm::Start(const Command& command) {
  Record record{command.task, command.set, ++clock_};
  const bool sent = Send(command.id);
  // A command the ending worker no longer took started nothing.
  if (!sent) record.must = false;
  records_.push_back(record);
  if (Spec(command.task).slot == p::Slot::kMainThread) {
    // The file-extension fix replies before its command returns.
    records_.back().deadline = clock_;
  } else {
    slotEmpty_[static_cast<int>(Spec(command.task).slot)] = false;
  }
  return sent;
}

bool Storm::Stop(const Command& command, bool settled) {
  const p::TaskSpec& spec = Spec(command.task);
  const long sentAt = ++clock_;
  const bool sent = Send(command.id);
  // A reply the task decided on just before the stop is sent just after it.
  if (sent) PumpFor(kTrailMs);
  const long answered = clock_;
  const p::Reply& expected = spec.sets[command.set].stopped;
  int replies = 0;
  for (Arrival& arrival : arrivals_) {
    if (arrival.stamp > sentAt && !arrival.stopReply && expected.exists() && arrival.id == expected.id &&
        arrival.kind == expected.kind && replies == 0) {
      arrival.stopReply = true;
      ++replies;
    }
  }
  // A worker that ended in the middle of the stop (the second-set plug-in
  // clean's end) may or may not have answered: that says nothing of its slot.
  if (!sent) return false;
  const int slot = static_cast<int>(spec.slot);
  Record* latest = nullptr;
  for (auto it = records_.rbegin(); it != records_.rend() && !latest; ++it) {
    if (Spec(it->task).slot == spec.slot) latest = &*it;
  }
  if (replies > 0 && (slotEmpty_[slot] || !latest)) {
    Fail(Words("a stop of an empty slot answered: ", command.id));
  }
  if (latest && !slotEmpty_[slot]) {
    // A second-set PC-traces task that ended after this one started may have stopped it.
    const bool takenByAnother =
        spec.task == p::Task::kPcTraces && std::any_of(arrivals_.begin(), arrivals_.end(), [&](const Arrival& a) {
          return a.id == 2075 && !a.stopReply && a.stamp > latest->start;
        });
    if (settled && replies > 0 && !KeepsSlot(*latest)) {
      Fail(Words("a task left its slot taken when it ended: ", command.id));
    }
    if (replies > 0 || (spec.task == p::Task::kFullScan && !settled)) {
      // Taken here (the full scan's stop says nothing, so it may have been).
      latest->deadline = std::min(latest->deadline, answered);
      latest->must = false;
    } else if (latest->must && !takenByAnother) {
      // The slot was empty: the task had ended, and everything it sent is here.
      if (KeepsSlot(*latest)) Fail(Words("a stop found no task in a slot its task keeps: ", command.id));
      latest->deadline = std::min(latest->deadline, answered);
    }
  }
  slotEmpty_[slot] = true;
  return true;
}

void Storm::Close() {
  history_ += " WM_CLOSE";
  ::PostMessageW(worker_, WM_CLOSE, 0, 0);
  EndedWorker(true);
}

void Storm::EndedWorker(bool closed) {
  HANDLE handle = process_.get();
  const ULONGLONG end = ::GetTickCount64() + kCommandTimeoutMs;
  while (::WaitForSingleObject(handle, 0) != WAIT_OBJECT_0 && ::GetTickCount64() < end) {
    ::MsgWaitForMultipleObjects(1, &handle, FALSE, 50, QS_ALLINPUT);
    Pump();
  }
  Pump();
  DWORD code = STILL_ACTIVE;
  ::GetExitCodeProcess(handle, &code);
  if (code == STILL_ACTIVE) {
    Fail(closed ? "WM_CLOSE did not end the worker within 10 s" : "the worker hung while ending");
    ::TerminateProcess(handle, 1);
    ::WaitForSingleObject(handle, 5000);
  } else if (code != 0) {
    Fail(Words("the worker ended with exit code ", code));
  }
  if (!closed) {
    const bool pluginEnd = std::any_of(arrivals_.begin(), arrivals_.end(), [](const Arrival& a) { return a.id == 2080; });
    if (!pluginEnd) Fail("the worker ended on its own without the second-set plug-in clean's reply");
  }
  // Whatever ran is gone with the process.
  for (Record& record : records_) record.must = false;
  process_.reset();
  worker_ = nullptr;
}

bool Storm::Settle() {
  const ULONGLONG end = ::GetTickCount64() + kSettleTimeoutMs;
  for (;;) {
    const std::set<DWORD> now = ThreadsOf(pid_);
    if (std::includes(idle_.begin(), idle_.end(), now.begin(), now.end())) break;
    if (WorkerEnded()) return true;
    if (::GetTickCount64() >= end) {
      Fail("a task thread still ran 60 s after the sequence");
      return false;
    }
    PumpFor(10);
  }
  PumpFor(20);  // posted replies of the last thread to end
  return true;
}

std::string Storm::Describe(const ReplyType& type) const {
  const p::TaskSpec& spec = Spec(type.task);
  std::string text = std::string(spec.title) + (type.set ? " (second set)" : "") + ": ";
  if (type.id == WM_COPYDATA) return Words(text, "copy-data ", type.kind);
  if (type.id == spec.progress) return Words(text, "progress ", type.kind);
  return Words(text, "message ", type.id);
}

// Every reply that is no stop's must be one a started task could send, each
// task's replies all there unless it was stopped, and nothing of a stopped
// task after its stop: a bipartite matching of replies to what tasks owe.
void Storm::CheckReplies() {
  struct Unit {
    int record;
    ReplyType type;
    bool must;
  };
  std::vector<Unit> units;
  for (int r = 0; r < static_cast<int>(records_.size()); ++r) {
    for (const ReplyType& type : RepliesOf(records_[r])) units.push_back({r, type, records_[r].must});
  }
  std::vector<int> replies;  // arrivals to account for
  for (int a = 0; a < static_cast<int>(arrivals_.size()); ++a) {
    const Arrival& arrival = arrivals_[a];
    if (arrival.stopReply) continue;
    // The second-set PC-traces task stops a task that replaced it, and says so with 2075.
    if (arrival.id == 2075) {
      for (Record& record : records_) {
        if (Spec(record.task).task == p::Task::kPcTraces && record.start < arrival.stamp) record.must = false;
      }
      const bool taker = std::any_of(arrivals_.begin(), arrivals_.end(), [](const Arrival& a) { return a.id == 2074; });
      if (!taker) Fail("2075 from no second-set PC-traces task");
      continue;
    }
    replies.push_back(a);
  }
  for (Unit& unit : units) unit.must = unit.must && records_[unit.record].must;

  auto fits = [&](const Unit& unit, const Arrival& arrival) {
    const Record& record = records_[unit.record];
    const unsigned kind = arrival.id == Spec(record.task).progress ? static_cast<unsigned>(arrival.wParam) : arrival.kind;
    return arrival.stamp > record.start && arrival.stamp <= record.deadline && unit.type.id == arrival.id &&
           unit.type.kind == kind;
  };
  std::vector<int> unitOf(replies.size(), -1), replyOf(units.size(), -1);
  std::vector<char> seen;
  // Augmenting paths from a unit, then from a reply; a matched side stays matched.
  std::function<bool(int)> augmentUnit = [&](int u) {
    for (int i = 0; i < static_cast<int>(replies.size()); ++i) {
      if (seen[i] || !fits(units[u], arrivals_[replies[i]])) continue;
      seen[i] = 1;
      if (unitOf[i] < 0 || augmentUnit(unitOf[i])) {
        unitOf[i] = u, replyOf[u] = i;
        return true;
      }
    }
    return false;
  };
  std::vector<char> seenUnit;
  std::function<bool(int)> augmentReply = [&](int i) {
    for (int u = 0; u < static_cast<int>(units.size()); ++u) {
      if (seenUnit[u] || !fits(units[u], arrivals_[replies[i]])) continue;
      seenUnit[u] = 1;
      if (replyOf[u] < 0 || augmentReply(replyOf[u])) {
        unitOf[i] = u, replyOf[u] = i;
        return true;
      }
    }
    return false;
  };
  for (int u = 0; u < static_cast<int>(units.size()); ++u) {
    if (!units[u].must) continue;
    seen.assign(replies.size(), 0);
    if (!augmentUnit(u)) {
      const Record& record = records_[units[u].record];
      Fail(Words(Describe(units[u].type), " never came from the task started at ", record.start));
    }
  }
  for (int i = 0; i < static_cast<int>(replies.size()); ++i) {
    if (unitOf[i] >= 0) continue;
    seenUnit.assign(units.size(), 0);
    if (!augmentReply(i)) {
      const Arrival& arrival = arrivals_[replies[i]];
      Fail(Words("message ", arrival.id, " kind/step ", arrival.id == WM_COPYDATA ? arrival.kind : arrival.wParam,
                 " at ", arrival.stamp, " from no task still running"));
    }
  }
}

void Storm::CheckDocumented(const Arrival& arrival) {
  ++checked_;
  const std::string name =
      arrival.id == WM_COPYDATA ? Words("message ", arrival.id, " kind ", arrival.kind) : Words("message ", arrival.id);
  if (arrival.id == p::kPcTracesProgress || arrival.id == p::kBrowserProgress) {
    const WPARAM steps = arrival.id == p::kPcTracesProgress ? p::kPcStepCount - 1 : p::kBrowserCategoryCount - 1;
    if (arrival.sent || arrival.lParam != 0 || arrival.wParam < 1 || arrival.wParam > steps) {
      Fail(Words(name, ": not a posted step 1 to ", steps));
    }
    return;
  }
  const bool scan = arrival.id == WM_COPYDATA && std::find(std::begin(p::kFullScanReplies), std::end(p::kFullScanReplies),
                                                           arrival.kind) != std::end(p::kFullScanReplies);
  const std::optional<p::ReplyMatch> match = p::FindReply(arrival.id, arrival.kind);
  if (!scan && !match) {
    Fail(name + ": no task sends it");
    return;
  }
  const p::Payload payload = scan ? p::Payload::kCopyData : match->reply->payload;
  const bool sent = scan || match->reply->delivery == p::Delivery::kSend;
  const auto worker = reinterpret_cast<WPARAM>(sequenceWorker_);
  bool ok = arrival.sent == sent;
  switch (payload) {
    case p::Payload::kCountAndBytes:
      ok = ok && arrival.lParam >= 0 &&
           arrival.wParam == static_cast<WPARAM>(static_cast<INT_PTR>(static_cast<std::int32_t>(arrival.wParam)));
      break;
    case p::Payload::kWorkerWindow: ok = ok && arrival.wParam == worker && arrival.lParam == 0; break;
    case p::Payload::kZeros: ok = ok && arrival.wParam == 0 && arrival.lParam == 0; break;
    case p::Payload::kCopyData:
      ok = ok && arrival.cbData == p::RecordBytes(arrival.kind) &&
           arrival.wParam == (scan ? reinterpret_cast<WPARAM>(window_.get()) : worker) &&
           overseer::DecodeCopyData(arrival.kind, arrival.text).readable;
      break;
    case p::Payload::kNothing: ok = false; break;
  }
  if (!ok) Fail(name + ": not as documented (" + (arrival.sent ? "sent" : "posted") + ")");
}

void Storm::RunSequence() {
  arrivals_.clear();
  records_.clear();
  history_.clear();
  if (!process_ && !StartWorker()) {
    Fail(worker_ ? "the new worker did not answer" : "the worker's window did not appear within 30 s");
    if (process_) ::TerminateProcess(process_.get(), 1);
    process_.reset();
    return;
  }
  sequenceWorker_ = worker_;
  PlantTemporaryFiles();
  bool closed = false;
  bool alive = true;
  for (int left = 1 + static_cast<int>(random_() % 10); left > 0 && alive; --left) {
    if (random_() % 100 < 3) {
      Close();
      closed = true;
      break;
    }
    const Command& command = random_() % 100 < 5 ? noOps_[random_() % noOps_.size()]
                                                 : commands_[random_() % commands_.size()];
    alive = command.task < 0 ? Send(command.id) : command.stop ? Stop(command) : Start(command);
    if (alive && random_() % 2) PumpFor(random_() % 15);
  }
  if (!closed) {
    bool terminated = false;
    if (!WorkerEnded() && Settle() && !WorkerEnded()) {
      // Every slot emptied by a stop of either set, each answer checked.
      std::set<p::Slot> done;
      for (const Command& command : commands_) {
        if (command.task < 0 || !command.stop || (random_() % 2 && command.set == p::kFirstSet)) continue;
        if (done.insert(Spec(command.task).slot).second) Stop(command, true);
      }
      PumpFor(20);
    } else if (!WorkerEnded()) {
      ::TerminateProcess(process_.get(), 1);
      ::WaitForSingleObject(process_.get(), 5000);
      for (Record& record : records_) record.must = false;
      process_.reset();
      terminated = true;
    }
    if (!terminated && WorkerEnded()) EndedWorker(false);
  }
  for (const Arrival& arrival : arrivals_) CheckDocumented(arrival);
  CheckReplies();
  if (process_ && random_() % 10 == 0) Close();
}

void Storm::Finish() {
  if (process_) Close();
  std::wstring temp = kRoot + L"\\temp\\";
  for (const wchar_t* name : {L"small0.tmp", L"small1.tmp", L"small2.tmp", L"large.tmp"}) {
    ::DeleteFileW((temp + name).c_str());
  }
  ::RemoveDirectoryW(temp.c_str());
  ::DeleteFileW((kRoot + L"\\bin\\scourel.exe").c_str());
  ::RemoveDirectoryW((kRoot + L"\\bin").c_str());
  ::DeleteFileW((kRoot + L"\\Settings.INI").c_str());
  ::RemoveDirectoryW(kRoot.c_str());
}

void Storm::Report(long sequences) const {
  std::printf("sequences run %ld, replies checked %ld, failures %ld\n", sequences, checked_, failures_);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  wchar_t sandbox[8];
  if (::GetEnvironmentVariableW(L"SCOUREL_SANDBOX", sandbox, 8) == 0) {
    std::fprintf(stderr, "bench_stop_storm: run it through the build's wine-run\n");
    return 2;
  }
  long sequences = 1000;
  std::uint32_t seed = 2088;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::wcscmp(argv[i], L"--sequences") == 0) sequences = std::wcstol(argv[i + 1], nullptr, 10);
    if (std::wcscmp(argv[i], L"--seed") == 0) seed = static_cast<std::uint32_t>(std::wcstoul(argv[i + 1], nullptr, 10));
  }
  Storm storm(seed);
  if (!storm.Open()) {
    std::fprintf(stderr, "bench_stop_storm: cannot open the controller window or install the worker\n");
    return 2;
  }
  const ULONGLONG start = ::GetTickCount64();
  for (long i = 0; i < sequences; ++i) {
    storm.RunSequence();
    if ((i + 1) % 500 == 0) {
      std::printf("after %ld sequences (%.0f s): ", i + 1, (::GetTickCount64() - start) / 1000.0);
      storm.Report(i + 1);
      std::fflush(stdout);
    }
  }
  storm.Finish();
  std::printf("seed %u, %.1f s: ", seed, (::GetTickCount64() - start) / 1000.0);
  storm.Report(sequences);
  return storm.Failed() ? 1 : 0;
}
