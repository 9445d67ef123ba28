#pragma once

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <vector>

#include "zanthe/core/VideoSampleReader.h"

// A sample of any shape. Every byte of row y of the memory is y.
class RowSample : public Zanthe::VideoSample {
public:
    struct Shape {
        int width;
        int height;
        int pitch;
        int rows; // of the memory
        bool flipped = false;
    };

    explicit RowSample(const Shape& s)
        : shape(s)
        , bytes(static_cast<std::size_t>(std::abs(s.pitch) * s.rows)) {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<unsigned char>(i / static_cast<std::size_t>(std::abs(s.pitch)));
        }
    }

    void decrementRefCount() override {}

    int width() const override { return shape.width; }

    int height() const override { return shape.height; }

    int bufferWidth() const override { return std::abs(shape.pitch) / 4; }

    int bufferHeight() const override { return shape.rows; }

    int bytesPerRow() const override { return shape.pitch; }

    bool isFlipped() const override { return shape.flipped; }

    Zanthe::VideoSampleFormat videoSampleFormat() override { return format; }

    void lockData() override { ++locks; }

    unsigned char* data() override { return bytes.data(); }

    void unlockData() override { --locks; }

    int dataSize() override { return static_cast<int>(bytes.size()); }

    Zanthe::CGColorSpace* colorSpace() const override { return nullptr; }

    Shape shape;
    std::vector<unsigned char> bytes;
    Zanthe::VideoSampleFormat format = Zanthe::VideoSampleFormat::SystemMemory;
    int locks = 0;
};

// A reader that tells nothing of its samples, as one on a filter graph.
class ScriptedReader : public Zanthe::VideoSampleReader {
public:
    using Script = std::function<Zanthe::VideoSample*(const Zanthe::MediaTime& time,
                                                      Zanthe::VideoSampleReaderFlags flags)>;

    explicit ScriptedReader(Script s, bool needsFlag = false)
        : m_script(std::move(s))
        , m_needsFlag(needsFlag) {}

    int outputWidth() const override { return 4; }

    int outputHeight() const override { return 3; }

    Zanthe::VideoSample* readVideoSample(Zanthe::MediaTime time,
                                         std::function<void(unsigned char*, int)>,
                                         Zanthe::VideoSampleReaderFlags flags) override {
        return m_script(time, flags);
    }

    bool requiresFlagSometimesToActuallyGetSamples() override { return m_needsFlag; }

    bool requiresMediaOrientationTransformation() override { return false; }

private:
    Script m_script;
    bool m_needsFlag;
};
