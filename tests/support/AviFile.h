#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32/BitmapInfo.h"
#include "platform/win32/WaveFormat.h"
#include "tests/support/RiffFile.h"
#include "zanthe/containers/avi20/AviHeaders.h"

// The parts of AVI files.
namespace Avi {

template <typename T>
std::string BytesOf(const T& value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string MainHeader(std::uint32_t streams);

// A "strh" chunk. The rate is rate / scale frames a second.
std::string StreamHeader(std::string_view type, std::uint32_t handler, std::uint32_t length,
                         std::uint32_t rate = 10, std::uint32_t scale = 1);

// A "strf" chunk of pictures.
std::string VideoFormat(int width, int height, int bits, std::uint32_t compression);

// A "strf" chunk of sound, with these bytes behind it.
std::string AudioFormat(const WAVEFORMATEX& format, const std::string& extra = "");

struct Frame {
    std::string bytes;
    bool keyFrame = true;
};

struct VideoStream {
    std::uint32_t handler = 0;
    std::uint32_t compression = 0;
    int width = 0;
    int height = 0;
    int bits = 24;
    std::uint32_t rate = 10;
    std::uint32_t scale = 1;
};

enum class IndexKind { Old, OpenDml };

// A file of one stream of pictures. The OpenDML index has a standard index for every ten frames,
// the second half of the frames stands in an "AVIX" list, and junk stands wherever it may.
std::string OneVideo(const VideoStream& stream, const std::vector<Frame>& frames, IndexKind kind);

// A file of a stream of sound, of 16-bit samples at 8000 Hz, and behind it one of pictures, each
// with an OpenDML index of its own, as above.
std::string SoundAndVideo(const std::vector<Frame>& sound, const VideoStream& stream,
                          const std::vector<Frame>& frames);

} // namespace Avi
