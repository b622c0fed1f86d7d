// What disk checking leaves behind: "FOUND.nnn" folders in the roots of fixed
// drives, holding recovered fragments as "*.CHK" files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "task/task_context.h"

namespace scourel {

// Exactly "FOUND." and three digits, letters in any case.
bool IsFoundFolderName(std::wstring_view name);
// A name ending in ".CHK" (any case) with something before it.
bool IsChkFileName(std::wstring_view name);

// "C:" and the like for every fixed local drive.
std::vector<std::wstring> FixedDriveRoots();

// For each "FOUND.nnn" folder directly in the root (never a link to one),
// counts each "*.CHK" file directly in it that opens for reading and writing,
// with its size. When erasing, shreds them and then removes the folder if that
// left it empty.
void VisitScanDiskFiles(const TaskContext& context, const std::wstring& root);

}  // namespace scourel
