#include "zanthe/h264/SequenceHeaders.h"

#include <stdexcept>

#include "platform/mf/MediaFormats.h"
#include "zanthe/h264/BitStreamReader.h"
#include "zanthe/h264/NalUnits.h"
#include "zanthe/h264/SequenceParameterSet.h"

namespace Zanthe {

namespace {

// Takes the unit's header byte. A set that no picture may refer to is deliberately passed over.
bool IsReferencedParameterSet(BitStreamReader& bits) {
    constexpr std::uint64_t sequenceParameterSet = 7;
    bits.ReadBits(1); // forbidden_zero_bit
    const std::uint64_t refIdc = bits.ReadBits(2);
    const std::uint64_t unitType = bits.ReadBits(5);
    return refIdc != 0 && unitType == sequenceParameterSet;
}

std::uint32_t TransferMatrixOf(std::uint8_t matrixCoefficients) {
    switch (matrixCoefficients) {
    case 1:
        return MFVideoTransferMatrix_BT709;
    case 5: // BT.470, of which BT.601 took its numbers
    case 6:
        return MFVideoTransferMatrix_BT601;
    case 7:
        return MFVideoTransferMatrix_SMPTE240M;
    default:
        return MFVideoTransferMatrix_Unknown;
    }
}

// Throws when the unit ends early; then nothing of it counts, whatever had been read.
ColorConversionInfo ColorOfUnit(const std::vector<unsigned char>& unit) {
    ColorConversionInfo color;
    BitStreamReader bits(unit);
    if (!IsReferencedParameterSet(bits)) {
        return color;
    }
    const VuiParameters vui = ReadSequenceParameterSet(bits).vui_parameters;
    if (vui.matrix_coefficients) {
        color.matrix = TransferMatrixOf(*vui.matrix_coefficients);
        color.nominalRange =
            vui.video_full_range_flag == true ? MFNominalRange_0_255 : MFNominalRange_16_235;
    }
    return color;
}

} // namespace

ColorConversionInfo ParseColorInfoFromSequenceHeaders(const std::vector<unsigned char>& headers) {
    const auto units = SplitNalUnits(headers);
    if (units.empty()) {
        return {};
    }
    try {
        return ColorOfUnit(units.front());
    } catch (const std::runtime_error&) {
        return {}; // the headers end early: nothing is known
    }
}

} // namespace Zanthe
