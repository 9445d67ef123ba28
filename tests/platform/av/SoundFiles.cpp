#include "tests/platform/av/SoundFiles.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/samplefmt.h>
}

namespace {

void AppendSilence(Frames& frames, int count, AVSampleFormat sample) {
    const bool isUnsigned = av_get_packed_sample_fmt(sample) == AV_SAMPLE_FMT_U8;
    frames.bytes.insert(frames.bytes.end(), static_cast<std::size_t>(count) * frames.frameBytes,
                        isUnsigned ? 0x80 : 0);
}

void AppendFrame(Frames& frames, const av::SoundPiece& piece, int count) {
    const AVFrame& frame = *piece.frame;
    const auto sample = static_cast<AVSampleFormat>(frame.format);
    const auto size = static_cast<std::size_t>(av_get_bytes_per_sample(sample));
    const auto channels = static_cast<std::size_t>(frame.ch_layout.nb_channels);
    const bool planar = av_sample_fmt_is_planar(sample) != 0;
    const auto offset = static_cast<std::size_t>(piece.offset);
    for (std::size_t i = offset; i < offset + static_cast<std::size_t>(count); ++i) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const std::uint8_t* from =
                planar ? frame.extended_data[channel] + i * size
                       : frame.extended_data[0] + (i * channels + channel) * size;
            frames.bytes.insert(frames.bytes.end(), from, from + size);
        }
    }
}

} // namespace

Frames Frames::Slice(std::size_t from, std::size_t count) const {
    const std::size_t begin = std::min(from, Count());
    const std::size_t end = begin + std::min(count, Count() - begin);
    return {{bytes.begin() + static_cast<std::ptrdiff_t>(begin * frameBytes),
             bytes.begin() + static_cast<std::ptrdiff_t>(end * frameBytes)},
            frameBytes};
}

Frames ReadFrames(av::SoundStream& stream, std::int64_t from, std::int64_t count) {
    const av::SoundFormat& format = stream.Facts().format;
    Frames frames{
        {}, static_cast<std::size_t>(av_get_bytes_per_sample(format.sample) * format.channels)};
    stream.Seek(from);
    av::SoundPiece piece;
    while (count > 0) {
        const av::SoundRead read = stream.Read(piece);
        EXPECT_NE(read, av::SoundRead::Failed);
        if (read != av::SoundRead::Piece) {
            break;
        }
        EXPECT_EQ(piece.start, from + static_cast<std::int64_t>(frames.Count()));
        const auto taken = static_cast<int>(std::min<std::int64_t>(piece.frames, count));
        if (piece.frame == nullptr) {
            AppendSilence(frames, taken, format.sample);
        } else {
            AppendFrame(frames, piece, taken);
        }
        count -= taken;
    }
    return frames;
}

Frames ReadFrames(av::ConvertedSound& sound, std::int64_t from, std::int64_t count) {
    Frames frames{{}, static_cast<std::size_t>(sound.FrameBytes())};
    sound.Seek(from);
    av::SoundChunk chunk;
    while (count > 0) {
        const av::SoundRead read = sound.Read(chunk);
        EXPECT_NE(read, av::SoundRead::Failed);
        if (read != av::SoundRead::Piece) {
            break;
        }
        EXPECT_EQ(chunk.start, from + static_cast<std::int64_t>(frames.Count()));
        const std::int64_t taken = std::min(chunk.frames, count);
        frames.bytes.insert(frames.bytes.end(), chunk.bytes,
                            chunk.bytes + taken * sound.FrameBytes());
        count -= taken;
    }
    return frames;
}

std::vector<std::uint8_t> RunProgram(const std::string& arguments) {
    const std::string command = "ffmpeg -nostdin -v error " + arguments;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) {
        throw std::runtime_error("cannot run ffmpeg");
    }
    std::vector<std::uint8_t> bytes;
    std::uint8_t buffer[65536];
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe.get())) {
        bytes.insert(bytes.end(), buffer, buffer + count);
    }
    return bytes;
}

Frames DecodeWithProgram(const std::string& path, AVSampleFormat sample, const std::string& options,
                         const std::string& outputOptions) {
    constexpr const char* kNames[] = {"u8", "s16le", "s32le", "f32le", "f64le"};
    return {RunProgram(options + " -i '" + path + "' -map 0:a:0 " + outputOptions + " -f " +
                       kNames[av_get_packed_sample_fmt(sample)] + " -"),
            1};
}

float LargestDifference(const Frames& a, const Frames& b) {
    EXPECT_EQ(a.bytes.size(), b.bytes.size());
    float largest = 0;
    for (std::size_t i = 0; i + sizeof(float) <= std::min(a.bytes.size(), b.bytes.size());
         i += sizeof(float)) {
        float left = 0;
        float right = 0;
        std::memcpy(&left, a.bytes.data() + i, sizeof left);
        std::memcpy(&right, b.bytes.data() + i, sizeof right);
        largest = std::max(largest, std::abs(left - right));
    }
    return largest;
}
