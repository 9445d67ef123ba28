#include "tests/support/BgraPicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace {

constexpr double Same = 100;
constexpr int NumberBits = 10;

double SquaredDifferences(const BgraPicture& a, const BgraPicture& b) {
    std::uint64_t sum = 0;
    for (std::size_t pixel = 0; pixel + 3 < a.bits.size(); pixel += 4) {
        for (std::size_t colour = pixel; colour < pixel + 3; ++colour) {
            const int difference = a.bits[colour] - b.bits[colour];
            sum += static_cast<unsigned int>(difference * difference);
        }
    }
    return static_cast<double>(sum);
}

} // namespace

double Psnr(const BgraPicture& a, const BgraPicture& b) {
    if (a.width != b.width || a.height != b.height || a.bits.empty()) {
        return 0;
    }
    const double squared = SquaredDifferences(a, b);
    if (squared == 0) {
        return Same;
    }
    const double samples = static_cast<double>(a.bits.size()) * 3 / 4;
    return std::min(Same, 10 * std::log10(255.0 * 255.0 * samples / squared));
}

int NumberInPicture(const BgraPicture& picture) {
    int number = 0;
    for (int bit = 0; bit < NumberBits; ++bit) {
        const int x = (2 * bit + 1) * picture.width / (2 * NumberBits);
        const int y = picture.height / 16;
        const std::size_t green = (static_cast<std::size_t>(y) * picture.width + x) * 4 + 1;
        if (green >= picture.bits.size() || std::abs(picture.bits[green] - 128) < 50) {
            return -1;
        }
        number |= (picture.bits[green] > 128 ? 1 : 0) << bit;
    }
    return number;
}
