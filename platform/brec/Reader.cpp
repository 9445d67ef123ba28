#include "platform/brec/Reader.h"

#include <utility>

#include <boost/make_shared.hpp>

#include "platform/av/TrackList.h"
#include "platform/win32/Path.h"

namespace BREC {

namespace {

class DescribedTrack final : public MP4TrackReader {
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

private:
    av::Track m_track;
    AudioFormat m_format;
};

int DescribedTrack::type() const {
    switch (m_track.kind) {
    case av::TrackKind::Video:
        return VideoTrack;
    case av::TrackKind::Audio:
        return AudioTrack;
    default:
        return OtherTrack;
    }
}

std::uint64_t DescribedTrack::lengthInFrames() const {
    return m_track.kind == av::TrackKind::Audio ? m_track.FramesAt(m_format.sampleRate())
                                                : m_track.samples;
}

} // namespace

Reader::Reader(std::vector<boost::shared_ptr<MP4TrackReader>> tracks)
    : m_tracks(std::move(tracks)) {}

boost::shared_ptr<Reader> Reader::create(const std::string& path, const AudioFormat& format,
                                         AACDecoderFactory*) {
    auto described = av::ReadTrackList(win32::ExistingPath(path));
    if (!described) {
        return nullptr;
    }
    std::vector<boost::shared_ptr<MP4TrackReader>> tracks;
    tracks.reserve(described->size());
    for (av::Track& track : *described) {
        tracks.push_back(boost::make_shared<DescribedTrack>(std::move(track), format));
    }
    return boost::shared_ptr<Reader>(new Reader(std::move(tracks)));
}

} // namespace BREC
