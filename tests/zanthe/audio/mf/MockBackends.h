// Stands for the readers of sound on Media Foundation, and notes which was asked for.
#pragma once

#include <string>

#include <gmock/gmock.h>

#include "zanthe/audio/mf/MediaFoundationBackends.h"

namespace Zanthe {

class MockBackends : public IMediaFoundationBackends {
public:
    MOCK_METHOD(boost::shared_ptr<IAudioReader>, CreateRecontainering,
                (const std::string&, const std::string&, int), (const, override));
    MOCK_METHOD(boost::shared_ptr<IAudioReader>, CreateLegacy, (const std::wstring&),
                (const, override));
    MOCK_METHOD(boost::shared_ptr<IAudioReader>, CreateCurrent, (const std::string&, int),
                (const, override));
};

} // namespace Zanthe
