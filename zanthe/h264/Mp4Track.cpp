#include "zanthe/h264/Mp4Track.h"

#include <limits>

namespace Zanthe {

Mp4FileOwner OpenMp4File(const std::string& path) {
    return Mp4FileOwner(MP4Read(path.c_str()));
}

MP4TrackId FindVideoTrack(const Mp4FileOwner& file) {
    return MP4FindTrackId(file.get(), 0, MP4_VIDEO_TRACK_TYPE, 0);
}

std::int64_t ReferenceTimeOf(std::uint64_t units, std::uint64_t unitsPerSecond) {
    if (units == 0) {
        return 0;
    }
    const double time =
        static_cast<double>(units) / static_cast<double>(unitsPerSecond) * 10000000.0;
    constexpr double end = 0x1p63;
    return time < end ? static_cast<std::int64_t>(time) : std::numeric_limits<std::int64_t>::max();
}

} // namespace Zanthe
