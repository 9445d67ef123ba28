// Samples of a video stream as pixels.
#pragma once

#include <optional>

#include "platform/av/PictureConversion.h"
#include "platform/av/VideoStream.h"
#include "platform/mf/HardwareDevice.h"
#include "platform/mf/ISampleSource.h"
#include "platform/mf/PictureBuffer.h"

namespace mf {

// What the samples are to be.
struct VideoFormat {
    PixelLayout layout = PixelLayout::Bgra;
    std::optional<PixelSize> size;       // empty: that of the first picture
    com::ComPtr<IHardwareDevice> device; // may be empty
};

// The pixels are made by whoever locks a sample's buffer. All samples are of one size, whatever the
// pictures are.
class VideoSamples final : public ISampleSource {
public:
    // `stream` is borrowed and outlives this; nobody else moves it meanwhile.
    VideoSamples(av::VideoStream& stream, VideoFormat format)
        : m_stream(stream)
        , m_format(std::move(format)) {}

    // ISampleSource
    HRESULT SetPosition(LONGLONG position) override;
    SampleRead Read() override;
    void Describe(IMFMediaType& type) const override;

private:
    av::ReadResult ReadPicture(av::PicturePtr& picture);
    HRESULT MakeSample(const av::PicturePtr& picture, com::ComPtr<IMFSample>& sample);
    LONGLONG DurationOf(const av::Picture& picture) const;

    av::VideoStream& m_stream;
    VideoFormat m_format;
    std::optional<LONGLONG> m_position;     // to go to with the next read
    std::optional<PixelSize> m_inMemory;    // of every sample, once there was one
    std::optional<av::ColourRules> m_rules; // of the latest picture
};

} // namespace mf
