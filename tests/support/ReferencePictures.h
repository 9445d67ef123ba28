// The pictures of a file's first video stream as the ffmpeg program shows them, read from start to
// end in one run.
//
//     const ReferencePictures reference(path);
//     reference.Time(7);      // when picture 7 is shown, in seconds from picture 0
//     reference.Pixels(7);    // what is shown then
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/BgraPicture.h"
#include "tests/support/TemporaryFolder.h"
#include "zanthe/core/MediaTime.h"

// Thread-safety: none.
class ReferencePictures {
public:
    // No more than `most` pictures are read. Throws std::runtime_error when the program cannot be
    // run; a file that it shows nothing of has no pictures.
    explicit ReferencePictures(const std::string& path, std::size_t most = 2000);

    std::size_t Count() const { return m_pictures.size(); }

    // False when a picture has no time, as in elementary streams.
    bool HasTimes() const;

    // False for a pixel format that Pixels cannot convert.
    bool HasPixels() const;

    // Whether pictures were left out because of `most`.
    bool Shortened() const { return m_shortened; }

    Zanthe::MediaTime Time(std::size_t index) const;

    int Width(std::size_t index) const { return m_pictures.at(index).width; }

    int Height(std::size_t index) const { return m_pictures.at(index).height; }

    // Converted here, by the formulas of the standards in floating point: matrix and range are the
    // picture's own, BT.601 up to 720 rows and BT.709 above and video range where it is silent;
    // each difference of colour stands for all the pixels it was sampled for.
    // Valid until pictures of some hundred megabytes have been asked for behind it.
    const BgraPicture& Pixels(std::size_t index) const;

private:
    struct Entry {
        bool timed = false;
        Zanthe::MediaTime time;
        int width = 0;
        int height = 0;
        std::string format; // FFmpeg's name
        std::string range;
        std::string matrix;
        std::size_t offset = 0; // in the file of pixels
    };

    void ReadReport(const std::string& report);
    void ReadPicture(const std::string& line, Zanthe::MediaTime unit);
    void DropWhatHasNoPixels();
    BgraPicture Convert(const Entry& entry) const;
    std::vector<std::uint8_t> RawPicture(const Entry& entry) const;

    TemporaryFolder m_folder;
    std::string m_pixels; // path of the file of pixels
    std::vector<Entry> m_pictures;
    bool m_shortened = false;
    mutable std::map<std::size_t, BgraPicture> m_converted;
    mutable std::size_t m_convertedBytes = 0;
};
