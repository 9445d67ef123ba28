// Key frames by reading all compressed samples of a file.
#pragma once

#include "zanthe/h264/IH264KeyframeCollector.h"

namespace Zanthe {

// For containers without tables that H264KeyframeCollector_MP4V2 could read. It reads the whole
// file and decodes nothing.
//
// Thread-safety: safe from any thread; it keeps no state.
class ZANTHE_API H264KeyframeCollector_MF : public IH264KeyframeCollector {
public:
    ~H264KeyframeCollector_MF() override;

    // IH264KeyframeCollector
    // False, with duration 0, when the file cannot be opened as video, when a read fails, and when
    // 500 reads in a row give neither a sample nor the end; keyFrameTimes then holds what had been
    // found. True at the end of the stream, also without a key frame.
    bool CollectKeyframeTimesAndDuration(const std::string& path, std::int64_t firstSampleTime,
                                         std::vector<std::int64_t>& keyFrameTimes,
                                         std::int64_t& duration) override;
};

} // namespace Zanthe
