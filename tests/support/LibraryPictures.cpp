#include "tests/support/LibraryPictures.h"

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <jpeglib.h>
#include <tiffio.h>
#include <webp/decode.h>

#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"

namespace {

struct JpegFailure {
    jpeg_error_mgr errors;
    std::jmp_buf back;
};

void GiveUp(j_common_ptr jpeg) {
    std::longjmp(reinterpret_cast<JpegFailure*>(jpeg->err)->back, 1);
}

void SayNothing(j_common_ptr) {}

std::uint8_t UnderBlack(int ink, int black) {
    return static_cast<std::uint8_t>(((255 - ink) * (255 - black) * 2 + 255) / 510);
}

// Adobe's files hold CMYK as light, not as ink.
void PutRow(const jpeg_decompress_struct& jpeg, const JSAMPLE* row, std::uint8_t* to) {
    const auto components = static_cast<std::size_t>(jpeg.output_components);
    const int inverted = jpeg.saw_Adobe_marker != FALSE ? 255 : 0;
    for (JDIMENSION x = 0; x < jpeg.output_width; ++x, row += components, to += 4) {
        for (std::size_t band = 0; band < 3; ++band) {
            to[2 - band] = components == 1   ? row[0]
                           : components == 3 ? row[band]
                                             : UnderBlack(row[band] ^ inverted, row[3] ^ inverted);
        }
        to[3] = 255;
    }
}

// Nothing with a destructor may live in the frame that longjmp comes back to.
bool DecodeJpeg(std::FILE* file, BgraPicture& picture, std::vector<JSAMPLE>& row) {
    jpeg_decompress_struct jpeg{};
    JpegFailure failure{};
    jpeg.err = jpeg_std_error(&failure.errors);
    failure.errors.error_exit = GiveUp;
    failure.errors.output_message = SayNothing;
    if (setjmp(failure.back) != 0) {
        jpeg_destroy_decompress(&jpeg);
        return false;
    }
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file);
    jpeg_read_header(&jpeg, TRUE);
    if (jpeg.num_components == 4) {
        jpeg.out_color_space = JCS_CMYK;
    } else if (jpeg.num_components == 3) {
        jpeg.out_color_space = JCS_RGB;
    }
    jpeg_start_decompress(&jpeg);
    picture.width = static_cast<int>(jpeg.output_width);
    picture.height = static_cast<int>(jpeg.output_height);
    picture.bits.resize(std::size_t{jpeg.output_width} * jpeg.output_height * 4);
    row.resize(std::size_t{jpeg.output_width} * static_cast<std::size_t>(jpeg.output_components));
    while (jpeg.output_scanline < jpeg.output_height) {
        std::uint8_t* to =
            picture.bits.data() + std::size_t{jpeg.output_scanline} * jpeg.output_width * 4;
        JSAMPLE* rows[] = {row.data()};
        jpeg_read_scanlines(&jpeg, rows, 1);
        PutRow(jpeg, row.data(), to);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return true;
}

unsigned int Number(std::string_view bytes, std::size_t at, std::size_t count, bool big) {
    unsigned int number = 0;
    for (std::size_t i = 0; i < count && at + count <= bytes.size(); ++i) {
        const std::size_t index = big ? at + i : at + count - 1 - i;
        number = number << 8 | static_cast<unsigned char>(bytes[index]);
    }
    return number;
}

int OrientationOfTiff(std::string_view tiff) {
    const bool big = tiff.substr(0, 2) == "MM";
    const std::size_t directory = Number(tiff, 4, 4, big);
    const unsigned int entries = Number(tiff, directory, 2, big);
    for (std::size_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * 12;
        if (entry + 12 > tiff.size()) {
            break;
        }
        if (Number(tiff, entry, 2, big) == 274) {
            const unsigned int value = Number(tiff, entry + 8, 2, big);
            return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
        }
    }
    return 1;
}

} // namespace

std::optional<BgraPicture> LibjpegPicture(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    BgraPicture picture;
    std::vector<JSAMPLE> row;
    return file && DecodeJpeg(file.get(), picture, row) ? std::optional(std::move(picture))
                                                        : std::nullopt;
}

std::optional<BgraPicture> LibtiffPicture(const std::string& path) {
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandler(nullptr);
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t orientation = ORIENTATION_TOPLEFT;
    if (!tiff || TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) == 0 ||
        TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) == 0) {
        return std::nullopt;
    }
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_ORIENTATION, &orientation);
    std::vector<uint32_t> raster(std::size_t{width} * height);
    if (TIFFReadRGBAImageOriented(tiff.get(), width, height, raster.data(), orientation, 0) == 0) {
        return std::nullopt;
    }
    BgraPicture picture{static_cast<int>(width), static_cast<int>(height), {}};
    for (const uint32_t pixel : raster) {
        for (const uint32_t byte :
             {TIFFGetB(pixel), TIFFGetG(pixel), TIFFGetR(pixel), TIFFGetA(pixel)}) {
            picture.bits.push_back(static_cast<std::uint8_t>(byte));
        }
    }
    return picture;
}

std::optional<BgraPicture> LibwebpPicture(const std::string& path) {
    const std::string bytes = ReadWholeFile(path);
    BgraPicture picture;
    const std::unique_ptr<uint8_t, void (*)(void*)> pixels(
        WebPDecodeBGRA(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), &picture.width,
                       &picture.height),
        WebPFree);
    if (!pixels) {
        return std::nullopt;
    }
    picture.bits.assign(pixels.get(), pixels.get() + std::ptrdiff_t{picture.width} * 4 *
                                                         std::ptrdiff_t{picture.height});
    return Premultiplied(picture);
}

int OrientationOf(std::string_view bytes) {
    constexpr std::string_view exif("Exif\0\0", 6);
    for (std::size_t at = 2; at + 4 <= bytes.size() && bytes[at] == '\xFF';) {
        const auto marker = static_cast<unsigned char>(bytes[at + 1]);
        const std::size_t length = Number(bytes, at + 2, 2, true);
        const std::string_view segment = bytes.substr(at + 4, length >= 2 ? length - 2 : 0);
        if (marker == 0xE1 && segment.substr(0, exif.size()) == exif) {
            return OrientationOfTiff(segment.substr(exif.size()));
        }
        if (marker == 0xDA) {
            break;
        }
        at += 2 + length;
    }
    return 1;
}
