// Any bytes as an AVI file: the walk over its chunks, the index of each of its streams, and frames
// read through them. Memory and reads must stay in proportion to the file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "tests/support/MemoryStream.h"
#include "zanthe/containers/avi20/Reader.h"

namespace {

using AVI20::Read::MediaStreamReader;
using AVI20::Read::Reader;

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void ReadFrames(const MediaStreamReader& stream) {
    const std::uint32_t count = stream.GetFrameCount();
    std::uint64_t total = 0;
    for (std::uint32_t frame = 0; frame < count; ++frame) {
        total += stream.GetFrameSize(frame);
        Require(stream.FindKeyFrame(frame) <= frame);
    }
    Require(total == stream.GetTotalBytes());
    for (std::uint32_t frame = 0; frame <= std::min(count, 16U); ++frame) {
        stream.ReadFrameToNewBuffer(frame);
    }
    std::vector<unsigned char> bytes(4096);
    Require(stream.ReadBytes(total / 2, 4096, bytes.data()) <= 4096);
    Require(stream.ReadBytes(total, 4096, bytes.data()) == 0);
    static_cast<void>(stream.GetDurationSeconds());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MemoryStream stream(std::string(reinterpret_cast<const char*>(data), size));
    try {
        Reader reader(&stream);
        Require(stream.reads <= 16 * (size + 16));
        for (std::size_t i = 0; i < reader.GetStreamCount(); ++i) {
            const std::uint64_t before = stream.bytesRead;
            try {
                const MediaStreamReader media = reader.GetMediaStreamReader(i);
                // Each index is read once; a partial entry at the end of a piece comes on top.
                Require(stream.bytesRead - before <= 4 * size + 64);
                Require(media.GetFrameCount() <= size / 8 + 1);
                ReadFrames(media);
            } catch (const std::exception&) {
                // No index that can be read.
            }
        }
    } catch (const std::exception&) {
        // The one way in which a walk may fail.
    }
    return 0;
}
