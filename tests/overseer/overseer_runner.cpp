#include "overseer_runner.h"

#include "common/unique_handle.h"
#include "host/protocol.h"
#include "support/fixtures.h"

namespace scourel::test {

namespace {

std::wstring CaptureFile(const wchar_t* name) {
  wchar_t folder[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, folder);
  return std::wstring(folder) + L"overseer-test-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + name + L".txt";
}

UniqueHandleKernel InheritableFile(const std::wstring& path) {
  SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
  return UniqueHandleKernel(::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                                          CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

unsigned g_hangMs = 0;

LRESULT CALLBACK SilentProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message >= protocol::kJunkFilesStart && message <= protocol::kFullScanStop) {
    if (g_hangMs) ::Sleep(g_hangMs);
    return 0;
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

constexpr UINT kQuit = WM_APP + 7;

}  // namespace

OverseerRun RunOverseer(const std::wstring& arguments, unsigned limitMs) {
  OverseerRun run;
  const std::wstring outPath = CaptureFile(L"out");
  const std::wstring errPath = CaptureFile(L"err");
  {
    UniqueHandleKernel out = InheritableFile(outPath);
    UniqueHandleKernel err = InheritableFile(errPath);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = nullptr;
    startup.hStdOutput = out.get();
    startup.hStdError = err.get();
    std::wstring line = L"\"" + ProgramDir() + L"\\overseer.exe\" " + arguments;
    PROCESS_INFORMATION info{};
    const ULONGLONG start = ::GetTickCount64();
    const std::wstring folder = ProgramDir();
    if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &startup, &info)) {
      return run;
    }
    UniqueHandleKernel process(info.hProcess);
    UniqueHandleKernel thread(info.hThread);
    if (::WaitForSingleObject(process.get(), limitMs) == WAIT_OBJECT_0) {
      DWORD code = 0;
      ::GetExitCodeProcess(process.get(), &code);
      run.exitCode = static_cast<int>(code);
    } else {
      ::TerminateProcess(process.get(), 1);
      ::WaitForSingleObject(process.get(), 5000);
    }
    run.elapsedMs = static_cast<unsigned>(::GetTickCount64() - start);
  }
  run.out = ReadFileBytes(outPath);
  run.err = ReadFileBytes(errPath);
  ::DeleteFileW(outPath.c_str());
  ::DeleteFileW(errPath.c_str());
  return run;
}

SilentWorker::SilentWorker(unsigned hangMs) {
  g_hangMs = hangMs;
  ready_.reset(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  thread_ = std::thread([this] {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = SilentProc;
    windowClass.hInstance = ::GetModuleHandleW(nullptr);
    windowClass.lpszClassName = protocol::kWorkerClass;
    ::RegisterClassW(&windowClass);
    window_ = ::CreateWindowW(protocol::kWorkerClass, protocol::kWorkerWindowTitle, WS_OVERLAPPEDWINDOW, 0, 0, 10, 10,
                              nullptr, nullptr, windowClass.hInstance, nullptr);
    ::SetEvent(ready_.get());
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
      if (message.message == kQuit) break;
      ::DispatchMessageW(&message);
    }
    ::DestroyWindow(window_);
    ::UnregisterClassW(protocol::kWorkerClass, windowClass.hInstance);
  });
  ::WaitForSingleObject(ready_.get(), 10000);
}

SilentWorker::~SilentWorker() {
  ::PostMessageW(window_, kQuit, 0, 0);
  if (thread_.joinable()) thread_.join();
}

}  // namespace scourel::test
