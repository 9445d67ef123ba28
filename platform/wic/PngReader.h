// PNG pictures out of a stream of bytes, on libpng.
//
//     PngReader reader(stream);
//     if (const auto header = reader.ReadHeader())
//         reader.ReadPixels(*header, pixels);
#pragma once

#include <cstdint>
#include <optional>

#include "platform/com/ComPtr.h"
#include "platform/com/Stream.h"

namespace wic {

struct PngHeader {
    int width = 0;         // pixels, at least 1
    int height = 0;        // pixels, at least 1
    bool indexed = false;  // its pixels are numbers of colours
    bool hasAlpha = false; // a channel of its own, or a colour that is transparent

    std::size_t Pixels() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

// Thread-safety: none; it moves the stream's position.
class PngReader {
public:
    // The picture begins where the stream stands now. What follows its end is never looked at. The
    // stream is kept. REQUIRES: stream.
    explicit PngReader(IStream* stream);

    // Nothing where it is no PNG picture, and where it has more than 2^27 pixels, as none that is
    // meant to be shown.
    std::optional<PngHeader> ReadHeader();

    // Writes the whole picture as blue, green, red and alpha, 8 bits each, not premultiplied, the
    // values as they are stored whatever the picture says of its gamma: 4 bytes a pixel, the top
    // row first, without padding. False, with what was written undefined, where a part is missing
    // or damaged, or memory is short. May be asked again. REQUIRES: header is what ReadHeader gave.
    bool ReadPixels(const PngHeader& header, std::uint8_t* pixels);

private:
    bool GoToStart();

    com::ComPtr<IStream> m_stream;
    std::uint64_t m_start = 0;
};

} // namespace wic
