#include "platform/av/PictureCache.h"

#include <gtest/gtest.h>

namespace av {
namespace {

PicturePtr MakePicture(std::int64_t start, std::int64_t end) {
    FramePtr frame(av_frame_alloc());
    frame->format = AV_PIX_FMT_GRAY8;
    frame->width = 64;
    frame->height = 64;
    EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    return std::make_shared<Picture>(std::move(frame), start, end);
}

std::size_t OneSize() {
    return SizeInMemory(*MakePicture(0, 1));
}

TEST(PictureCache, FindsWhatCoversTheTime) {
    PictureCache cache(10 * OneSize());
    const PicturePtr picture = MakePicture(10, 20);
    cache.Keep(1, picture);
    EXPECT_EQ(cache.Find(1, 9), nullptr);
    EXPECT_EQ(cache.Find(1, 10), picture);
    EXPECT_EQ(cache.Find(1, 19), picture);
    EXPECT_EQ(cache.Find(1, 20), nullptr);
    EXPECT_EQ(cache.Find(2, 15), nullptr);
    EXPECT_EQ(cache.Find(0, 15), nullptr);
}

TEST(PictureCache, WhatWasUsedLongestAgoGoes) {
    PictureCache cache(2 * OneSize());
    cache.Keep(1, MakePicture(0, 1));
    cache.Keep(2, MakePicture(0, 1));
    EXPECT_NE(cache.Find(1, 0), nullptr);
    cache.Keep(1, MakePicture(1, 2));
    EXPECT_NE(cache.Find(1, 0), nullptr);
    EXPECT_NE(cache.Find(1, 1), nullptr);
    EXPECT_EQ(cache.Find(2, 0), nullptr);
}

TEST(PictureCache, OfTwoWithOneStartTheLaterIsKept) {
    PictureCache cache(2 * OneSize());
    const PicturePtr later = MakePicture(0, 5);
    cache.Keep(1, MakePicture(0, 9));
    cache.Keep(1, later);
    cache.Keep(1, MakePicture(5, 9));
    EXPECT_EQ(cache.Find(1, 0), later);
}

TEST(PictureCache, ForgetsAnOwnersPictures) {
    PictureCache cache(10 * OneSize());
    cache.Keep(1, MakePicture(-5, 0));
    cache.Keep(1, MakePicture(0, 1));
    cache.Keep(2, MakePicture(0, 1));
    cache.Drop(1, 0);
    EXPECT_EQ(cache.Find(1, 0), nullptr);
    EXPECT_NE(cache.Find(1, -5), nullptr);
    cache.Forget(1);
    EXPECT_EQ(cache.Find(1, -5), nullptr);
    EXPECT_NE(cache.Find(2, 0), nullptr);
}

TEST(PictureCache, ASmallerBudgetHoldsAtOnce) {
    PictureCache cache(10 * OneSize());
    cache.Keep(1, MakePicture(0, 1));
    cache.Keep(1, MakePicture(1, 2));
    cache.SetBudget(OneSize());
    EXPECT_EQ(cache.Find(1, 0), nullptr);
    EXPECT_NE(cache.Find(1, 1), nullptr);
    cache.SetBudget(0);
    cache.Keep(1, MakePicture(2, 3));
    EXPECT_EQ(cache.Find(1, 2), nullptr);
}

} // namespace
} // namespace av
