#include "zanthe/core/VideoDecoder.h"

namespace Zanthe {

// Out of line, so that the class's tables live in this library alone and a host can catch and cast.
VideoDecoder::~VideoDecoder() = default;

} // namespace Zanthe
