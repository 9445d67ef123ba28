#include "tests/support/ExactReads.h"

#include <random>

#include <gtest/gtest.h>

void ExpectRandomReadsEqual(Zanthe::IAudioReader& reader, const StereoSound& whole, int reads) {
    std::mt19937 random(ExactReadsSeed);
    for (int i = 0; i < reads; ++i) {
        const std::size_t start = random() % (whole.Frames() + 500);
        const unsigned int frames = 1 + random() % (i % 3 == 0 ? 40000 : 3000);
        ASSERT_TRUE(ReadSpan(reader, static_cast<std::int64_t>(start), frames) ==
                    whole.Slice(start, frames))
            << "span " << start << " + " << frames << ", seed " << ExactReadsSeed;
    }
}

void ExpectOddChunksMakeTheWhole(Zanthe::IAudioReader& reader, const StereoSound& whole) {
    constexpr unsigned int kChunk = 9973;
    StereoSound joined;
    while (true) {
        const StereoSound chunk =
            ReadSpan(reader, static_cast<std::int64_t>(joined.Frames()), kChunk);
        joined.Append(chunk);
        if (chunk.Frames() < kChunk) {
            break;
        }
    }
    ASSERT_TRUE(joined == whole);
}
