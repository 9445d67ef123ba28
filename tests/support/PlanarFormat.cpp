#include "tests/support/PlanarFormat.h"

#include <algorithm>
#include <array>
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
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 1.0) * 255 + 0.5);
}

// One plane's values at the picture's own size.
std::vector<std::uint16_t> WholePlane(const PlanarFormat& format, int plane,
                                      const std::uint8_t* raw, int width, int height) {
    const int shiftX = plane == 0 || format.rgb ? 0 : format.shiftX;
    const int shiftY = plane == 0 || format.rgb ? 0 : format.shiftY;
    const std::size_t rowBytes =
        static_cast<std::size_t>(format.PlaneWidth(plane, width)) * format.BytesPerValue();
    std::vector<std::uint16_t> values(static_cast<std::size_t>(width) * height);
    auto* out = values.data();
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* row = raw + (y >> shiftY) * rowBytes;
        for (int x = 0; x < width; ++x) {
            const int column = x >> shiftX;
            *out++ = format.BytesPerValue() == 1
                         ? row[column]
                         : static_cast<std::uint16_t>(row[2 * column] + 256 * row[2 * column + 1]);
        }
    }
    return values;
}

// What the values of brightness and of colour mean: 0 to 1 and -0.5 to 0.5.
struct Scale {
    double blackest;
    double brightness;
    double middle;
    double colour;
};

Scale ScaleOf(const PlanarFormat& format, bool full) {
    const double step = (1 << format.depth) / 256.0;
    const double highest = (1 << format.depth) - 1;
    if (full) {
        return {0, 1 / highest, 128 * step, 1 / highest};
    }
    return {16 * step, 1 / (219 * step), 128 * step, 1 / (224 * step)};
}

using Values = std::vector<std::uint16_t>;

void FromRgb(const PlanarFormat& format, const std::array<Values, 3>& planes,
             std::vector<std::uint8_t>& bits) {
    const double highest = (1 << format.depth) - 1;
    for (std::size_t i = 0; i < planes[0].size(); ++i) {
        bits[4 * i] = ToByte(planes[1][i] / highest);
        bits[4 * i + 1] = ToByte(planes[0][i] / highest);
        bits[4 * i + 2] = ToByte(planes[2][i] / highest);
    }
}

void FromYuv(const std::array<Values, 3>& planes, const Scale& scale, const Weights& weights,
             std::vector<std::uint8_t>& bits) {
    const double green = 1 - weights.red - weights.blue;
    for (std::size_t i = 0; i < planes[0].size(); ++i) {
        const double y = (planes[0][i] - scale.blackest) * scale.brightness;
        const bool grey = planes[1].empty();
        const double cb = grey ? 0 : (planes[1][i] - scale.middle) * scale.colour;
        const double cr = grey ? 0 : (planes[2][i] - scale.middle) * scale.colour;
        const double r = y + 2 * (1 - weights.red) * cr;
        const double b = y + 2 * (1 - weights.blue) * cb;
        bits[4 * i] = ToByte(b);
        bits[4 * i + 1] = ToByte((y - weights.red * r - weights.blue * b) / green);
        bits[4 * i + 2] = ToByte(r);
    }
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

std::size_t PlanarFormat::PlaneBytes(int plane, int width, int height) const {
    return static_cast<std::size_t>(PlaneWidth(plane, width)) * PlaneHeight(plane, height) *
           BytesPerValue();
}

std::size_t PlanarFormat::PictureBytes(int width, int height) const {
    std::size_t bytes = 0;
    for (int plane = 0; plane < planes; ++plane) {
        bytes += PlaneBytes(plane, width, height);
    }
    return bytes;
}

BgraPicture ConvertPlanar(const PlanarFormat& format, const ColourWords& words,
                          const std::vector<std::uint8_t>& raw, int width, int height) {
    std::array<Values, 3> planes;
    const std::uint8_t* at = raw.data();
    for (int plane = 0; plane < format.planes; ++plane) {
        planes.at(plane) = WholePlane(format, plane, at, width, height);
        at += format.PlaneBytes(plane, width, height);
    }
    BgraPicture picture{width, height, {}};
    picture.bits.assign(static_cast<std::size_t>(width) * height * 4, 255);
    if (format.rgb) {
        FromRgb(format, planes, picture.bits);
    } else {
        FromYuv(planes, ScaleOf(format, format.full || words.range == "pc"),
                WeightsOf(words.matrix, height), picture.bits);
    }
    return picture;
}
