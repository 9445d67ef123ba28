#include "zanthe/h264/WinH264DurationUtil.h"

#include <stdexcept>

#include "zanthe/h264/Mp4Track.h"

namespace Zanthe {

std::int64_t WinH264DurationUtil::GetRefTimeDuration(const std::string& path) {
    const Mp4FileOwner file = OpenMp4File(path);
    if (!file) {
        throw std::runtime_error("WinH264DurationUtil: error opening file");
    }
    const MP4TrackId track = FindVideoTrack(file);
    if (track == MP4_INVALID_TRACK_ID) {
        throw std::runtime_error("WinH264DurationUtil: error finding video track");
    }
    return ReferenceTimeOf(MP4GetTrackDuration(file.get(), track),
                           MP4GetTrackTimeScale(file.get(), track));
}

} // namespace Zanthe
