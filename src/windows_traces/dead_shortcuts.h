// Shortcuts whose target is gone.
#pragma once

namespace scourel {

// The dead-shortcut task: zeroes the byte total, reads the wipe method, and
// shreds dead shortcuts of the Start Menu, the public desktop and the profile.
void CleanDeadShortcuts();
// The full scan's measuring walk: counts dead shortcuts on the second
// junk-file counter, sizes nothing, erases nothing.
void MeasureDeadShortcuts();

}  // namespace scourel
