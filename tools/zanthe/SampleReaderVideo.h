// A video over any reader of samples, which tells nothing but its pictures.
#pragma once

#include "tools/zanthe/IVideo.h"
#include "zanthe/core/VideoSampleReader.h"

namespace Program {

// Thread-safety: none.
class SampleReaderVideo : public IVideo {
public:
    // facts: what is known of the video from elsewhere; its size is the reader's.
    SampleReaderVideo(std::unique_ptr<Zanthe::VideoSampleReader> reader, const VideoFacts& facts);

    // IVideo
    const VideoFacts& Facts() const override { return m_facts; }

    std::optional<Picture> At(const Zanthe::MediaTime& time) override;

    std::vector<std::string> Operations() const override { return {}; }

private:
    std::unique_ptr<Zanthe::VideoSampleReader> m_reader;
    VideoFacts m_facts;
    Zanthe::VideoSampleReaderFlags m_flags;
};

} // namespace Program
