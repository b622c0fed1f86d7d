// Cleaning what the "*.cv" plug-in files of the install root name.
#pragma once

namespace scourel {

void CleanPlugins();
void ScanPlugins();

}  // namespace scourel
