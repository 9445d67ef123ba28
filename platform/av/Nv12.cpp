#include "platform/av/Nv12.h"

#include <utility>

#include "platform/av/FrameColour.h"

namespace av {

bool ConvertNv12ToBgra(const Nv12Pixels& pixels, std::uint8_t* rows, std::ptrdiff_t stride) {
    FramePtr frame(av_frame_alloc());
    if (frame == nullptr) {
        return false;
    }
    frame->format = AV_PIX_FMT_NV12;
    frame->width = pixels.width;
    frame->height = pixels.height;
    // A frame without buffers of its own owns nothing; it is only read here.
    frame->data[0] = const_cast<std::uint8_t*>(pixels.bytes);
    frame->data[1] = frame->data[0] + pixels.stride * pixels.height;
    frame->linesize[0] = frame->linesize[1] = static_cast<int>(pixels.stride);
    SetColourRules(*frame, pixels.rules);
    return ConvertToBgra(Picture(std::move(frame), 0, 1), rows, stride);
}

} // namespace av
