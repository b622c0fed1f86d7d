#include "registry_cleaner/file_reference.h"

#include <string_view>

#include "common/known_folders.h"
#include "common/win.h"

namespace scourel {

namespace {

// Every non-overlapping occurrence, left to right, in one pass: text that a
// replacement brings together is not looked at again.
void ReplaceAll(std::wstring& text, std::wstring_view from, std::wstring_view to) {
  std::wstring result;
  std::size_t start = 0;
  for (std::size_t found; (found = text.find(from, start)) != std::wstring::npos; start = found + from.size()) {
    result.append(text, start, found - start);
    result.append(to);
  }
  if (start == 0) return;
  result.append(text, start, std::wstring::npos);
  text.swap(result);
}

// Keeps what stands before the first occurrence; an occurrence at the very
// start cuts nothing.
void CutAt(std::wstring& text, std::wstring_view mark) {
  const std::size_t found = text.find(mark);
  if (found != std::wstring::npos && found > 0) text.resize(found);
}

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\v' || c == L'\f' || c == L'\r'; }

void Trim(std::wstring& text) {
  std::size_t end = text.size();
  while (end > 0 && IsBlank(text[end - 1])) --end;
  std::size_t begin = 0;
  while (begin < end && IsBlank(text[begin])) ++begin;
  text = text.substr(begin, end - begin);
}

void CutAndTrim(std::wstring& text, std::wstring_view mark) {
  CutAt(text, mark);
  Trim(text);
}

// Only the twenty letters A to T, either case, are drives worth testing.
bool StartsWithTestedDrive(const std::wstring& text) {
  if (text.empty()) return false;
  const wchar_t first = text[0];
  return (first >= L'A' && first <= L'T') || (first >= L'a' && first <= L't');
}

bool IsDirectory(const std::wstring& path) {
  // PathIsDirectoryW takes at most MAX_PATH characters; a longer text cannot
  // name a folder through it anyway.
  return path.size() < MAX_PATH && ::PathIsDirectoryW(path.c_str());
}

}  // namespace

std::optional<std::wstring> ReduceFileReference(std::wstring text, const std::wstring& windowsDir) {
  ReplaceAll(text, L"\"", L"");
  ReplaceAll(text, L"Rundll32", L"");
  ReplaceAll(text, L"RunDll32", L"");

  // Start at the drive letter in front of the first ":\".
  const std::size_t drive = text.find(L":\\");
  if (drive != std::wstring::npos && drive > 0) text.erase(0, drive - 1);

  if (!StartsWithTestedDrive(text)) return std::nullopt;

  CutAt(text, L",");
  // " -p" and " -file" can no longer match once " -" has cut; they stay in
  // the list all the same.
  CutAndTrim(text, L" /");
  CutAndTrim(text, L" -");
  CutAndTrim(text, L" -p");
  CutAndTrim(text, L" -file");
  CutAndTrim(text, L";");

  ReplaceAll(text, L"%SYSTEMROOT%", windowsDir);
  CutAndTrim(text, L"%");

  ReplaceAll(text, L"@", L"");
  // Also mends the backslash doubled by the Windows directory's own.
  ReplaceAll(text, L"\\\\", L"\\");
  return text;
}

int IsFileReferenceValid(std::wstring text) {
  const std::optional<std::wstring> path = ReduceFileReference(std::move(text), WindowsDirectoryWithBackslash());
  if (!path) return 1;
  return ::PathFileExistsW(path->c_str()) || IsDirectory(*path) ? 1 : 0;
}

}  // namespace scourel
