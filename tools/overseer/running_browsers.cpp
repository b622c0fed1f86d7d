#include "overseer/running_browsers.h"

#include <algorithm>

#include "common/win.h"

#include <tlhelp32.h>

#include "common/text.h"
#include "common/unique_handle.h"
#include "overseer/browser_discovery.h"
#include "overseer/report_output.h"
#include "plugins/plugin_targets.h"

namespace overseer {

std::vector<std::string> RunningBrowsers() {
  std::vector<std::wstring> processes;
  const scourel::UniqueHandleKernel snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof(entry);
  for (bool more = snapshot && ::Process32FirstW(snapshot.get(), &entry); more;
       more = ::Process32NextW(snapshot.get(), &entry)) {
    processes.emplace_back(entry.szExeFile);
  }
  // Browsers that share an executable are named together: "Chrome or Chromium (chrome.exe)".
  std::vector<std::pair<std::wstring, std::string>> running;
  for (const BrowserInstall& browser : BrowserInstalls()) {
    bool runs = false;
    for (const std::wstring& process : processes) runs = runs || scourel::SameTextIgnoringCase(process, browser.process);
    if (!runs) continue;
    auto same = std::find_if(running.begin(), running.end(), [&](const auto& r) { return r.first == browser.process; });
    if (same == running.end()) {
      running.emplace_back(browser.process, Utf8(browser.name));
    } else {
      same->second += " or " + Utf8(browser.name);
    }
  }
  std::vector<std::string> lines;
  for (const auto& [process, names] : running) lines.push_back(names + " (" + Utf8(process) + ")");
  return lines;
}

}  // namespace overseer
