// Key frames by the sample tables of an MP4 file; no sample is read.
#pragma once

#include "zanthe/h264/IH264KeyframeCollector.h"

namespace Zanthe {

// Thread-safety: safe from any thread; it keeps no state.
class ZANTHE_API H264KeyframeCollector_MP4V2 : public IH264KeyframeCollector {
public:
    ~H264KeyframeCollector_MP4V2() override;

    // IH264KeyframeCollector
    // The times are those of decoding, which begin with the track, so firstSampleTime plays no
    // part. False without a key frame: when the file cannot be opened, has no video, or has
    // samples of which none is a key frame. Only then is duration not 0.
    bool CollectKeyframeTimesAndDuration(const std::string& path, std::int64_t firstSampleTime,
                                         std::vector<std::int64_t>& keyFrameTimes,
                                         std::int64_t& duration) override;
};

} // namespace Zanthe
