#pragma once

namespace Zanthe {

// An opaque colour space. The library never makes one: wherever one can be asked for the answer is
// null. The pointers stand in the interface for hosts whose drawing needs a place for theirs.
struct CGColorSpace;

} // namespace Zanthe
