// The threads of a process, for the worker tests and the stop storm: a task's
// thread is one that was not there while the worker sat idle.
#pragma once

#include <set>

#include "common/unique_handle.h"
#include "common/win.h"

#include <tlhelp32.h>

namespace scourel::test {

inline std::set<DWORD> ThreadsOf(DWORD pid) {
  std::set<DWORD> ids;
  UniqueHandleKernel snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = ::Thread32First(snapshot.get(), &entry); more; more = ::Thread32Next(snapshot.get(), &entry)) {
    if (entry.th32OwnerProcessID == pid) ids.insert(entry.th32ThreadID);
  }
  return ids;
}

// Waits for every thread of the process that `idle` does not hold to end;
// false when one still runs after the time.
inline bool ThreadsBeyondEnd(DWORD pid, const std::set<DWORD>& idle, DWORD timeoutMs) {
  const ULONGLONG end = ::GetTickCount64() + timeoutMs;
  for (DWORD id : ThreadsOf(pid)) {
    if (idle.count(id)) continue;
    const UniqueHandleKernel thread(::OpenThread(SYNCHRONIZE, FALSE, id));
    const ULONGLONG now = ::GetTickCount64();
    if (thread && ::WaitForSingleObject(thread.get(), now < end ? static_cast<DWORD>(end - now) : 0) != WAIT_OBJECT_0) {
      return false;
    }
  }
  return true;
}

}  // namespace scourel::test
