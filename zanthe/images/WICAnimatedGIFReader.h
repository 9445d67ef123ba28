// A GIF file's facts: its screen, its background, the table of its frames.
#pragma once

#include <cstdint>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "zanthe/images/MetadataReader.h"
#include "zanthe/images/WICImageReader.h"

namespace Zanthe {

// Thread-safety: none.
class WICAnimatedGIFReader : public WICImageReader {
public:
    // NOLINTNEXTLINE(readability-identifier-naming): a settled name
    struct frameInfo {
        std::uint32_t delay = 0; // milliseconds that the frame stays
        std::uint32_t bitsPerPixel = 0;
        std::uint32_t disposal = 0; // as in the file
        std::uint32_t left = 0;     // pixels, in the logical screen
        std::uint32_t top = 0;
        std::uint32_t right = 0;  // left plus width
        std::uint32_t bottom = 0; // top plus height
    };

    // 0 to 1 each.
    struct Colour {
        float red = 0;
        float green = 0;
        float blue = 0;
        float alpha = 0; // always: the background is not seen, wherever it is cleared to
    };

    explicit WICAnimatedGIFReader(const CStringW& path);
    ~WICAnimatedGIFReader() override;

    // WICImageReader
    void Reset() override;

    // The first frame whose end lies behind `seconds`; the last one from the end of the animation
    // on, for ever; 0 for what is negative.
    int frameAtTime(double seconds) const override;

    std::uint32_t FrameCount() const { return m_frameCount; }

    // How often the file asks to be played, as it stands in it: nothing here loops.
    std::uint32_t LoopCount() const { return m_loopCount; }

    bool HasLoopCount() const { return m_hasLoopCount; }

    // Pixels of the logical screen, and the same stretched by the pixels' aspect.
    std::uint32_t ScreenWidth() const { return m_screenWidth; }

    std::uint32_t ScreenHeight() const { return m_screenHeight; }

    std::uint32_t DisplayWidth() const { return m_displayWidth; }

    std::uint32_t DisplayHeight() const { return m_displayHeight; }

    const Colour& Background() const { return m_background; }

    double Duration() const { return m_duration; } // seconds, of all delays

    double FrameRate() const { return m_frameRate; } // frames per second on average; 0 without any

    bool VariableDelays() const { return m_variableDelays; }

    // In the order of the file, as many as FrameCount. A frame of which something could not be read
    // has its record all the same, with zeros from there on.
    const std::vector<boost::shared_ptr<frameInfo>>& Frames() const { return m_frames; }

protected:
    // WICImageReader
    HRESULT ReadMetadata() override;
    HRESULT ReadFrames() override;

private:
    HRESULT ReadBackground(const MetadataReader& metadata);
    HRESULT ReadScreen(const MetadataReader& metadata);
    HRESULT ReadAspect(const MetadataReader& metadata);
    HRESULT ReadLoopCount(const MetadataReader& metadata);
    HRESULT ReadFrame(UINT index, frameInfo& info) const;
    void SumUp();

    std::uint32_t m_frameCount = 0;
    std::uint32_t m_loopCount = 0;
    bool m_hasLoopCount = false;
    std::uint32_t m_screenWidth = 0;
    std::uint32_t m_screenHeight = 0;
    std::uint32_t m_displayWidth = 0;
    std::uint32_t m_displayHeight = 0;
    Colour m_background;
    double m_duration = 0;
    double m_frameRate = 0;
    bool m_variableDelays = false;
    std::vector<boost::shared_ptr<frameInfo>> m_frames;
};

} // namespace Zanthe
