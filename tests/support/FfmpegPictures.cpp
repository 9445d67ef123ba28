#include "tests/support/FfmpegPictures.h"

#include <cstdio>
#include <memory>
#include <stdexcept>

std::string OutputOf(const std::string& command) {
    struct Close {
        void operator()(std::FILE* pipe) const { pclose(pipe); }
    };

    const std::unique_ptr<std::FILE, Close> pipe(popen(command.c_str(), "r"));
    if (pipe == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    std::string output;
    std::vector<char> piece(1 << 16);
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe.get())) {
        output.append(piece.data(), count);
    }
    return output;
}

std::vector<BgraPicture> FfmpegPictures(const std::string& path, int width, int height,
                                        const std::string& stream) {
    const std::string bytes =
        OutputOf("ffmpeg -nostdin -v error -i '" + path + "' -map " + stream +
                 " -vsync 0 -sws_flags accurate_rnd+full_chroma_int+full_chroma_inp+neighbor "
                 "-f rawvideo -pix_fmt bgra -");
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    std::vector<BgraPicture> pictures;
    for (std::size_t at = 0; at + size <= bytes.size(); at += size) {
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        pictures.push_back({width, height, {first, first + static_cast<std::ptrdiff_t>(size)}});
    }
    return pictures;
}
