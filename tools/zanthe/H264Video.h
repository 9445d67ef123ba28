// A video over the H.264 reader, which tells all there is to know.
#pragma once

#include "tools/zanthe/IVideo.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Program {

// Thread-safety: none.
class H264Video : public IVideo {
public:
    // facts: what is known of the video from elsewhere, for what the reader does not tell.
    //
    // Throws std::runtime_error, in words for the user, when the reader did not open the file.
    H264Video(std::unique_ptr<Zanthe::WinH264SampleReader> reader, const VideoFacts& facts);

    // IVideo
    const VideoFacts& Facts() const override { return m_facts; }

    std::optional<Picture> At(const Zanthe::MediaTime& time) override;
    std::vector<std::string> Operations() const override;

private:
    std::unique_ptr<Zanthe::WinH264SampleReader> m_reader;
    VideoFacts m_facts;
};

} // namespace Program
