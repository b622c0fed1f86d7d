// Temporary files, crash dumps, log files and error reports.
#pragma once

namespace scourel {

// The junk-file task: resets its totals, reads the wipe method, then shreds
// temporary files, log files and error reports and counts crash dumps.
void CleanJunkFiles();
// The full scan's junk-file step: measures the same places, erases nothing.
// Adds to the two junk-file counters and the byte total exactly what the
// task would on the same disk; the caller resets them first.
void MeasureJunkFiles();

}  // namespace scourel
