#include "platform/brec/Reader.h"

#include <utility>

#include <boost/make_shared.hpp>

#include "platform/av/TrackList.h"
#include "platform/brec/DescribedTrack.h"
#include "platform/brec/PictureTrack.h"
#include "platform/brec/SoundTrack.h"
#include "platform/win32/Path.h"

namespace BREC {

namespace {

// How many tracks of a kind the recording has had so far.
struct Ordinals {
    int pictures = 0;
    int sound = 0;
};

boost::shared_ptr<MP4TrackReader> MakeTrack(av::Track track, const AudioFormat& format,
                                            const std::string& path, Ordinals& next) {
    if (track.kind == av::TrackKind::Video) {
        return boost::make_shared<PictureTrack>(std::move(track), format, path, next.pictures++);
    }
    if (track.kind == av::TrackKind::Audio) {
        return boost::make_shared<SoundTrack>(std::move(track), format, path, next.sound++);
    }
    return boost::make_shared<DescribedTrack>(std::move(track), format);
}

} // namespace

Reader::Reader(std::vector<boost::shared_ptr<MP4TrackReader>> tracks)
    : m_tracks(std::move(tracks)) {}

boost::shared_ptr<Reader> Reader::create(const std::string& path, const AudioFormat& format,
                                         AACDecoderFactory*) {
    const std::string existing = win32::ExistingPath(path);
    auto described = av::ReadTrackList(existing);
    if (!described) {
        return nullptr;
    }
    std::vector<boost::shared_ptr<MP4TrackReader>> tracks;
    tracks.reserve(described->size());
    Ordinals next;
    for (av::Track& track : *described) {
        tracks.push_back(MakeTrack(std::move(track), format, existing, next));
    }
    return boost::shared_ptr<Reader>(new Reader(std::move(tracks)));
}

} // namespace BREC
