#include "plugins/plugin_definitions.h"

namespace scourel {

// Plug-in files are not read yet; their totals stay as they are.
void CleanPlugins(const TaskContext&) {}
void ScanPlugins(const TaskContext&) {}

}  // namespace scourel
