// One way to get at a film's pictures. The contenders of the video benches number the pictures from
// 0 and hand over their pixels with 32 or 24 bits each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Blue first; belongs to the contender, until it shows something else.
struct ShownPicture {
    const std::uint8_t* pixels = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
    int bytesPerPixel = 4;
};

// Thread-safety: none.
class VideoContender {
public:
    VideoContender() = default;
    VideoContender(const VideoContender&) = delete;
    VideoContender& operator=(const VideoContender&) = delete;
    virtual ~VideoContender() = default;

    // Throws std::runtime_error when there is no such picture.
    virtual ShownPicture Show(int number) = 0;
};

struct VideoFile {
    std::string path;
    int pictures = 0;
    int rate = 30; // a second
};

struct NamedContender {
    std::string name;
    std::function<std::unique_ptr<VideoContender>(const VideoFile&)> open;
};

// All that this machine has, the floor first:
//   ffmpeg         FFmpeg used by hand
//   ffmpeg-skip    the same, with pictures that no other needs left out on the way
//   zanthe         this library
//   ffms2, opencv  where they are installed
std::vector<NamedContender> AllContenders();
