#include "overseer_runner.h"

#include "common/hidden_window.h"
#include "protocol/messages.h"
#include "support/fixtures.h"

namespace scourel::test {

OverseerRun RunOverseer(const std::wstring& arguments, unsigned limitMs) {
  OverseerRun run;
  wchar_t temp[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, temp);
  const std::wstring capture = temp + (L"overseer-run-" + std::to_wstring(::GetCurrentProcessId()));
  {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    auto open = [&](const wchar_t* suffix) {
      return UniqueHandleKernel(::CreateFileW((capture + suffix).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                              &inherit, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    };
    UniqueHandleKernel out = open(L".out"), err = open(L".err");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out.get();
    startup.hStdError = err.get();
    std::wstring line = L"\"" + ProgramDir() + L"\\overseer.exe\" " + arguments;
    PROCESS_INFORMATION info{};
    const ULONGLONG start = ::GetTickCount64();
    if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &info)) {
      return run;
    }
    UniqueHandleKernel process(info.hProcess), thread(info.hThread);
    DWORD code = 0;
    if (::WaitForSingleObject(process.get(), limitMs) == WAIT_OBJECT_0 && ::GetExitCodeProcess(process.get(), &code)) {
      run.exitCode = static_cast<int>(code);
    } else {
      ::TerminateProcess(process.get(), 1);
      ::WaitForSingleObject(process.get(), 5000);
    }
    run.elapsedMs = static_cast<unsigned>(::GetTickCount64() - start);
  }
  run.out = ReadFileBytes(capture + L".out");
  run.err = ReadFileBytes(capture + L".err");
  ::DeleteFileW((capture + L".out").c_str());
  ::DeleteFileW((capture + L".err").c_str());
  return run;
}

SilentWorker::SilentWorker(unsigned hangMs) {
  UniqueHandleKernel ready(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  thread_ = std::thread([this, hangMs, event = ready.get()] {
    HiddenWindow window;
    WindowSpec spec;
    spec.className = protocol::kWorkerClass;
    spec.title = protocol::kWorkerWindowTitle;
    spec.style = 0;
    if (!window.Register(spec)) {
      (void)window.Create([hangMs](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (message >= 2034 && message <= 2088) {
          ::Sleep(hangMs);
          return 0;
        }
        if (message == WM_CLOSE) ::PostQuitMessage(0);
        return std::nullopt;
      });
    }
    window_ = window.get();
    ::SetEvent(event);
    for (MSG message; ::GetMessageW(&message, nullptr, 0, 0) > 0;) ::DispatchMessageW(&message);
  });
  ::WaitForSingleObject(ready.get(), 10000);
}

SilentWorker::~SilentWorker() {
  ::PostMessageW(window_, WM_CLOSE, 0, 0);
  thread_.join();
}

}  // namespace scourel::test
