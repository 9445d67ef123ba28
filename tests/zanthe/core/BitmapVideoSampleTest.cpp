#include "zanthe/core/BitmapVideoSample.h"

#include <limits>

#include <gtest/gtest.h>

using Zanthe::Bitmap;
using Zanthe::BitmapVideoSample;

namespace {

TEST(BitmapVideoSample, ShowsTheBitmap) {
    const auto bitmap = std::make_shared<Bitmap>(3, 2, false);
    BitmapVideoSample sample(bitmap);
    EXPECT_EQ(sample.width(), 3);
    EXPECT_EQ(sample.height(), 2);
    EXPECT_EQ(sample.bufferWidth(), 3);
    EXPECT_EQ(sample.bufferHeight(), 2);
    EXPECT_EQ(sample.bytesPerRow(), 12);
    EXPECT_EQ(sample.dataSize(), 24);
    EXPECT_EQ(sample.data(), bitmap->GetBits());
    EXPECT_FALSE(sample.isFlipped());
    EXPECT_EQ(sample.videoSampleFormat(), Zanthe::VideoSampleFormat::SystemMemory);
    EXPECT_EQ(sample.colorSpace(), nullptr);
}

TEST(BitmapVideoSample, LockingAndCountingChangeNothing) {
    const auto bitmap = std::make_shared<Bitmap>(3, 2, false);
    BitmapVideoSample sample(bitmap);
    sample.decrementRefCount();
    sample.decrementRefCount();
    sample.lockData();
    EXPECT_EQ(sample.data(), bitmap->GetBits());
    sample.unlockData();
    EXPECT_EQ(sample.data(), bitmap->GetBits());
    EXPECT_EQ(bitmap.use_count(), 2);
}

TEST(BitmapVideoSample, KeepsItsBitmapAlive) {
    auto bitmap = std::make_shared<Bitmap>(1, 1, false);
    const std::weak_ptr<Bitmap> watched = bitmap;
    {
        const std::unique_ptr<Zanthe::VideoSample> sample =
            std::make_unique<BitmapVideoSample>(std::move(bitmap));
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(BitmapVideoSample, OfABitmapWithoutBits) {
    BitmapVideoSample sample(std::make_shared<Bitmap>(3, 2, false, nullptr));
    EXPECT_EQ(sample.data(), nullptr);
    EXPECT_EQ(sample.bytesPerRow(), 12); // by the width, though nothing was allocated
    EXPECT_EQ(sample.dataSize(), 24);
}

TEST(BitmapVideoSample, ASizeThatAnIntCannotTellIsZero) {
    constexpr int maxInt = std::numeric_limits<int>::max();
    BitmapVideoSample tall(std::make_shared<Bitmap>(1024, maxInt, false, nullptr));
    EXPECT_EQ(tall.dataSize(), 0);
    BitmapVideoSample wide(std::make_shared<Bitmap>(maxInt, 1, false, nullptr));
    EXPECT_EQ(wide.dataSize(), 0);
}

} // namespace
