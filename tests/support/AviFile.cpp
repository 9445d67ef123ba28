#include "tests/support/AviFile.h"

#include <algorithm>

namespace Avi {

namespace {

using namespace Riff;

constexpr std::size_t FramesOfAnIndex = 10;

std::string Junk(std::size_t size) {
    return Chunk("JUNK", std::string(size, 'J'));
}

// Media data under construction: chunks, and where each frame's chunk begins within them.
struct MediaData {
    std::string bytes;
    std::vector<std::size_t> places;

    void Append(const Frame& frame) {
        places.push_back(bytes.size());
        bytes += Chunk("00dc", frame.bytes);
    }
};

std::string StreamList(const VideoStream& stream, std::size_t frameCount,
                       const std::string& index) {
    return List("strl",
                StreamHeader("vids", stream.handler, static_cast<std::uint32_t>(frameCount),
                             stream.rate, stream.scale) +
                    Junk(3) +
                    VideoFormat(stream.width, stream.height, stream.bits, stream.compression) +
                    Chunk("strn", "name") + index);
}

std::string HeaderList(const std::string& streams) {
    return List("hdrl", Junk(5) + MainHeader(1) + streams + Junk(1));
}

std::string File(const std::string& header, const std::string& media, const std::string& behind) {
    return List("RIFF", "AVI ", header + Junk(7) + List("movi", media) + behind);
}

std::string WithOldIndex(const VideoStream& stream, const std::vector<Frame>& frames) {
    MediaData media;
    std::string entries;
    for (const Frame& frame : frames) {
        media.bytes += Junk(2);
        media.Append(frame);
        entries += "00dc" + Number32(frame.keyFrame ? 0x10 : 0) +
                   Number32(media.places.back() + 4) + Number32(frame.bytes.size());
    }
    return File(HeaderList(StreamList(stream, frames.size(), "")), media.bytes,
                Junk(9) + Chunk("idx1", entries));
}

// Frames [first, last) as media data, each standard index behind its frames. `base` is where the
// data will lie in the file; what the super index says of each standard index goes to `super`.
std::string MediaWithIndexes(const std::vector<Frame>& frames, std::size_t first, std::size_t last,
                             std::uint64_t base, std::string& super) {
    MediaData media;
    for (std::size_t from = first; from < last; from += FramesOfAnIndex) {
        const std::size_t to = std::min(from + FramesOfAnIndex, last);
        std::string entries;
        const std::size_t indexBase = media.bytes.size();
        for (std::size_t i = from; i < to; ++i) {
            media.Append(frames[i]);
            entries += Number32(media.places.back() + 8 - indexBase) +
                       Number32(frames[i].bytes.size() | (frames[i].keyFrame ? 0 : 0x80000000U));
        }
        const std::string index = Number16(2) + std::string("\0\1", 2) + Number32(to - from) +
                                  "00dc" + Number64(base + indexBase) + Number32(0) + entries;
        super +=
            Number64(base + media.bytes.size()) + Number32(index.size() + 8) + Number32(to - from);
        media.bytes += Chunk("ix00", index) + Junk(4);
    }
    return media.bytes;
}

std::string SuperIndex(const std::string& entries) {
    return Chunk("indx", Number16(4) + std::string(2, '\0') + Number32(entries.size() / 16) +
                             "00dc" + std::string(12, '\0') + entries);
}

std::string WithOpenDmlIndex(const VideoStream& stream, const std::vector<Frame>& frames) {
    const std::size_t half = frames.size() / 2;
    const std::size_t indexes = (half + FramesOfAnIndex - 1) / FramesOfAnIndex +
                                (frames.size() - half + FramesOfAnIndex - 1) / FramesOfAnIndex;
    // Places do not change the length of the headers, so a first round finds it.
    std::string super(indexes * 16, '\0');
    std::string first;
    std::string second;
    for (int round = 0; round < 2; ++round) {
        const std::string header = HeaderList(StreamList(stream, frames.size(), SuperIndex(super)));
        const std::uint64_t base = 12 + header.size() + Junk(7).size() + 12;
        super.clear();
        const std::string media = MediaWithIndexes(frames, 0, half, base, super);
        first = File(header, media, Junk(11));
        second = List(
            "RIFF", "AVIX",
            List("movi", MediaWithIndexes(frames, half, frames.size(), first.size() + 24, super)));
    }
    return first + second;
}

} // namespace

std::string MainHeader(std::uint32_t streams) {
    AVI20::Read::MainAVIHeader header{};
    header.dwMicroSecPerFrame = 100'000;
    header.dwStreams = streams;
    return Chunk("avih", BytesOf(header));
}

std::string StreamHeader(std::string_view type, std::uint32_t handler, std::uint32_t length,
                         std::uint32_t rate, std::uint32_t scale) {
    AVI20::Read::AVIStreamHeader header{};
    std::copy(type.begin(), type.end(), reinterpret_cast<char*>(&header.fccType));
    header.fccHandler = handler;
    header.dwScale = scale;
    header.dwRate = rate;
    header.dwLength = length;
    return Chunk("strh", BytesOf(header));
}

std::string VideoFormat(int width, int height, int bits, std::uint32_t compression) {
    BITMAPINFOHEADER format{};
    format.biSize = sizeof format;
    format.biWidth = width;
    format.biHeight = height;
    format.biPlanes = 1;
    format.biBitCount = static_cast<WORD>(bits);
    format.biCompression = compression;
    return Chunk("strf", BytesOf(format));
}

std::string AudioFormat(const WAVEFORMATEX& format, const std::string& extra) {
    return Chunk("strf", BytesOf(format) + extra);
}

std::string OneVideo(const VideoStream& stream, const std::vector<Frame>& frames, IndexKind kind) {
    return kind == IndexKind::Old ? WithOldIndex(stream, frames) : WithOpenDmlIndex(stream, frames);
}

} // namespace Avi
