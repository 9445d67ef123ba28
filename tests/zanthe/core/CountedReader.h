// A video reader without pictures that counts itself among the living.
#pragma once

#include <atomic>

#include "zanthe/core/VideoSampleReader.h"

namespace Zanthe {

class CountedReader final : public VideoSampleReader {
public:
    explicit CountedReader(std::atomic<int>& living)
        : m_living(living) {
        ++m_living;
    }

    ~CountedReader() override { --m_living; }

    // VideoSampleReader
    int outputWidth() const override { return 4; }

    int outputHeight() const override { return 2; }

    VideoSample* readVideoSample(MediaTime, std::function<void(unsigned char*, int)>,
                                 VideoSampleReaderFlags) override {
        return nullptr;
    }

    bool requiresFlagSometimesToActuallyGetSamples() override { return false; }

    bool requiresMediaOrientationTransformation() override { return false; }

private:
    std::atomic<int>& m_living;
};

} // namespace Zanthe
