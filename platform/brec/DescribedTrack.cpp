#include "platform/brec/DescribedTrack.h"

namespace BREC {

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

} // namespace BREC
