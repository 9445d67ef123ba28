#include "platform/wic/PngReader.h"

#include <algorithm>
#include <csetjmp>
#include <new>

#include <png.h>

namespace wic {

namespace {

constexpr std::size_t MostPixels = std::size_t{1} << 27;

// Names of four characters, each with a zero behind it.
constexpr png_byte Unwanted[] = "iCCP\0tEXt\0zTXt\0iTXt\0sPLT\0hIST\0eXIf";

[[noreturn]] void Fail(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

void PassOver(png_structp, png_const_charp) {}

void ReadBytes(png_structp png, png_bytep to, std::size_t count) {
    auto* stream = static_cast<IStream*>(png_get_io_ptr(png));
    ULONG done = 0;
    if (FAILED(stream->Read(to, static_cast<ULONG>(count), &done)) || done != count) {
        png_error(png, "the picture is cut off");
    }
}

// libpng's two objects.
class Reading {
public:
    explicit Reading(IStream& stream)
        : m_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, PassOver))
        , m_info(m_png != nullptr ? png_create_info_struct(m_png) : nullptr) {
        if (m_info != nullptr) {
            png_set_read_fn(m_png, &stream, ReadBytes);
        }
    }

    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    ~Reading() { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    bool IsOpen() const { return m_info != nullptr; }

    png_structp Png() const { return m_png; }

    png_infop Info() const { return m_info; }

private:
    png_structp m_png;
    png_infop m_info;
};

// libpng leaves a call that fails by a jump to the function that set its mark: the two here that do
// have nothing in them that a jump could leave behind.
bool ReadInfo(png_structp png, png_infop info) {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    // Texts, profiles and the like are not read: they only cost.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, Unwanted, sizeof Unwanted / 5);
    png_read_info(png, info);
    return true;
}

bool ReadRows(png_structp png, png_infop info, png_bytep pixels, std::size_t pitch) {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_bgr(png);
    png_set_add_alpha(png, 255, PNG_FILLER_AFTER);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const png_uint_32 height = png_get_image_height(png, info);
    if (png_get_rowbytes(png, info) != pitch) {
        return false;
    }
    for (int pass = 0; pass < passes; ++pass) {
        for (png_uint_32 y = 0; y < height; ++y) {
            png_read_row(png, pixels + y * pitch, nullptr);
        }
    }
    return true;
}

PngHeader HeaderOf(png_structp png, png_infop info) {
    const png_byte type = png_get_color_type(png, info);
    return {.width = static_cast<int>(png_get_image_width(png, info)),
            .height = static_cast<int>(png_get_image_height(png, info)),
            .indexed = type == PNG_COLOR_TYPE_PALETTE,
            .hasAlpha =
                (type & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png, info, PNG_INFO_tRNS) != 0};
}

} // namespace

PngReader::PngReader(IStream* stream)
    : m_stream(stream) {
    ULARGE_INTEGER position{};
    if (SUCCEEDED(m_stream->Seek({}, STREAM_SEEK_CUR, &position))) {
        m_start = position.QuadPart;
    }
}

std::optional<PngHeader> PngReader::ReadHeader() {
    const Reading reading(*m_stream.Get());
    if (!GoToStart() || !reading.IsOpen() || !ReadInfo(reading.Png(), reading.Info())) {
        return std::nullopt;
    }
    const PngHeader header = HeaderOf(reading.Png(), reading.Info());
    return header.Pixels() <= MostPixels ? std::optional(header) : std::nullopt;
}

bool PngReader::ReadPixels(const PngHeader& header, std::uint8_t* pixels) {
    const Reading reading(*m_stream.Get());
    if (!GoToStart() || !reading.IsOpen() || !ReadInfo(reading.Png(), reading.Info())) {
        return false;
    }
    const PngHeader found = HeaderOf(reading.Png(), reading.Info());
    return found.width == header.width && found.height == header.height &&
           ReadRows(reading.Png(), reading.Info(), pixels,
                    static_cast<std::size_t>(header.width) * 4);
}

bool PngReader::GoToStart() {
    LARGE_INTEGER start{};
    start.QuadPart = static_cast<LONGLONG>(m_start);
    return SUCCEEDED(m_stream->Seek(start, STREAM_SEEK_SET, nullptr));
}

} // namespace wic
