// A video over a reader that wraps a decoder of the library's own (GIF, recordings).
//
// Such a reader shows the picture before where there is none, for an editor's sake; a program that
// looks at files wants to know, and asks the decoder itself.
#pragma once

#include "tools/zanthe/IVideo.h"
#include "zanthe/core/Bitmap.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"

namespace Program {

// Thread-safety: none.
class DecoderVideo : public IVideo {
public:
    // facts: what is known of the video from elsewhere; its size is the decoder's.
    DecoderVideo(std::unique_ptr<Zanthe::VideoDecoderToVideoSampleReader> reader,
                 const VideoFacts& facts);

    // IVideo
    const VideoFacts& Facts() const override { return m_facts; }

    std::optional<Picture> At(const Zanthe::MediaTime& time) override;

    std::vector<std::string> Operations() const override { return {}; }

private:
    std::unique_ptr<Zanthe::VideoDecoderToVideoSampleReader> m_reader;
    VideoFacts m_facts;
    std::shared_ptr<Zanthe::Bitmap> m_bitmap;
    double m_actualTime = -1.0; // seconds, as the decoder left it; below 0: it has told none
};

} // namespace Program
