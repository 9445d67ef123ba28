// Makes chains of sound.
#pragma once

#include <functional>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/directshow/IDSChain.h"

// A chain over the sound of the file at `path`, whose renderer keeps extraBuffers samples more than
// it must and whose searches take at most maxSteps steps. Empty when none can be made.
boost::shared_ptr<IDSChain> CreateAudioChain(const std::wstring& path, int extraBuffers,
                                             int maxSteps);

// The same, by whatever maker.
using AudioChainMaker =
    std::function<boost::shared_ptr<IDSChain>(const std::wstring&, int extraBuffers, int maxSteps)>;
