// How the pixels of a YUV sample become RGB.
//
//     const ColorConversionInfo colour(sample);
//     float matrix[3][4];
//     colour.ToMatrix(matrix); // (R, G, B) = matrix * (Y, Cb, Cr, 1), all within 0..1
#pragma once

#include <cstdint>

#include "zanthe/core/Export.h"

struct IMFSample;

namespace Zanthe {

// A value: copied as it is, also from thread to thread. The numbers are those of the platform's
// enumerations MFNominalRange and MFVideoTransferMatrix, as which they travel with a sample.
//
// Thread-safety: none, as of any value.
class ZANTHE_API ColorConversionInfo {
public:
    // Both unknown.
    ColorConversionInfo() = default;

    // What AttachToSample left on `sample`; what the sample lacks, and everything for null, is
    // unknown. `sample` is borrowed for the call.
    explicit ColorConversionInfo(IMFSample* sample);

    // Sets MF_MT_YUV_MATRIX and MF_MT_VIDEO_NOMINAL_RANGE on `sample`, borrowed for the call; null
    // is ignored, as is a sample that takes no attributes.
    void AttachToSample(IMFSample* sample) const;

    // The three rows of the matrix that makes (R, G, B) of the column (Y, Cb, Cr, 1), each
    // component normalised to 0..1. An unknown matrix counts as BT.709, an unknown range as the
    // video range; the range 48-208 counts as full.
    //
    // With the luma coefficients Kr and Kb of the matrix, a = 1 - Kr, b = 1 - Kb and
    // d = 1 - Kr - Kb (ITU-R BT.601 and BT.709):
    //   R = Y' + 2a Cr',  G = Y' - 2b Kb/d Cb' - 2a Kr/d Cr',  B = Y' + 2b Cb'
    // where Y' and C' are the components with their range taken out: of the video range
    // Y' = 255/219 (Y - 16/255) and C' = 255/224 (C - 128/255), of the full range Y' = Y and
    // C' = C - 1/2.
    void ToMatrix(float target[3][4]) const;

    // 0 unknown, 1 full (0-255), 2 video (16-235), 3 48-208.
    std::uint32_t nominalRange = 0;

    // 0 unknown, 1 BT.709, 2 BT.601, 3 SMPTE 240M.
    std::uint32_t matrix = 0;

    friend bool operator==(const ColorConversionInfo&, const ColorConversionInfo&) = default;
};

} // namespace Zanthe
