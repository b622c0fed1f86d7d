// Cleaning what the "*.cv" plug-in files of the install root name: the full
// scan counts it, the plug-in clean deletes it, walking the same files the
// same way.
#pragma once

#include "plugins/plugin_format.h"
#include "task/task_context.h"

namespace scourel {

// Every plug-in in listing order; its entries (keys, values, then files)
// each counted on the plug-in's own counter, which goes to the plug-in item
// total once its file is done. Sizes go to the plug-in byte total as found.
// The number of plug-ins found, or -1 when there is no install root.
int RunPlugins(const TaskContext& context);

// One plug-in's entries, walked as above: what overseer measures per plug-in.
void RunPlugin(const TaskContext& context, const PluginDefinition& plugin);

}  // namespace scourel
