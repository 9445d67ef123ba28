// Whether this system can decode and encode H.265.
#pragma once

#include "zanthe/core/Export.h"

namespace Zanthe {

// A codec that is known to the system but does not start counts as absent.
//
// Thread-safety: safe from any thread. Both start the codec that they find, which costs time: ask
// once.
class ZANTHE_API MFCodecHelper {
public:
    static bool hasH265Decoder();
    static bool hasH265Encoder();
};

} // namespace Zanthe
