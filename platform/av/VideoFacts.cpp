#include "platform/av/VideoFacts.h"

#include <cmath>

#include "platform/av/SequenceHeader.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

// Clockwise, 0 to 270. A matrix that turns by something else, or mirrors, counts as none.
int RotationOf(const AVStream& stream) {
    std::size_t size = 0;
    const std::uint8_t* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (data == nullptr || size < 9 * sizeof(std::int32_t)) {
        return 0;
    }
    const auto* matrix = reinterpret_cast<const std::int32_t*>(data); // NOLINT: FFmpeg's layout
    const bool mirrors =
        static_cast<double>(matrix[0]) * matrix[4] < static_cast<double>(matrix[1]) * matrix[3];
    const double turn = -av_display_rotation_get(matrix);
    const double quarters = std::round(turn / 90);
    if (mirrors || std::isnan(turn) || std::abs(turn - quarters * 90) > 0.5) {
        return 0;
    }
    return (static_cast<int>(quarters) * 90 + 360) % 360;
}

AVRational FrameRateOf(const AVStream& stream) {
    const AVRational rate =
        stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    return rate.num > 0 && rate.den > 0 ? rate : AVRational{0, 1};
}

AVRational PixelAspectOf(const AVStream& stream) {
    const AVRational container = stream.sample_aspect_ratio;
    const AVRational coded = stream.codecpar->sample_aspect_ratio;
    const AVRational aspect = container.num > 0 ? container : coded;
    return aspect.num > 0 && aspect.den > 0 ? aspect : AVRational{1, 1};
}

} // namespace

std::int64_t DurationOf(const AVFormatContext& format) {
    return format.duration > 0 ? av_rescale_rnd(format.duration, 10, 1, AV_ROUND_DOWN) : 0;
}

VideoFacts ReadVideoFacts(const AVFormatContext& format, const AVStream& stream) {
    VideoFacts facts;
    facts.codec = stream.codecpar->codec_id;
    facts.tag = stream.codecpar->codec_tag;
    facts.streamIndex = stream.index;
    facts.width = stream.codecpar->width;
    facts.height = stream.codecpar->height;
    facts.frameRate = FrameRateOf(stream);
    facts.pixelAspect = PixelAspectOf(stream);
    facts.sequenceHeader = SequenceHeaderOf(*stream.codecpar);
    facts.duration = DurationOf(format);
    facts.rotation = RotationOf(stream);
    return facts;
}

} // namespace av
