// The registry cleaner's fixes: the general fix over the categories the
// settings switch on, and the file-extension fix with a command of its own.
// They delete for good what the last scan recorded; nothing is saved first.
//
// | Row                           | What the fix deletes                               |
// |-------------------------------|----------------------------------------------------|
// | a whole key                   | the key (DeleteKeyTree), then its parent when that |
// |                               | is left with no values and no subkeys (one level)  |
// | a value in a key holding one  | the key; failing that the value, then the key once |
// | value (whichever that is)     | more                                               |
// | a value among several         | that value only                                    |
// | a file-extension row          | the key; failing that the named value, then the    |
// |                               | key once more                                      |
//
// A row whose key no longer opens is passed over; a deletion that fails is
// not retried or reported. Each row is deleted in the registry view in which
// its key opened.
#pragma once

#include "registry_cleaner/registry_issues.h"
#include "task/settings.h"
#include "task/task_context.h"

namespace scourel {

// Fix flags, one per category, 0 or 1.
int FixFlag(int category);

// Clears all fifteen flags, reads the twelve switches of the family, then fixes.
void SelectFixCategories(const TaskContext& context, KeyFamily family);
// Appends the found rows of the flagged categories to the fix list, then
// works through the whole list.
void FixSelected(const TaskContext& context);
// Deletes the found rows of the file-extension category.
void FixFileExtensions(const TaskContext& context);

}  // namespace scourel
