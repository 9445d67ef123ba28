#include "zanthe/h264/ColorConversionInfo.h"

#include "platform/mf/MediaFormats.h"
#include "platform/mf/Sample.h"

namespace Zanthe {

namespace {

struct LumaCoefficients {
    float kr;
    float kb;
};

LumaCoefficients CoefficientsOf(std::uint32_t matrix) {
    switch (matrix) {
    case MFVideoTransferMatrix_BT601:
        return {0.299F, 0.114F};
    case MFVideoTransferMatrix_SMPTE240M:
        return {0.212F, 0.087F};
    default:
        return {0.2126F, 0.0722F};
    }
}

// Component' = scale * (component + offset).
struct RangeConstants {
    float lumaScale;
    float lumaOffset;
    float chromaScale;
    float chromaOffset;
};

RangeConstants ConstantsOf(std::uint32_t nominalRange) {
    if (nominalRange == MFNominalRange_Unknown || nominalRange == MFNominalRange_16_235) {
        return {1.1643835F, -0.0627451F, 1.1383928F, -0.5019608F};
    }
    return {1.0F, 0.0F, 1.0F, -0.5F};
}

void SetRow(float row[4], float y, float cb, float cr, float constant) {
    row[0] = y;
    row[1] = cb;
    row[2] = cr;
    row[3] = constant;
}

} // namespace

ColorConversionInfo::ColorConversionInfo(IMFSample* sample) {
    if (sample == nullptr) {
        return;
    }
    // On failure the attribute is lacking, and the field keeps its 0.
    static_cast<void>(sample->GetUINT32(MF_MT_YUV_MATRIX, &matrix));
    static_cast<void>(sample->GetUINT32(MF_MT_VIDEO_NOMINAL_RANGE, &nominalRange));
}

void ColorConversionInfo::AttachToSample(IMFSample* sample) const {
    if (sample == nullptr) {
        return;
    }
    static_cast<void>(sample->SetUINT32(MF_MT_YUV_MATRIX, matrix));
    static_cast<void>(sample->SetUINT32(MF_MT_VIDEO_NOMINAL_RANGE, nominalRange));
}

// In single precision throughout, in this order of operations.
void ColorConversionInfo::ToMatrix(float target[3][4]) const {
    const auto [kr, kb] = CoefficientsOf(matrix);
    const RangeConstants range = ConstantsOf(nominalRange);
    const float a = 1.0F - kr;
    const float b = 1.0F - kb;
    const float d = a - kb;
    const float redFromCr = (a + a) * range.chromaScale;
    const float blueFromCb = (b + b) * range.chromaScale;
    const float greenFromCb = (b * -2.0F * kb / d) * range.chromaScale;
    const float greenFromCr = (a * -2.0F * kr / d) * range.chromaScale;
    const float luma = range.lumaScale;
    const float lumaConstant = range.lumaOffset * range.lumaScale;
    const float offset = range.chromaOffset;
    SetRow(target[0], luma, 0.0F, redFromCr, redFromCr * offset + lumaConstant);
    SetRow(target[1], luma, greenFromCb, greenFromCr,
           greenFromCb * offset + lumaConstant + greenFromCr * offset);
    SetRow(target[2], luma, blueFromCb, 0.0F, blueFromCb * offset + lumaConstant);
}

} // namespace Zanthe
