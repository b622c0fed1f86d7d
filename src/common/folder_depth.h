// The one depth bound of every folder walk, the cleaners' and the wiper's.
#pragma once

namespace scourel {

// How deep a walk goes below the folder it starts in. A level of any walk
// takes about 1.3 KB of stack (the listing's entry in ForEachEntry, the
// visitor's frame, the walker's own), so 256 levels use about a sixth of a
// thread's 2 MB, leaving the rest to the shredder and the shell below the
// deepest level.
// What lies deeper is left and not counted: no program that keeps within
// MAX_PATH, as Windows' own do, builds a tree that deep.
inline constexpr int kMaxFolderDepth = 256;

}  // namespace scourel
