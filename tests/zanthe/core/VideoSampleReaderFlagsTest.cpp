#include "zanthe/core/VideoSampleReaderFlags.h"

#include <gtest/gtest.h>

#include "zanthe/core/VideoSampleFormat.h"

using Flags = Zanthe::VideoSampleReaderFlags;

namespace {

TEST(VideoSampleReaderFlags, QuickAnswerIsBitZero) {
    EXPECT_EQ(static_cast<unsigned int>(Flags::None), 0u);
    EXPECT_EQ(static_cast<unsigned int>(Flags::QuickAnswer), 1u);
}

TEST(VideoSampleReaderFlags, CombineAsBits) {
    const auto other = static_cast<Flags>(4);
    EXPECT_EQ(static_cast<unsigned int>(Flags::QuickAnswer | other), 5u);
    EXPECT_EQ((Flags::QuickAnswer | other) & other, other);
    EXPECT_EQ(static_cast<unsigned int>(~Flags::QuickAnswer), ~1u);
    Flags flags = Flags::None;
    flags |= Flags::QuickAnswer;
    EXPECT_EQ(flags, Flags::QuickAnswer);
    flags &= ~Flags::QuickAnswer;
    EXPECT_EQ(flags, Flags::None);
}

TEST(VideoSampleReaderFlags, AreAskedForTogether) {
    const auto other = static_cast<Flags>(4);
    EXPECT_TRUE(HasFlags(Flags::QuickAnswer | other, Flags::QuickAnswer));
    EXPECT_FALSE(HasFlags(other, Flags::QuickAnswer));
    EXPECT_FALSE(HasFlags(other, Flags::QuickAnswer | other));
}

TEST(VideoSampleFormat, HasItsSettledValues) {
    EXPECT_EQ(static_cast<unsigned int>(Zanthe::VideoSampleFormat::SystemMemory), 0u);
    EXPECT_EQ(static_cast<unsigned int>(Zanthe::VideoSampleFormat::GraphicsDevice), 2u);
}

} // namespace
