#include "overseer_runner.h"

namespace scourel::test {

OverseerRun RunOverseer(const std::wstring& arguments, unsigned limitMs) {
  OverseerRun run;
  // Not in Temp: a junk clean run there would shred the capture it writes to.
  MakeDirs(L"C:\\scourel-tests");
  const std::wstring capture = L"C:\\scourel-tests\\overseer-run-" + std::to_wstring(::GetCurrentProcessId());
  {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    auto open = [&](const wchar_t* suffix) {
      return UniqueHandleKernel(::CreateFileW((capture + suffix).c_str(), GENERIC_WRITE,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, CREATE_ALWAYS, 0, nullptr));
    };
    const UniqueHandleKernel out = open(L".out"), err = open(L".err");
    const ULONGLONG start = ::GetTickCount64();
    const UniqueHandleKernel process =
        StartProgram(L"\"" + ProgramDir() + L"\\overseer.exe\" " + arguments, out.get(), err.get());
    if (process) run.exitCode = WaitAndEnd(process.get(), limitMs);
    run.elapsedMs = static_cast<unsigned>(::GetTickCount64() - start);
  }
  run.out = ReadFileBytes(capture + L".out");
  run.err = ReadFileBytes(capture + L".err");
  RemoveTree(capture + L".out");
  RemoveTree(capture + L".err");
  return run;
}

}  // namespace scourel::test
