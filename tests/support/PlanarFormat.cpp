#include "tests/support/PlanarFormat.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <regex>

namespace {

constexpr int RowsOfStandardDefinition = 720;

// The weights of red and blue in the brightness.
struct Weights {
    double red;
    double blue;
};

Weights WeightsOf(const std::string& matrix, int height) {
    if (matrix == "bt709" || (matrix == "unknown" && height > RowsOfStandardDefinition)) {
        return {0.2126, 0.0722};
    }
    if (matrix == "smpte240m") {
        return {0.212, 0.087};
    }
    if (matrix == "bt2020nc" || matrix == "bt2020c") {
        return {0.2627, 0.0593};
    }
    return {0.299, 0.114};
}

std::uint8_t ToByte(double value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

// Reads the values of one picture's planes, 0 to 1 over the whole range of their bits.
class Planes {
public:
    Planes(const PlanarFormat& format, const std::vector<std::uint8_t>& raw, int width, int height)
        : m_format(format)
        , m_raw(raw)
        , m_width(width)
        , m_highest((1 << format.depth) - 1) {
        std::size_t offset = 0;
        for (int plane = 0; plane < format.planes; ++plane) {
            m_offsets.at(plane) = offset;
            offset += static_cast<std::size_t>(format.PlaneWidth(plane, width)) *
                      format.PlaneHeight(plane, height) * format.BytesPerValue();
        }
    }

    // In the steps of the plane's depth.
    double At(int plane, int x, int y) const {
        const bool small = plane > 0 && !m_format.rgb;
        const std::size_t row = small ? y >> m_format.shiftY : y;
        const std::size_t column = small ? x >> m_format.shiftX : x;
        const std::size_t index = row * m_format.PlaneWidth(plane, m_width) + column;
        const std::size_t at = m_offsets.at(plane) + index * m_format.BytesPerValue();
        return m_format.BytesPerValue() == 1 ? m_raw[at] : m_raw[at] + 256 * m_raw[at + 1];
    }

    double Highest() const { return m_highest; }

    // One step of 8 bits, in the steps of this depth.
    double Step() const { return (m_highest + 1) / 256; }

private:
    const PlanarFormat& m_format;
    const std::vector<std::uint8_t>& m_raw;
    int m_width;
    double m_highest;
    std::array<std::size_t, 4> m_offsets{};
};

struct Colour {
    double blue, green, red;
};

Colour FromYuv(double y, double cb, double cr, const Weights& weights) {
    const double red = y + 2 * (1 - weights.red) * cr;
    const double blue = y + 2 * (1 - weights.blue) * cb;
    const double green =
        (y - weights.red * red - weights.blue * blue) / (1 - weights.red - weights.blue);
    return {blue, green, red};
}

Colour PixelAt(const Planes& planes, const PlanarFormat& format, const Weights& weights, bool full,
               int x, int y) {
    if (format.rgb) {
        return {planes.At(1, x, y) / planes.Highest(), planes.At(0, x, y) / planes.Highest(),
                planes.At(2, x, y) / planes.Highest()};
    }
    const double step = planes.Step();
    const double middle = 128 * step;
    const double brightness = full ? planes.At(0, x, y) / planes.Highest()
                                   : (planes.At(0, x, y) - 16 * step) / (219 * step);
    const double span = full ? planes.Highest() : 224 * step;
    const double cb = format.planes < 3 ? 0 : (planes.At(1, x, y) - middle) / span;
    const double cr = format.planes < 3 ? 0 : (planes.At(2, x, y) - middle) / span;
    return FromYuv(brightness, cb, cr, weights);
}

} // namespace

std::optional<PlanarFormat> PlanarFormat::Named(const std::string& name) {
    static const std::regex pattern("(yuvj?(4[0-4][0-4])p|gray|gbrp)([0-9]*)(le)?");
    static const std::map<std::string, std::pair<int, int>> shifts{
        {"420", {1, 1}}, {"422", {1, 0}}, {"444", {0, 0}},
        {"440", {0, 1}}, {"411", {2, 0}}, {"410", {2, 2}}};
    std::smatch parts;
    if (!std::regex_match(name, parts, pattern)) {
        return std::nullopt;
    }
    PlanarFormat format;
    format.planes = name.rfind("gray", 0) == 0 ? 1 : 3;
    format.rgb = name.rfind("gbrp", 0) == 0;
    format.full = name.rfind("yuvj", 0) == 0;
    format.depth = parts[3].length() == 0 ? 8 : std::stoi(parts[3]);
    if (const auto found = shifts.find(parts[2]); found != shifts.end()) {
        std::tie(format.shiftX, format.shiftY) = found->second;
    }
    return format;
}

int PlanarFormat::PlaneWidth(int plane, int width) const {
    return plane == 0 || rgb ? width : (width + (1 << shiftX) - 1) >> shiftX;
}

int PlanarFormat::PlaneHeight(int plane, int height) const {
    return plane == 0 || rgb ? height : (height + (1 << shiftY) - 1) >> shiftY;
}

std::size_t PlanarFormat::PictureBytes(int width, int height) const {
    std::size_t bytes = 0;
    for (int plane = 0; plane < planes; ++plane) {
        bytes += static_cast<std::size_t>(PlaneWidth(plane, width)) * PlaneHeight(plane, height) *
                 BytesPerValue();
    }
    return bytes;
}

BgraPicture ConvertPlanar(const PlanarFormat& format, const ColourWords& words,
                          const std::vector<std::uint8_t>& raw, int width, int height) {
    const Planes planes(format, raw, width, height);
    const Weights weights = WeightsOf(words.matrix, height);
    const bool full = format.full || words.range == "pc";
    BgraPicture picture{width, height, {}};
    picture.bits.reserve(static_cast<std::size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Colour colour = PixelAt(planes, format, weights, full, x, y);
            picture.bits.insert(picture.bits.end(), {ToByte(colour.blue), ToByte(colour.green),
                                                     ToByte(colour.red), 255});
        }
    }
    return picture;
}
