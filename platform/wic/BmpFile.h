// BMP files, read by the layer itself: libvips knows them only through a library that is not made
// for hostile files.
#pragma once

#include <array>
#include <memory>

#include "platform/wic/InputFile.h"
#include "platform/wic/PixelRows.h"
#include "platform/wic/Rendering.h"

namespace wic {

// What the headers say, checked.
struct BmpHeader {
    int width = 0;  // pixels, at least 1
    int height = 0; // pixels, at least 1
    bool topDown = false;
    int bits = 0; // of a pixel: 1, 2, 4, 8, 16, 24, 32
    enum class Coding { Plain, Rle4, Rle8 } coding = Coding::Plain;

    static constexpr std::array<std::uint32_t, 4> BytesAsMasks = {0xFF0000, 0x00FF00, 0x0000FF, 0};
    // Red, green, blue, alpha, of 16 bits and more.
    std::array<std::uint32_t, 4> masks = BytesAsMasks;

    std::array<WICColor, 256> palette{}; // 0xAARRGGBB, of 8 bits and less; black where it ends
    std::int64_t pixelOffset = 0;        // in the file
    double dpiX = 96.0;
    double dpiY = 96.0;
};

// Known are the headers of 12 bytes and of 40 to 124, palettes, 16 and 32 bits with masks of
// neighbouring bits, runs of 4 and 8 bits. Alpha counts where the header has a mask for it.
//
// Thread-safety: none.
class BmpFile {
public:
    // Null, with why in `result`, as VipsFile::Open.
    static std::shared_ptr<BmpFile> Open(std::shared_ptr<const InputFile> file, HRESULT& result);

    PictureShape Shape() const;

    // Rows that the file ends before make it WINCODEC_ERR_BADIMAGE; pixels that a run steps over
    // are black.
    HRESULT Render(const Rendering& rendering) const;

private:
    BmpFile(std::shared_ptr<const InputFile> file, const BmpHeader& header);

    bool HasAlphaMask() const;
    HRESULT DecodePlain(RowWriter& writer) const;
    HRESULT DecodeRuns(RowWriter& writer) const;
    HRESULT RenderScaled(const Rendering& rendering) const;

    std::shared_ptr<const InputFile> m_file;
    BmpHeader m_header;
};

} // namespace wic
