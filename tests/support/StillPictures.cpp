#include "tests/support/StillPictures.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace {

// Everything that the command prints.
std::string OutputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) {
        throw std::runtime_error("cannot run: " + command);
    }
    std::string output;
    char buffer[65536];
    for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof(buffer), pipe.get())) > 0;) {
        output.append(buffer, got);
    }
    return output;
}

std::string Quoted(const std::string& path) {
    std::string quoted = "'";
    for (const char letter : path) {
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return quoted + "'";
}

std::string Little(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) {
        text += static_cast<char>(value >> 8 * i);
    }
    return text;
}

// An entry of a TIFF directory; values of 16 bits stand in the lower half.
std::string Entry(std::uint32_t tag, std::uint32_t type, std::uint32_t count, std::uint32_t value) {
    return Little(tag, 2) + Little(type, 2) + Little(count, 4) + Little(value, 4);
}

// Of an animated PNG file, ffmpeg would show the first frame and not the picture.
std::string Demuxer(const std::string& path) {
    return path.ends_with(".png") ? "-f png_pipe " : "";
}

// What ffmpeg prints of the picture as PAM: bytes, or values of two bytes, rounded to the nearest
// byte here.
std::optional<BgraPicture> PamPicture(const std::string& path, bool isDeep) {
    const std::string pam =
        OutputOf("ffmpeg -nostdin -v quiet -noautorotate " + Demuxer(path) + "-i " + Quoted(path) +
                 " -frames:v 1 -sws_flags accurate_rnd+full_chroma_int+full_chroma_inp+bitexact"
                 " -f image2pipe -c:v pam -pix_fmt " +
                 (isDeep ? "rgba64be" : "rgba") + " -");
    const std::size_t end = pam.find("ENDHDR\n");
    if (end == std::string::npos) {
        return std::nullopt;
    }
    std::istringstream header(pam.substr(0, end));
    BgraPicture picture;
    for (std::string word; header >> word;) {
        if (word == "WIDTH") {
            header >> picture.width;
        } else if (word == "HEIGHT") {
            header >> picture.height;
        }
    }
    const std::string_view pixels = std::string_view(pam).substr(end + 7);
    picture.bits.resize(static_cast<std::size_t>(picture.width) *
                        static_cast<std::size_t>(picture.height) * 4);
    const auto byte = [&](std::size_t at) -> unsigned int {
        return at < pixels.size() ? static_cast<unsigned char>(pixels[at]) : 0U;
    };
    for (std::size_t i = 0; i < picture.bits.size(); ++i) {
        const unsigned int value =
            isDeep ? ((byte(i * 2) << 8 | byte(i * 2 + 1)) + 128) / 257 : byte(i);
        picture.bits[i] = static_cast<std::uint8_t>(value);
    }
    for (std::size_t i = 0; i < picture.bits.size(); i += 4) {
        std::swap(picture.bits[i], picture.bits[i + 2]);
    }
    return picture;
}

} // namespace

std::optional<BgraPicture> FfmpegPicture(const std::string& path) {
    return PamPicture(path, false);
}

std::optional<BgraPicture> DeepFfmpegPicture(const std::string& path) {
    return PamPicture(path, true);
}

std::vector<BgraPicture> FfmpegPictures(const std::string& path, int width, int height, int most) {
    const std::string pixels =
        OutputOf("ffmpeg -nostdin -v quiet -i " + Quoted(path) + " -vsync passthrough -frames:v " +
                 std::to_string(most) + " -f rawvideo -pix_fmt bgra -");
    const std::size_t bytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    std::vector<BgraPicture> pictures;
    for (std::size_t at = 0; bytes > 0 && at + bytes <= pixels.size(); at += bytes) {
        const auto start = pixels.begin() + static_cast<std::ptrdiff_t>(at);
        pictures.push_back({width, height, {start, start + static_cast<std::ptrdiff_t>(bytes)}});
    }
    return pictures;
}

BgraPicture PictureOf(const Zanthe::Bitmap& bitmap) {
    const auto bytes = static_cast<std::ptrdiff_t>(bitmap.GetStride()) * bitmap.GetHeight();
    return {bitmap.GetWidth(), bitmap.GetHeight(),
            std::vector<std::uint8_t>(bitmap.GetBits(), bitmap.GetBits() + bytes)};
}

std::string PixelText(const BgraPicture& picture, int x, int y) {
    char text[9];
    const auto at = static_cast<std::size_t>(y * picture.width + x) * 4;
    std::snprintf(text, sizeof(text), "%02X%02X%02X%02X", picture.bits.at(at),
                  picture.bits.at(at + 1), picture.bits.at(at + 2), picture.bits.at(at + 3));
    return text;
}

BgraPicture Premultiplied(const BgraPicture& picture) {
    BgraPicture result = picture;
    for (std::size_t i = 0; i < result.bits.size(); i += 4) {
        for (std::size_t band = 0; band < 3; ++band) {
            const unsigned int product = result.bits[i + band] * result.bits[i + 3] * 2 + 255;
            result.bits[i + band] = static_cast<std::uint8_t>(product / 510);
        }
    }
    return result;
}

int LargestDifference(const BgraPicture& a, const BgraPicture& b) {
    if (a.width != b.width || a.height != b.height) {
        return 256;
    }
    int largest = 0;
    for (std::size_t i = 0; i < a.bits.size(); ++i) {
        largest = std::max(largest, std::abs(int{a.bits[i]} - int{b.bits[i]}));
    }
    return largest;
}

std::string WithOrientation(std::string_view bytes, int orientation) {
    const std::string tiff = "II" + Little(42, 2) + Little(8, 4) + Little(1, 2) +
                             Entry(274, 3, 1, static_cast<std::uint32_t>(orientation)) +
                             Little(0, 4);
    const std::string exif = std::string("Exif\0\0", 6) + tiff;
    const std::size_t length = exif.size() + 2;
    return std::string(bytes.substr(0, 2)) + "\xFF\xE1" + static_cast<char>(length >> 8) +
           static_cast<char>(length) + exif + std::string(bytes.substr(2));
}

BgraPicture Upright(const BgraPicture& picture, int orientation) {
    const bool swaps = orientation >= 5;
    BgraPicture result;
    result.width = swaps ? picture.height : picture.width;
    result.height = swaps ? picture.width : picture.height;
    result.bits.resize(picture.bits.size());
    const int right = picture.width - 1;
    const int bottom = picture.height - 1;
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            // Where the EXIF standard says that row and column 0 of the picture are.
            const int fromX[] = {x, x, right - x, right - x, x, y, y, right - y, right - y};
            const int fromY[] = {y, y, y, bottom - y, bottom - y, x, bottom - x, bottom - x, x};
            const auto from =
                static_cast<std::size_t>(fromY[orientation] * picture.width + fromX[orientation]) *
                4;
            const auto to = static_cast<std::size_t>(y * result.width + x) * 4;
            std::copy_n(picture.bits.begin() + static_cast<std::ptrdiff_t>(from), 4,
                        result.bits.begin() + static_cast<std::ptrdiff_t>(to));
        }
    }
    return result;
}

std::string TiffOfRows(int width, int height, std::string_view row, bool premultiplied) {
    constexpr std::uint32_t entries = 11;
    constexpr std::uint32_t bits = 8 + 2 + entries * 12 + 4;
    constexpr std::uint32_t pixels = bits + 8;
    const auto rows = static_cast<std::uint32_t>(height);
    const auto rowBytes = static_cast<std::uint32_t>(row.size());
    const std::uint32_t offsets = pixels + rowBytes;
    const std::uint32_t counts = offsets + rows * 4;
    constexpr std::uint32_t word = 3;
    constexpr std::uint32_t number = 4;
    std::string file = "II" + Little(42, 2) + Little(8, 4) + Little(entries, 2);
    file += Entry(256, number, 1, static_cast<std::uint32_t>(width));
    file += Entry(257, number, 1, rows);
    file += Entry(258, word, 4, bits);
    file += Entry(259, word, 1, 1);
    file += Entry(262, word, 1, 2);
    file += Entry(273, number, rows, rows == 1 ? pixels : offsets);
    file += Entry(277, word, 1, 4);
    file += Entry(278, number, 1, 1); // every row is a strip, and all strips are the same bytes
    file += Entry(279, number, rows, rows == 1 ? rowBytes : counts);
    file += Entry(284, word, 1, 1);
    file += Entry(338, word, 1, premultiplied ? 1 : 2);
    file += Little(0, 4) + Little(8, 2) + Little(8, 2) + Little(8, 2) + Little(8, 2);
    file += row;
    for (std::uint32_t i = 0; i < rows; ++i) {
        file += Little(pixels, 4);
    }
    for (std::uint32_t i = 0; i < rows; ++i) {
        file += Little(rowBytes, 4);
    }
    return file;
}
