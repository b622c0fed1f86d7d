// Scans of what installers leave: uninstall entries, the installer's folder
// list, and its product and patch registrations.
//
// | Scan              | Looks at                          | Records                                     |
// |-------------------|-----------------------------------|---------------------------------------------|
// | Uninstall         | each subkey                       | the key, when "UninstallString" names a     |
// |                   |                                   | missing program and "InstallLocation" is    |
// |                   |                                   | empty or a missing folder                   |
// | installer folders | value names (folders)             | the value, when the folder is missing       |
// | products          | subkeys named by a packed product | the key, when the product has neither an    |
// |                   | code (32 hex digits)              | Uninstall entry (either view) nor the       |
// |                   |                                   | installer's per-machine registration        |
// | patches           | subkeys named by a packed patch   | the key, when the installer holds no        |
// |                   | code                              | per-machine registration of the patch       |
//
// References are judged only as drive paths: entries run as "MsiExec.exe
// /X{...}" are never recorded for their uninstaller.
#pragma once

#include <optional>
#include <string>

#include "task/task_context.h"

namespace scourel {

void UninstallScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void InstallerFolderScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void InstallerProductScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);
void InstallerPatchScan(const TaskContext& context, HKEY root, const std::wstring& path, int category);

// "{...}" from the installer's packed form of a GUID (each group's hex digits
// reversed); nullopt unless the text is 32 hex digits.
std::optional<std::wstring> UnpackGuid(const std::wstring& packed);

}  // namespace scourel
