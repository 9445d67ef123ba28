#include "platform/av/YuvKernelConstants.h"

#include <cmath>
#include <cstddef>

#include <libyuv.h>
#include <libyuv/row.h>

namespace av {

namespace {

#if defined(__x86_64__)

// The weights of red and blue in the brightness.
struct Weights {
    double red;
    double blue;
};

// The kernels multiply by 64ths.
std::uint8_t Step(double factor) {
    return static_cast<std::uint8_t>(std::lround(factor * 64));
}

// libyuv's own constants cap the factor of blue at 2, which is too little for BT.709 and BT.2020 in
// video range: full blue is 13 or 16 steps off. The kernels for this machine have no need of the
// cap. SMPTE 240M it has not at all. Brightness is scaled alike for all of video range.
libyuv::YuvConstants VideoRange(const Weights& weights) {
    const double colour = 255.0 / 224;
    const double green = 1 - weights.red - weights.blue;
    libyuv::YuvConstants constants = libyuv::kYuvI601Constants;
    for (std::size_t i = 0; i < sizeof constants.kUVToB; i += 2) {
        constants.kUVToB[i] = Step(2 * (1 - weights.blue) * colour);
        constants.kUVToG[i] = Step(2 * (1 - weights.blue) * weights.blue / green * colour);
        constants.kUVToG[i + 1] = Step(2 * (1 - weights.red) * weights.red / green * colour);
        constants.kUVToR[i + 1] = Step(2 * (1 - weights.red) * colour);
    }
    return constants;
}

const libyuv::YuvConstants* VideoRangeOf(ColourMatrix matrix) {
    alignas(32) static const libyuv::YuvConstants bt709 = VideoRange({0.2126, 0.0722});
    alignas(32) static const libyuv::YuvConstants bt2020 = VideoRange({0.2627, 0.0593});
    alignas(32) static const libyuv::YuvConstants smpte240M = VideoRange({0.212, 0.087});
    switch (matrix) {
    case ColourMatrix::Bt709:
        return &bt709;
    case ColourMatrix::Bt2020:
        return &bt2020;
    case ColourMatrix::Smpte240M:
        return &smpte240M;
    default:
        return &libyuv::kYuvI601Constants;
    }
}

#else

const libyuv::YuvConstants* VideoRangeOf(ColourMatrix matrix) {
    return matrix == ColourMatrix::Bt601 ? &libyuv::kYuvI601Constants : nullptr;
}

#endif

} // namespace

const libyuv::YuvConstants* KernelConstantsFor(const ColourRules& rules) {
    if (rules.range == ColourRange::Video) {
        return VideoRangeOf(rules.matrix);
    }
    switch (rules.matrix) {
    case ColourMatrix::Bt601:
        return &libyuv::kYuvJPEGConstants;
    case ColourMatrix::Bt709:
        return &libyuv::kYuvF709Constants;
    case ColourMatrix::Bt2020:
        return &libyuv::kYuvV2020Constants;
    default:
        return nullptr;
    }
}

} // namespace av
