#include "zanthe/audio/IAudioReader.h"

namespace Zanthe {

// Out of line, so that the class's tables live in this library alone and a host can catch and cast.
IAudioReader::~IAudioReader() = default;

} // namespace Zanthe
