#include "platform/mf/ColourValues.h"

#include "platform/mf/MediaFormats.h"

namespace mf {

namespace {

using av::ColourMatrix;
using av::ColourRange;

UINT32 ValueOf(ColourMatrix matrix) {
    switch (matrix) {
    case ColourMatrix::Bt709:
        return MFVideoTransferMatrix_BT709;
    case ColourMatrix::Smpte240M:
        return MFVideoTransferMatrix_SMPTE240M;
    case ColourMatrix::Bt2020:
        return MFVideoTransferMatrix_BT2020_10;
    default:
        return MFVideoTransferMatrix_BT601;
    }
}

ColourMatrix MatrixOf(UINT32 value, ColourMatrix otherwise) {
    switch (value) {
    case MFVideoTransferMatrix_BT709:
        return ColourMatrix::Bt709;
    case MFVideoTransferMatrix_BT601:
        return ColourMatrix::Bt601;
    case MFVideoTransferMatrix_SMPTE240M:
        return ColourMatrix::Smpte240M;
    case MFVideoTransferMatrix_BT2020_10:
    case MFVideoTransferMatrix_BT2020_12:
        return ColourMatrix::Bt2020;
    default:
        return otherwise;
    }
}

av::ColourRules OfSilentPicture(int height) {
    const av::FramePtr frame(av_frame_alloc());
    if (frame == nullptr) {
        return {};
    }
    frame->height = height;
    return av::ColourRulesOf(*frame);
}

} // namespace

void SetColour(IMFMediaType& type, const av::ColourRules& rules) {
    type.SetUINT32(MF_MT_YUV_MATRIX, ValueOf(rules.matrix));
    type.SetUINT32(MF_MT_VIDEO_NOMINAL_RANGE,
                   rules.range == ColourRange::Full ? MFNominalRange_0_255 : MFNominalRange_16_235);
}

av::ColourRules ColourOf(IMFMediaType& type, int height) {
    const UINT32 matrix = MFGetAttributeUINT32(&type, MF_MT_YUV_MATRIX, 0);
    const UINT32 range = MFGetAttributeUINT32(&type, MF_MT_VIDEO_NOMINAL_RANGE, 0);
    const av::ColourRules silent = OfSilentPicture(height);
    return {MatrixOf(matrix, silent.matrix),
            range == MFNominalRange_0_255 ? ColourRange::Full : silent.range};
}

} // namespace mf
