#include "platform/av/FrameColour.h"

namespace av {

namespace {

AVColorSpace SpaceOf(ColourMatrix matrix) {
    switch (matrix) {
    case ColourMatrix::Bt709:
        return AVCOL_SPC_BT709;
    case ColourMatrix::Smpte240M:
        return AVCOL_SPC_SMPTE240M;
    case ColourMatrix::Bt2020:
        return AVCOL_SPC_BT2020_NCL;
    default:
        return AVCOL_SPC_SMPTE170M;
    }
}

} // namespace

void SetColourRules(AVFrame& frame, const ColourRules& rules) {
    frame.colorspace = SpaceOf(rules.matrix);
    frame.color_range = rules.range == ColourRange::Full ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
}

} // namespace av
