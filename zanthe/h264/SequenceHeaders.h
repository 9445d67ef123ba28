// What the headers of an H.264 stream say about its colour.
//
//     ColorConversionInfo colour = ParseColorInfoFromSequenceHeaders(blob);
//     float matrix[3][4];
//     colour.ToMatrix(matrix);
#pragma once

#include <vector>

#include "zanthe/core/Export.h"
#include "zanthe/h264/ColorConversionInfo.h"

namespace Zanthe {

// The colour that the sequence parameter set in `headers` tells. `headers` is the value of a video
// type's MF_MT_MPEG_SEQUENCE_HEADER: units in Annex B form, of which the first alone is looked at.
//
// With a colour description (VUI of ISO/IEC 14496-10, E.2.1) the matrix is that of
// matrix_coefficients: 1 is BT.709, 5 and 6 are BT.601, 7 is SMPTE 240M, and any other leaves it
// unknown; the range is full with video_full_range_flag, else video. Everything unknown, the
// default value, without a colour description (a full range flag alone is not believed), when the
// first unit is no sequence parameter set or one with nal_ref_idc 0, when it ends early, and when
// there is no unit.
//
// Thread-safety: safe from any thread. Never throws but for memory.
ZANTHE_API ColorConversionInfo
ParseColorInfoFromSequenceHeaders(const std::vector<unsigned char>& headers);

} // namespace Zanthe
