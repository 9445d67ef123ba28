#include "tools/zanthe/Waveform.h"

#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

#include "tests/tools/ScriptedSound.h"
#include "zanthe/core/Bitmap.h"

using Program::Canvas;
using Program::DrawWaveform;
using Program::MeasureWaveform;
using Program::Swing;

namespace {

constexpr int Rate = 1000;
constexpr std::int64_t Second = 10'000'000;

// Silent but for the frames that the test sets.
struct SilentSound : ScriptedSound {
    explicit SilentSound(std::int64_t frames)
        : ScriptedSound(frames) {
        for (auto& plane : planes) {
            std::fill(plane.begin(), plane.end(), 0.0F);
        }
    }
};

} // namespace

TEST(MeasureWaveform, EachColumnHasTheSwingOfItsShare) {
    SilentSound sound(1000);
    sound.planes[0][0] = 0.5F;
    sound.planes[1][99] = -0.25F;
    sound.planes[1][550] = 0.75F;
    const auto swings = MeasureWaveform(sound, Rate, Second, 10);
    ASSERT_EQ(swings.size(), 10U);
    EXPECT_EQ(swings[0].high, 0.5F);
    EXPECT_EQ(swings[0].low, -0.25F);
    EXPECT_EQ(swings[5].high, 0.75F);
    EXPECT_EQ(swings[5].low, 0.0F);
    EXPECT_EQ(swings[6].high, 0.0F);
}

TEST(MeasureWaveform, FullScaleIsAllThereIs) {
    SilentSound sound(1000);
    sound.planes[0][5] = 7.0F;
    sound.planes[0][6] = -std::numeric_limits<float>::infinity();
    sound.planes[0][7] = std::numeric_limits<float>::quiet_NaN();
    const auto swings = MeasureWaveform(sound, Rate, Second, 1);
    EXPECT_EQ(swings[0].high, 1.0F);
    EXPECT_EQ(swings[0].low, -1.0F);
}

TEST(MeasureWaveform, BehindItsEndThereIsSilence) {
    SilentSound sound(500);
    sound.planes[0][499] = 0.5F;
    const auto swings = MeasureWaveform(sound, Rate, Second, 10);
    ASSERT_EQ(swings.size(), 10U);
    EXPECT_EQ(swings[4].high, 0.5F);
    EXPECT_EQ(swings[9].high, 0.0F);
}

TEST(MeasureWaveform, WithoutSoundThereIsNothing) {
    ScriptedSound sound(0);
    EXPECT_TRUE(MeasureWaveform(sound, Rate, Second, 10).empty());
}

TEST(MeasureWaveform, OfALongShareASecondIsRead) {
    SilentSound sound(100'000);
    MeasureWaveform(sound, Rate, 100 * Second, 10);
    ASSERT_EQ(sound.reads.size(), 10U);
    EXPECT_EQ(sound.reads[0], (ScriptedSound::Read{4500, 1000}));
    EXPECT_EQ(sound.reads[9], (ScriptedSound::Read{94'500, 1000}));
}

TEST(MeasureWaveform, CanBeStopped) {
    SilentSound sound(1000);
    const auto stop = [](int column) {
        if (column == 3) {
            throw 3;
        }
    };
    EXPECT_THROW(MeasureWaveform(sound, Rate, Second, 10, stop), int);
    EXPECT_EQ(sound.reads.size(), 3U);
}

TEST(DrawWaveform, FullScaleFillsTheHeightAndSilenceIsALine) {
    Canvas canvas({4, 10}, {0, 0, 0});
    DrawWaveform(canvas, {1, 0, 2, 10}, {{-1, 1}, {0, 0}, {-1, 1}}, {1, 1, 1});
    const auto drawn = canvas.ToBitmap();
    const auto blueAt = [&](std::ptrdiff_t x, std::ptrdiff_t y) {
        return drawn->GetBits()[(y * 4 + x) * 4];
    };
    for (int y = 0; y < 10; ++y) {
        EXPECT_EQ(blueAt(0, y), 0);
        EXPECT_EQ(blueAt(1, y), 255) << y;
        EXPECT_EQ(blueAt(2, y), y == 5 ? 255 : 0) << y;
        EXPECT_EQ(blueAt(3, y), 0); // outside of the area
    }
}
