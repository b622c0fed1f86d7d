// Stored network credentials: the files of "Microsoft\Credentials" under the
// roaming and the local application data folders.
#pragma once

#include <string>

namespace scourel {

// Visits "<base>\Microsoft\Credentials\*.*": each entry that opens for
// reading and writing is counted with its size and, with shred, shredded.
void VisitCredentialFiles(const std::wstring& baseFolder, bool shred);

}  // namespace scourel
