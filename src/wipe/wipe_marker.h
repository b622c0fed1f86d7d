// The drive a free-space wipe is filling, kept in the registry from before
// the first fill byte until the last fill file is gone, so that a worker
// killed meanwhile (or a power cut) is cleaned up after at the next start.
#pragma once

#include <optional>
#include <string>

namespace scourel {

// HKEY_CURRENT_USER\Software\Corvane Suite\Scourel, value LastWipedDriveName ("X:").
inline constexpr wchar_t kWipeMarkerKey[] = L"Software\\Corvane Suite\\Scourel";
inline constexpr wchar_t kWipeMarkerValue[] = L"LastWipedDriveName";

// The folder whose index the wipe is filling, value LastWipedFolder.
inline constexpr wchar_t kSlackFolderValue[] = L"LastWipedFolder";

// False when the value could not be written: no wipe may start then.
bool RecordWipedDrive(wchar_t letter);
void ClearWipedDrive();
std::optional<wchar_t> LastWipedDrive();

// False when the value could not be written: the folder is left alone then.
bool RecordSlackFolder(const std::wstring& folder);
void ClearSlackFolder();

// At start-up: removes the fill files and folder an interrupted wipe left on
// the recorded drive, and its fill entries in the recorded folder, then
// clears the values. True when there was one.
bool CleanUpInterruptedWipe();

}  // namespace scourel
