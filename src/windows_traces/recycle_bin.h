// The Recycle Bins of every drive.
#pragma once

namespace scourel {

// The Recycle Bin task: counts every drive's bin, then empties them all.
void EmptyRecycleBins();
// The full scan's measurement: counts into the Recycle Bin item counter and
// the separate Recycle Bin byte total, empties nothing.
void MeasureRecycleBins();

}  // namespace scourel
