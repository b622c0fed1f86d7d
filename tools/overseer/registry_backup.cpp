#include "overseer/registry_backup.h"

#include <cstdio>
#include <set>

#include "common/registry_links.h"
#include "common/registry_paths.h"
#include "common/unique_handle.h"
#include "overseer/report_output.h"
#include "registry_cleaner/registry_fix.h"
#include "registry_cleaner/registry_scan.h"
#include "registry_cleaner/scan_keys.h"
#include "task/task_context.h"

namespace overseer {

namespace {

namespace p = scourel::protocol;
using scourel::RegistryIssue;

struct Location {
  HKEY root;
  std::wstring rootName;
  std::wstring path;
};

// Where a row's key lives: a class key is written below Software\Classes of
// the machine and of the user, wherever it is found, so that an import puts
// it back in the same place.
std::vector<Location> LocationsOf(const std::wstring& rootName, const std::wstring& path) {
  if (rootName == L"HKEY_CLASSES_ROOT") {
    return {{HKEY_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE", L"Software\\Classes\\" + path},
            {HKEY_CURRENT_USER, L"HKEY_CURRENT_USER", L"Software\\Classes\\" + path}};
  }
  return {{scourel::RootKeyNamed(rootName), rootName, path}};
}

bool Writable(const std::wstring& name) { return name.find_first_of(L"\r\n") == std::wstring::npos; }

std::wstring Quoted(const std::wstring& name) {
  std::wstring out = L"\"";
  for (wchar_t c : name) {
    if (c == L'\\' || c == L'"') out += L'\\';
    out += c;
  }
  return out + L"\"";
}

// Every value as hex of its own type, so that its bytes come back exactly.
std::wstring ValueLine(const std::wstring& name, DWORD type, const BYTE* data, DWORD size) {
  wchar_t head[32];
  if (type == REG_BINARY) {
    std::swprintf(head, 32, L"=hex:");
  } else {
    std::swprintf(head, 32, L"=hex(%lx):", static_cast<unsigned long>(type));
  }
  std::wstring line = (name.empty() ? L"@" : Quoted(name)) + head;
  for (DWORD i = 0; i < size; ++i) {
    wchar_t byte[4];
    std::swprintf(byte, 4, L"%02x", data[i]);
    line += byte;
    if (i + 1 < size) line += (i % 24 == 23) ? L",\\\r\n  " : L",";
  }
  return line + L"\r\n";
}

class RegText {
 public:
  std::optional<std::string> Tree(const Location& at, int depth = 0) {
    // The fix deletes nothing through a registry link, and a link in a tree
    // goes as a link: what it names is neither deleted nor written here.
    const scourel::OpenedKey key = scourel::OpenRegKeyWithoutLinks(at.root, at.path, KEY_READ);
    if (key.status == ERROR_CANT_RESOLVE_FILENAME) return std::nullopt;
    if (!key) {
      scourel::UniqueRegKey twin;
      if (::RegOpenKeyExW(at.root, at.path.c_str(), 0, KEY_READ | KEY_WOW64_32KEY, twin.put()) == ERROR_SUCCESS) {
        return "cannot back up " + Utf8(at.rootName + L"\\" + at.path) + ": it is seen only in the 32-bit view";
      }
      return std::nullopt;  // not there: nothing the fix could delete
    }
    const std::wstring full = at.rootName + L"\\" + at.path;
    if (!Writable(full) || depth > scourel::kMaxScanDepth) return "cannot write the key " + Utf8(full) + " exactly";
    if (!trees_.insert(Folded(full)).second) return std::nullopt;
    Header(full);
    DWORD subkeys = 0, values = 0, nameMax = 0, dataMax = 0;
    ::RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, &nameMax, &dataMax,
                       nullptr, nullptr);
    std::vector<wchar_t> name(nameMax + 2);
    std::vector<BYTE> data(dataMax + 2);
    for (DWORD i = 0; i < values; ++i) {
      DWORD nameLength = static_cast<DWORD>(name.size()), dataLength = static_cast<DWORD>(data.size()), type = 0;
      if (::RegEnumValueW(key.get(), i, name.data(), &nameLength, nullptr, &type, data.data(), &dataLength) != 0) {
        return "cannot read a value of " + Utf8(full);
      }
      const std::wstring valueName(name.data(), nameLength);
      if (!Writable(valueName)) return "cannot write a value of " + Utf8(full) + " exactly";
      text_ += ValueLine(valueName, type, data.data(), dataLength);
    }
    for (DWORD i = 0; i < subkeys; ++i) {
      const std::wstring child = scourel::EnumSubkeyName(key.get(), i);
      if (child.empty()) return "cannot read the subkeys of " + Utf8(full);
      if (auto error = Tree({at.root, at.rootName, at.path + L"\\" + child}, depth + 1)) return error;
    }
    return std::nullopt;
  }

  // The key alone: an import creates it when the fix took it along.
  void KeyOnly(const Location& at) {
    const std::wstring full = at.rootName + L"\\" + at.path;
    if (!scourel::OpenRegKeyWithoutLinks(at.root, at.path, KEY_READ) || !Writable(full)) return;
    if (headers_.count(Folded(full)) == 0) Header(full);
  }

  std::wstring text() const { return L"Windows Registry Editor Version 5.00\r\n" + text_; }
  std::size_t keys() const { return headers_.size(); }

 private:
  static std::wstring Folded(std::wstring text) {
    for (wchar_t& c : text) c = static_cast<wchar_t>(::towlower(c));
    return text;
  }
  void Header(const std::wstring& full) {
    headers_.insert(Folded(full));
    text_ += L"\r\n[" + full + L"]\r\n";
  }

  std::wstring text_;
  std::set<std::wstring> trees_, headers_;
};

// The counts of the worker's registry record, in the order sent, and its
// file-extension count; nullopt when the scan's replies are not all there.
std::optional<std::vector<long long>> WorkerCounts(const std::vector<DecodedReply>& replies) {
  std::vector<long long> counts;
  for (unsigned kind : {p::kScanRegistry, p::kScanExtensions}) {
    for (const DecodedReply& reply : replies) {
      if (reply.kind != kind || !reply.readable) continue;
      for (const Field& field : reply.fields) counts.push_back(std::stoll(field.value));
    }
  }
  if (counts.size() != p::kRegistryReportCount + 1) return std::nullopt;
  return counts;
}

}  // namespace

std::optional<std::string> RegistryBackupText(const std::vector<RegistryIssue>& rows, bool withParents,
                                              std::wstring* text, std::size_t* keys) {
  RegText reg;
  for (const RegistryIssue& row : rows) {
    for (const Location& at : LocationsOf(row.rootName, row.keyPath)) {
      if (auto error = reg.Tree(at)) return error;
    }
  }
  for (const RegistryIssue& row : rows) {
    const std::size_t slash = row.keyPath.rfind(L'\\');
    if (!withParents || !row.IsKeyEntry() || slash == std::wstring::npos) continue;
    for (const Location& at : LocationsOf(row.rootName, row.keyPath.substr(0, slash))) reg.KeyOnly(at);
  }
  *text = reg.text();
  *keys = reg.keys();
  return std::nullopt;
}

std::optional<std::string> WriteFixBackup(const std::wstring& file, const std::vector<int>& categories,
                                          const std::vector<DecodedReply>& workerScan, std::size_t* keys) {
  const std::optional<std::vector<long long>> worker = WorkerCounts(workerScan);
  if (!worker) return "the worker's scan did not report its registry counts";
  const scourel::TaskContext context{
      scourel::g_totals, scourel::SystemCleanerIo(), nullptr, 0, scourel::Mode::kMeasure, nullptr, L"", L""};
  scourel::RunRegistryScan(context);
  const int extensions = scourel::RunFileExtensionScan(context);
  const auto counts = scourel::RegistryReportCounts();
  for (std::size_t i = 0; i <= counts.size(); ++i) {
    const long long ours = i < counts.size() ? counts[i] : extensions;
    if ((*worker)[i] != ours) {
      const std::string name = i < counts.size() ? std::string(p::kRegistryReportNames[i]) : "file extensions";
      return "the registry changed between the worker's scan and overseer's (" + name + ": " +
             std::to_string((*worker)[i]) + " against " + std::to_string(ours) + "); nothing was fixed";
    }
  }
  std::vector<RegistryIssue> rows;
  for (int category : categories) {
    for (RegistryIssue& row : scourel::g_registry.found.Rows(category)) rows.push_back(std::move(row));
  }
  std::wstring text;
  const bool general = categories != std::vector<int>{scourel::kCatExtensions};
  if (auto error = RegistryBackupText(rows, general, &text, keys)) return *error + "; nothing was fixed";
  scourel::UniqueHandleKernel out(
      ::CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  const std::wstring bytes = L"\xFEFF" + text;
  DWORD written = 0;
  const DWORD size = static_cast<DWORD>(bytes.size() * sizeof(wchar_t));
  if (!out || !::WriteFile(out.get(), bytes.data(), size, &written, nullptr) || written != size) {
    return "cannot write the backup " + Utf8(file) + "; nothing was fixed";
  }
  return std::nullopt;
}

}  // namespace overseer
