#include "zanthe/core/VideoDecoderToVideoSampleReader.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "zanthe/core/BitmapVideoSample.h"

namespace Zanthe {

VideoDecoderToVideoSampleReader::VideoDecoderToVideoSampleReader(
    std::unique_ptr<VideoDecoder> decoder)
    : m_decoder(std::move(decoder))
    , m_bitmap(std::make_shared<Bitmap>(m_decoder->outputWidth(), m_decoder->outputHeight(), false))
    , m_actualTime(-1.0) {
    const std::ptrdiff_t rows = m_bitmap->GetHeight();
    std::fill_n(m_bitmap->GetBits(), rows * m_bitmap->GetStride(), static_cast<unsigned char>(0));
}

VideoDecoderToVideoSampleReader::~VideoDecoderToVideoSampleReader() = default;

VideoDecoder* VideoDecoderToVideoSampleReader::internalVideoDecoder() const {
    return m_decoder.get();
}

int VideoDecoderToVideoSampleReader::outputWidth() const {
    return m_decoder->outputWidth();
}

int VideoDecoderToVideoSampleReader::outputHeight() const {
    return m_decoder->outputHeight();
}

VideoSample*
VideoDecoderToVideoSampleReader::readVideoSample(MediaTime time,
                                                 std::function<void(unsigned char*, int)> prepare,
                                                 VideoSampleReaderFlags /*flags*/) {
    if (prepare) {
        prepare(m_bitmap->GetBits(), m_bitmap->GetStride());
    }
    // Whether the time was served makes no difference: the picture shown last is the answer then.
    static_cast<void>(m_decoder->readFrame(time, m_bitmap->GetBits(), m_actualTime));
    return std::make_unique<BitmapVideoSample>(m_bitmap).release();
}

bool VideoDecoderToVideoSampleReader::requiresFlagSometimesToActuallyGetSamples() {
    return false;
}

bool VideoDecoderToVideoSampleReader::requiresMediaOrientationTransformation() {
    return false;
}

} // namespace Zanthe
