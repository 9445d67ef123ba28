#include "zanthe/h264/H264KeyframeCollector_MP4V2.h"

#include "zanthe/h264/Mp4Track.h"

namespace Zanthe {

H264KeyframeCollector_MP4V2::~H264KeyframeCollector_MP4V2() = default;

bool H264KeyframeCollector_MP4V2::CollectKeyframeTimesAndDuration(
    const std::string& path, std::int64_t /*firstSampleTime*/,
    std::vector<std::int64_t>& keyFrameTimes, std::int64_t& duration) {
    keyFrameTimes.clear();
    duration = 0;
    const Mp4FileOwner file = OpenMp4File(path);
    if (!file) {
        return false;
    }
    const MP4TrackId track = FindVideoTrack(file);
    if (track == MP4_INVALID_TRACK_ID) {
        return false;
    }
    const std::uint64_t scale = MP4GetTrackTimeScale(file.get(), track);
    const MP4SampleId count = MP4GetTrackNumberOfSamples(file.get(), track);
    for (MP4SampleId i = 0; i < count; ++i) {
        const MP4SampleId sample = i + 1;
        if (MP4GetSampleSync(file.get(), track, sample) != 0) {
            keyFrameTimes.push_back(
                ReferenceTimeOf(MP4GetSampleTime(file.get(), track, sample), scale));
        }
    }
    // A track without samples has no end to tell.
    duration = count == 0 ? 0 : ReferenceTimeOf(MP4GetTrackDuration(file.get(), track), scale);
    return !keyFrameTimes.empty();
}

} // namespace Zanthe
