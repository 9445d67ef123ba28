#include "zanthe/audio/ffmpeg/Buffer.h"

#include <limits>
#include <new>
#include <type_traits>

#include <gtest/gtest.h>

namespace FFMPEGDecoder {
namespace {

// A buffer of one or more planes, plane p holding 100*p + 0, 1, 2, ...
Buffer Counting(int channels, std::int64_t frames, std::int64_t start) {
    Buffer buffer(channels, frames);
    buffer.start = start;
    for (int c = 0; c < channels; ++c) {
        float* data = buffer.channels()[static_cast<std::size_t>(c)].data();
        for (std::int64_t i = 0; i < frames; ++i) {
            data[i] = static_cast<float>(100 * c + i);
        }
    }
    return buffer;
}

TEST(Buffer, OwnPlanesAreZeroAndStartAtZero) {
    const Buffer buffer(2, 3);
    ASSERT_EQ(buffer.channels().size(), 2U);
    EXPECT_EQ(buffer.frames(), 3);
    EXPECT_EQ(buffer.start, 0);
    for (const Channel& plane : buffer.channels()) {
        EXPECT_TRUE(plane.owned());
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(plane.data()[i], 0.0F);
        }
    }
}

// Two frees of one plane, or none, are the address sanitizer's to find.
TEST(Buffer, ViewsAreNotOwned) {
    float samples[4] = {1, 2, 3, 4};
    {
        const Buffer view({samples}, 4);
        EXPECT_FALSE(view.channels()[0].owned());
    }
    EXPECT_EQ(samples[3], 4.0F);
}

TEST(Channel, MovesAndIsNotCopied) {
    static_assert(!std::is_copy_constructible_v<Channel>);
    static_assert(std::is_move_constructible_v<Channel>);
    Channel plane(3);
    const float* data = plane.data();
    const Channel moved(std::move(plane));
    EXPECT_EQ(moved.data(), data);
    EXPECT_TRUE(moved.owned());
}

TEST(Buffer, SizeWithoutRoomIsTheAllocatorsFailure) {
    EXPECT_THROW(Buffer(1, std::numeric_limits<std::int64_t>::max()), std::bad_alloc);
    EXPECT_THROW(Buffer(1, -1), std::bad_alloc);
}

TEST(Buffer, WithoutChannelsIsEmptyAndSlicesToNothing) {
    const Buffer none(0, 5);
    EXPECT_EQ(none.frames(), 0);
    EXPECT_TRUE(none.slice(0, 5).channels().empty());
}

TEST(Buffer, SliceViewsItsOwnPositions) {
    const Buffer whole = Counting(2, 10, 1000);
    const Buffer part = whole.slice(1003, 4);
    EXPECT_EQ(part.start, 1003);
    EXPECT_EQ(part.frames(), 4);
    EXPECT_EQ(part.channels()[0].data(), whole.channels()[0].data() + 3);
    EXPECT_EQ(part.channels()[1].data()[0], 103.0F);
    EXPECT_FALSE(part.channels()[0].owned());
}

TEST(Buffer, SliceIsCutToTheBuffer) {
    const Buffer whole = Counting(1, 10, 1000);
    const Buffer part = whole.slice(995, 8);
    EXPECT_EQ(part.start, 1000);
    EXPECT_EQ(part.frames(), 3);
    EXPECT_EQ(whole.slice(1008, std::numeric_limits<std::int64_t>::max()).frames(), 2);
}

TEST(Buffer, SliceOutsideGivesNoFramesAtStartZero) {
    const Buffer whole = Counting(2, 10, 1000);
    const Buffer part = whole.slice(2000, 5);
    ASSERT_EQ(part.channels().size(), 2U);
    EXPECT_EQ(part.channels()[0].frames(), 0);
    EXPECT_EQ(part.channels()[1].frames(), 0);
    EXPECT_EQ(part.start, 0);
}

TEST(Buffer, CopyFromTakesTheOverlap) {
    Buffer target(2, 10);
    target.start = 100;
    target.copyFrom(Counting(2, 5, 98));
    const float* left = target.channels()[0].data();
    EXPECT_EQ(left[0], 2.0F);
    EXPECT_EQ(left[2], 4.0F);
    EXPECT_EQ(left[3], 0.0F);
    EXPECT_EQ(target.channels()[1].data()[1], 103.0F);
}

TEST(Buffer, CopyFromBehindLeavesTheTargetAlone) {
    Buffer target(1, 3);
    target.copyFrom(Counting(1, 5, 3));
    EXPECT_EQ(target.channels()[0].data()[2], 0.0F);
}

TEST(Buffer, CopyFromNeedsEqualChannelCounts) {
    Buffer two(2, 4);
    two.copyFrom(Counting(1, 4, 0));
    EXPECT_EQ(two.channels()[0].data()[3], 0.0F);
    Buffer one(1, 4);
    one.copyFrom(Counting(2, 4, 0));
    EXPECT_EQ(one.channels()[0].data()[3], 0.0F);
}

TEST(Buffer, ZeroSilencesOnlyTheSpan) {
    Buffer buffer = Counting(1, 5, 10);
    buffer.zero({8, 4});
    const float* data = buffer.channels()[0].data();
    EXPECT_EQ(data[1], 0.0F);
    EXPECT_EQ(data[2], 2.0F);
}

} // namespace
} // namespace FFMPEGDecoder
