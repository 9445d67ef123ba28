// A video reader of a small size without pictures, for tests that only hand readers about.
#pragma once

#include "zanthe/core/VideoSampleReader.h"

namespace Zanthe {

class PlainReader : public VideoSampleReader {
public:
    // VideoSampleReader
    int outputWidth() const override { return 4; }

    int outputHeight() const override { return 2; }

    VideoSample* readVideoSample(MediaTime, std::function<void(unsigned char*, int)>,
                                 VideoSampleReaderFlags) override {
        return nullptr;
    }

    bool requiresFlagSometimesToActuallyGetSamples() override { return false; }

    bool requiresMediaOrientationTransformation() override { return false; }
};

} // namespace Zanthe
