// What every track of a recording tells of itself, from the file's headers.
#pragma once

#include <utility>

#include "platform/av/TrackList.h"
#include "platform/brec/AudioFormat.h"
#include "platform/brec/MP4TrackReader.h"

namespace BREC {

// A track that gives neither pictures nor sound; those that do derive from it.
class DescribedTrack : public MP4TrackReader {
public:
    DescribedTrack(av::Track track, const AudioFormat& format)
        : m_track(std::move(track))
        , m_format(format) {}

    // MP4TrackReader
    int type() const override;

    std::string codec() const override { return m_track.codec; }

    std::uint32_t width() const override { return m_track.width; }

    std::uint32_t height() const override { return m_track.height; }

    std::uint64_t lengthInFrames() const override;

    unsigned int fillAudioBuffer(std::uint64_t, unsigned int, unsigned char*) override { return 0; }

    bool decodeFrameAtTime(double, unsigned char*, unsigned int, double*, double, double,
                           double) override {
        return false;
    }

protected:
    const AudioFormat& Format() const { return m_format; }

private:
    av::Track m_track;
    AudioFormat m_format;
};

} // namespace BREC
