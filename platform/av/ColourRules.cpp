#include "platform/av/PictureConversion.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace av {

namespace {

constexpr int kTallestBt601 = 720;

ColourMatrix DefaultMatrix(const AVFrame& frame) {
    return frame.height <= kTallestBt601 ? ColourMatrix::Bt601 : ColourMatrix::Bt709;
}

ColourMatrix MatrixOf(const AVFrame& frame) {
    switch (frame.colorspace) {
    case AVCOL_SPC_BT709:
        return ColourMatrix::Bt709;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
    case AVCOL_SPC_FCC: // differs from BT.601 in the third digit
        return ColourMatrix::Bt601;
    case AVCOL_SPC_SMPTE240M:
        return ColourMatrix::Smpte240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return ColourMatrix::Bt2020;
    default:
        return DefaultMatrix(frame);
    }
}

bool IsFullByFormat(int format) {
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ444P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ411P:
        return true;
    default:
        return false;
    }
}

} // namespace

ColourRules ColourRulesOf(const AVFrame& frame) {
    const bool full = frame.color_range == AVCOL_RANGE_JPEG || IsFullByFormat(frame.format);
    return {MatrixOf(frame), full ? ColourRange::Full : ColourRange::Video};
}

} // namespace av
