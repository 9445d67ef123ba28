#include "platform/av/PictureScaling.h"

#include <utility>

extern "C" {
#include <libavutil/hwcontext.h>
}

#include "platform/av/FrameColour.h"

namespace av {

namespace {

// The picture's frame in memory: another reference, or a copy of what lies on a device.
FramePtr InMemory(const Picture& picture) {
    FramePtr frame(av_frame_alloc());
    if (frame == nullptr) {
        return nullptr;
    }
    const AVFrame& source = picture.Frame();
    const int result = picture.OnDevice() ? av_hwframe_transfer_data(frame.get(), &source, 0)
                                          : av_frame_ref(frame.get(), &source);
    if (result < 0 || av_frame_copy_props(frame.get(), &source) < 0) {
        return nullptr;
    }
    frame->width = picture.Width();
    frame->height = picture.Height();
    return frame;
}

// What the scaler writes: the picture's own format, and where it cannot (palettes), plain pixels.
AVPixelFormat TargetFormat(const AVFrame& frame) {
    const auto own = static_cast<AVPixelFormat>(frame.format);
    return sws_isSupportedOutput(own) > 0 ? own : AV_PIX_FMT_BGRA;
}

FramePtr MakeTarget(const AVFrame& source, int width, int height) {
    FramePtr frame(av_frame_alloc());
    if (frame == nullptr || av_frame_copy_props(frame.get(), &source) < 0) {
        return nullptr;
    }
    frame->format = TargetFormat(source);
    frame->width = width;
    frame->height = height;
    // What a silent picture is taken for goes by its height, which changes here.
    SetColourRules(*frame, ColourRulesOf(source));
    return av_frame_get_buffer(frame.get(), 0) < 0 ? nullptr : std::move(frame);
}

// Values are scaled as they are: range and matrix are those of the source on both sides.
bool Scale(const AVFrame& source, const AVFrame& target) {
    constexpr int kQuality = SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT;
    const SwsContextPtr scaler(
        sws_getContext(source.width, source.height, static_cast<AVPixelFormat>(source.format),
                       target.width, target.height, static_cast<AVPixelFormat>(target.format),
                       kQuality, nullptr, nullptr, nullptr));
    if (scaler == nullptr) {
        return false;
    }
    const int* matrix = sws_getCoefficients(SWS_CS_DEFAULT);
    constexpr int kUnity = 1 << 16;
    static_cast<void>(
        sws_setColorspaceDetails(scaler.get(), matrix, 1, matrix, 1, 0, kUnity, kUnity));
    return sws_scale(scaler.get(), source.data, source.linesize, 0, source.height, target.data,
                     target.linesize) == target.height;
}

} // namespace

PicturePtr ScalePicture(const Picture& picture, int width, int height) {
    if (width <= 0 || height <= 0) {
        return nullptr;
    }
    const FramePtr source = InMemory(picture);
    FramePtr target = source == nullptr ? nullptr : MakeTarget(*source, width, height);
    if (target == nullptr || !Scale(*source, *target)) {
        return nullptr;
    }
    return std::make_shared<const Picture>(std::move(target), picture.Start(), picture.End());
}

} // namespace av
