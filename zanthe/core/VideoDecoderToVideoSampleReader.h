// Makes a reader of a decoder.
//
//     VideoDecoderToVideoSampleReader reader(std::move(decoder));
#pragma once

#include <functional>
#include <memory>

#include "zanthe/core/Bitmap.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/VideoDecoder.h"
#include "zanthe/core/VideoSampleReader.h"

namespace Zanthe {

// One picture is allocated for the reader's life, and the decoder writes straight into it. Every
// sample shows that picture, so its pixels hold until the next read only.
//
// Thread-safety: none; one reader serves one thread at a time.
class ZANTHE_API VideoDecoderToVideoSampleReader : public VideoSampleReader {
public:
    // REQUIRES: a decoder. Throws std::bad_alloc when there is no memory for its picture, or its
    // size is none that a Bitmap can have.
    explicit VideoDecoderToVideoSampleReader(std::unique_ptr<VideoDecoder> decoder);
    ~VideoDecoderToVideoSampleReader() override;

    // The decoder, still the reader's and as long-lived, for callers that know its class.
    VideoDecoder* internalVideoDecoder() const;

    // VideoSampleReader
    int outputWidth() const override;
    int outputHeight() const override;

    // Never null. When the decoder does not serve the time the sample shows the frame before: an
    // editor rather draws the last picture than none. Before the first served frame it is
    // transparent black, or what `prepare` has written. Flags have no effect.
    VideoSample* readVideoSample(MediaTime time, std::function<void(unsigned char*, int)> prepare,
                                 VideoSampleReaderFlags flags) override;
    bool requiresFlagSometimesToActuallyGetSamples() override; // false
    bool requiresMediaOrientationTransformation() override;    // false

private:
    std::unique_ptr<VideoDecoder> m_decoder;
    std::shared_ptr<Bitmap> m_bitmap;
    double m_actualTime; // seconds, of the frame in m_bitmap; -1.0 when there is none
};

} // namespace Zanthe
