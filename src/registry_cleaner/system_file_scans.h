// Scans of the lists of system files: fonts, help files and shared DLLs.
// References are judged only as drive paths (see NamesMissingFile).
//
// | Scan        | Looks at                                 | Records the value when                       |
// |-------------|------------------------------------------|----------------------------------------------|
// | fonts       | data: a drive path to the font file      | the file is missing                          |
// | help        | name: the help file; data: its folder    | the file is missing from that folder (data   |
// |             | (or the file itself)                     | that already ends in the name is tested as   |
// |             |                                          | it stands)                                   |
// | shared DLLs | name: the file's drive path              | the file is missing                          |
//
// A font given by its bare file name is left alone: the system finds those
// through the Fonts folder and font paths of its own (Wine serves its
// standard fonts from its data folder), which a scan cannot see in full.
#pragma once

#include <string>

#include "task/task_context.h"

namespace scourel {

void FontScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void HelpScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void SharedDllScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);

}  // namespace scourel
