#include "zanthe/directshow/AudioChain.h"

// No filter graph can be built in this build.
boost::shared_ptr<IDSChain> CreateAudioChain(const std::wstring&, int, int) {
    return nullptr;
}
