#include "zanthe/core/AudioSampleRates.h"

#include <algorithm>
#include <iterator>

namespace Zanthe {

namespace {

constexpr unsigned int SupportedRates[] = {48000, 44100, 32000, 22050, 16000, 11025, 8000};

struct Conversion {
    std::int64_t fromRate;
    std::int64_t toRate;
    std::int64_t multiplier;
    std::int64_t divisor;
};

// Not in lowest terms on purpose: how large a count may be depends on the multiplier.
constexpr Conversion Conversions[] = {
    {48000, 44100, 14700, 16000}, {32000, 44100, 22050, 16000},
    {22050, 44100, 22050, 16000}, // not 2: see the header
    {16000, 44100, 44100, 16000}, {11025, 44100, 4, 1},
    {8000, 44100, 88200, 16000},  {44100, 48000, 16000, 14700},
    {44100, 32000, 16000, 22050}, {44100, 22050, 16000, 32000},
    {44100, 16000, 16000, 44100}, {44100, 11025, 16000, 64000},
    {44100, 8000, 16000, 88200},
};

} // namespace

bool AudioSampleRateSupported(unsigned int rate) {
    return std::find(std::begin(SupportedRates), std::end(SupportedRates), rate) !=
           std::end(SupportedRates);
}

std::int64_t ConvertFrameCount(std::int64_t frameCount, std::int64_t fromRate,
                               std::int64_t toRate) {
    if (fromRate == toRate) {
        return frameCount;
    }
    const auto conversion = std::find_if(
        std::begin(Conversions), std::end(Conversions), [&](const Conversion& candidate) {
            return candidate.fromRate == fromRate && candidate.toRate == toRate;
        });
    std::int64_t product = 0;
    if (conversion == std::end(Conversions) ||
        __builtin_mul_overflow(frameCount, conversion->multiplier, &product)) {
        return 0;
    }
    return product / conversion->divisor;
}

} // namespace Zanthe
