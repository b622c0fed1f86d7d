#include "windows_traces/recycle_bin.h"

#include "host/settings.h"

namespace scourel {

void EmptyRecycleBins() { ReadWipeAlgorithm(); }

void MeasureRecycleBins() {}

}  // namespace scourel
