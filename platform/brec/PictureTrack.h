// A track of pictures.
#pragma once

#include <memory>
#include <string>

#include "platform/av/VideoStream.h"
#include "platform/brec/DescribedTrack.h"

namespace BREC {

class PictureTrack final : public DescribedTrack {
public:
    // `path` is one that exists; ordinal counts the recording's tracks of pictures. The file is
    // opened when the first picture is asked for.
    PictureTrack(av::Track track, const AudioFormat& format, std::string path, int ordinal);
    ~PictureTrack() override;

    // MP4TrackReader. A picture of another size than the track tells is scaled to that.
    bool decodeFrameAtTime(double seconds, unsigned char* buffer, unsigned int byteCount,
                           double* outTime, double previousTime, double, double) override;

private:
    av::VideoStream* Stream();
    av::PicturePtr PictureAt(std::int64_t time);
    bool Write(const av::Picture& picture, unsigned char* buffer) const;

    std::string m_path;
    int m_ordinal;
    bool m_opened = false;                     // that was tried
    std::unique_ptr<av::VideoStream> m_stream; // null: nothing decodes it
};

} // namespace BREC
