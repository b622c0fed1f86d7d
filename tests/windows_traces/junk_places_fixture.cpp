#include "junk_places_fixture.h"

#include "common/win.h"
#include "shortcut_fixture.h"

namespace scourel::test {

std::wstring TempDir() {
  wchar_t buffer[MAX_PATH + 2] = {};
  ::GetTempPathW(MAX_PATH + 2, buffer);
  return buffer;  // ends with a backslash
}

std::wstring LocalAppDataDir() {
  wchar_t buffer[MAX_PATH] = {};
  ::SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, buffer);
  return buffer;
}

PlantedJunk::PlantedJunk(const std::wstring& name) {
  canaryDir_ = std::make_unique<ScratchDir>(name + L"-canary");
  canary_ = std::make_unique<CanaryTree>(canaryDir_->path());
  const std::wstring windows = WindowsDir();
  const std::wstring tag = L"scourel-" + name;

  tempSub_ = TempDir() + tag;
  MakeDirs(tempSub_ + L"\\nested\\deeper");
  const std::wstring readOnly = tempSub_ + L"\\readonly.tmp";
  WriteFileBytes(readOnly, std::string(1000, 'r'));
  ::SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
  MakeDirs(windows + L"\\temp");
  const std::wstring windowsTemp = windows + L"\\temp\\" + tag + L".tmp";
  WriteFileBytes(windowsTemp, std::string(300, 'w'));

  const std::wstring dumps = windows + L"\\Minidump";
  MakeDirs(dumps);
  const std::wstring dump = dumps + L"\\" + tag + L".dmp";
  WriteFileBytes(dump, std::string(700, 'd'));

  const std::wstring cbs = windows + L"\\Logs\\CBS\\" + tag;
  MakeDirs(cbs);
  WriteFileBytes(cbs + L"\\CBS.log", std::string(250, 'c'));
  const std::wstring logsTop = windows + L"\\" + tag + L".LOG";
  WriteFileBytes(logsTop, std::string(60, 'l'));

  const std::wstring sharedWer = windows.substr(0, 1) + L":\\ProgramData\\Microsoft\\Windows\\WER\\" + tag;
  MakeDirs(sharedWer + L"\\ReportQueue");
  WriteFileBytes(sharedWer + L"\\ReportQueue\\Report.wer", std::string(100, 'q'));
  const std::wstring userWer = LocalAppDataDir() + L"\\Microsoft\\Windows\\WER\\" + tag;
  MakeDirs(userWer);
  WriteFileBytes(userWer + L"\\Report.wer", std::string(50, 'u'));

  links_ = {tempSub_ + L"\\link-to-canary", sharedWer + L"\\link-to-canary"};
  bool linked = true;
  for (const std::wstring& link : links_) {
    RemoveUnixLink(link);
    linked = MakeUnixSymlink(canary_->root(), link) && linked;
  }

  erased_ = {readOnly, windowsTemp, cbs + L"\\CBS.log", logsTop, sharedWer + L"\\ReportQueue\\Report.wer",
             userWer + L"\\Report.wer"};
  kept_ = {dump};
  cleanup_ = {tempSub_, windowsTemp, dump, windows + L"\\Logs\\CBS\\" + tag, logsTop, sharedWer, userWer};
  ok_ = linked;
}

PlantedJunk::~PlantedJunk() {
  for (const std::wstring& link : links_) RemoveUnixLink(link);
  for (const std::wstring& path : cleanup_) RemoveTree(path);
}

}  // namespace scourel::test
