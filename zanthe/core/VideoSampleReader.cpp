#include "zanthe/core/VideoSampleReader.h"

namespace Zanthe {

// Out of line, so that the class's tables live in this library alone and a host can catch and cast.
VideoSampleReader::~VideoSampleReader() = default;

} // namespace Zanthe
