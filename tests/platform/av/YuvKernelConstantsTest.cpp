#include "platform/av/YuvKernelConstants.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <gtest/gtest.h>
#include <libyuv.h>

namespace av {
namespace {

struct Case {
    ColourRules rules;
    double red, blue; // their weights in the brightness
};

const Case kCases[] = {{{ColourMatrix::Bt601, ColourRange::Video}, 0.299, 0.114},
                       {{ColourMatrix::Bt709, ColourRange::Video}, 0.2126, 0.0722},
                       {{ColourMatrix::Bt2020, ColourRange::Video}, 0.2627, 0.0593},
                       {{ColourMatrix::Smpte240M, ColourRange::Video}, 0.212, 0.087},
                       {{ColourMatrix::Bt601, ColourRange::Full}, 0.299, 0.114},
                       {{ColourMatrix::Bt709, ColourRange::Full}, 0.2126, 0.0722},
                       {{ColourMatrix::Bt2020, ColourRange::Full}, 0.2627, 0.0593}};

// Blue, green, red by the definition.
std::array<double, 3> Expected(const Case& c, int y, int u, int v) {
    const bool full = c.rules.range == ColourRange::Full;
    const double bright = full ? y / 255.0 : (y - 16) / 219.0;
    const double cb = (u - 128) / (full ? 255.0 : 224.0);
    const double cr = (v - 128) / (full ? 255.0 : 224.0);
    const double red = bright + 2 * (1 - c.red) * cr;
    const double blue = bright + 2 * (1 - c.blue) * cb;
    return {blue, (bright - c.red * red - c.blue * blue) / (1 - c.red - c.blue), red};
}

// All steps of brightness with one colour, by the kernel.
std::array<std::uint8_t, 1024> Converted(const libyuv::YuvConstants& constants, int u, int v) {
    std::array<std::uint8_t, 256> brightness{}, cb{}, cr{};
    for (std::size_t y = 0; y < brightness.size(); ++y) {
        brightness.at(y) = static_cast<std::uint8_t>(y);
    }
    cb.fill(static_cast<std::uint8_t>(u));
    cr.fill(static_cast<std::uint8_t>(v));
    std::array<std::uint8_t, 1024> pixels{};
    libyuv::I444ToARGBMatrix(brightness.data(), 256, cb.data(), 256, cr.data(), 256, pixels.data(),
                             1024, &constants, 256, 1);
    return pixels;
}

TEST(YuvKernelConstants, FollowTheDefinitionForAllColours) {
    for (const Case& c : kCases) {
        const libyuv::YuvConstants* constants = KernelConstantsFor(c.rules);
        if (constants == nullptr) {
            continue; // the scaler converts
        }
        double worst = 0;
        for (int u = 16; u <= 240; u += 8) {
            for (int v = 16; v <= 240; v += 8) {
                const auto pixels = Converted(*constants, u, v);
                for (int y = 16; y <= 235; ++y) {
                    const auto expected = Expected(c, y, u, v);
                    for (std::size_t i = 0; i < 3; ++i) {
                        const double value = std::clamp(expected[i], 0.0, 1.0) * 255;
                        worst = std::max(
                            worst, std::abs(pixels[static_cast<std::size_t>(4 * y) + i] - value));
                    }
                }
            }
        }
        EXPECT_LT(worst, 3) << static_cast<int>(c.rules.matrix);
    }
}

#if defined(__x86_64__)
TEST(YuvKernelConstants, ThereAreSomeForAllOfVideoRange) {
    for (const Case& c : kCases) {
        EXPECT_NE(KernelConstantsFor(c.rules), nullptr);
    }
}
#endif

} // namespace
} // namespace av
