#include "tools/zanthe/Sound.h"

#include <csignal>
#include <limits>

#include <gtest/gtest.h>

#include "tests/tools/ScriptedSound.h"
#include "tools/zanthe/Interrupt.h"

using Program::ReadSound;
using Program::SpanFrames;
using Read = ScriptedSound::Read;

namespace {

constexpr std::int64_t ToTheEnd = std::numeric_limits<std::int64_t>::max();

struct Taken {
    std::vector<float> left;
    std::vector<float> right;
    std::int64_t next = -1; // the frame that must come

    Program::TakeSpan Take() {
        return [this](std::int64_t first, const float* l, const float* r, unsigned int count) {
            if (next >= 0) {
                EXPECT_EQ(first, next);
            }
            next = first + count;
            left.insert(left.end(), l, l + count);
            right.insert(right.end(), r, r + count);
        };
    }
};

} // namespace

TEST(SpanFrames, IsSixSecondsWithinABound) {
    EXPECT_EQ(SpanFrames(1), 6U);
    EXPECT_EQ(SpanFrames(8000), 48000U);
    EXPECT_EQ(SpanFrames(44100), 1U << 18);
    EXPECT_EQ(SpanFrames(768000), 1U << 18);
}

TEST(ReadSound, HandsOverTheWholeSound) {
    ScriptedSound sound(2500);
    Taken taken;
    EXPECT_EQ(ReadSound(sound, 0, ToTheEnd, 1000, taken.Take()), 2500);
    EXPECT_EQ(taken.left, sound.planes[0]);
    EXPECT_EQ(taken.right, sound.planes[1]);
    EXPECT_EQ(sound.reads, (std::vector<Read>{{0, 1000}, {1000, 1000}, {2000, 1000}}));
}

TEST(ReadSound, HandsOverAPartAndAsksForNoMore) {
    ScriptedSound sound(2500);
    Taken taken;
    EXPECT_EQ(ReadSound(sound, 7, 1001, 1000, taken.Take()), 1001);
    EXPECT_EQ(taken.left,
              std::vector<float>(sound.planes[0].begin() + 7, sound.planes[0].begin() + 1008));
    EXPECT_EQ(sound.reads, (std::vector<Read>{{7, 1000}, {1007, 1}}));
}

TEST(ReadSound, EndsWithTheSound) {
    ScriptedSound sound(2000);
    Taken taken;
    EXPECT_EQ(ReadSound(sound, 1500, 5000, 500, taken.Take()), 500);
    EXPECT_EQ(sound.reads, (std::vector<Read>{{1500, 500}, {2000, 500}}));
}

TEST(ReadSound, NothingIsAskedForNothing) {
    ScriptedSound sound(2000);
    Taken taken;
    EXPECT_EQ(ReadSound(sound, 1500, 0, 500, taken.Take()), 0);
    EXPECT_TRUE(sound.reads.empty());
}

TEST(ReadSound, BehindTheEndNothingIsHandedOver) {
    ScriptedSound sound(2000);
    Taken taken;
    EXPECT_EQ(ReadSound(sound, 2000, 10, 500, taken.Take()), 0);
    EXPECT_EQ(taken.next, -1);
}

TEST(ReadSound, AnAnswerBeyondTheAskedIsCut) {
    ScriptedSound sound(100);
    sound.script = [&](std::size_t, const Read& read, std::vector<float*>& channels) {
        return sound.Honest(read, channels) + 1000;
    };
    Taken taken;
    EXPECT_EQ(ReadSound(sound, 0, 60, 50, taken.Take()), 60);
    EXPECT_EQ(taken.left.size(), 60U);
}

TEST(ReadSound, ASignalEndsItBetweenTwoSpans) {
    Program::CatchInterrupts();
    ScriptedSound sound(2500);
    sound.script = [&](std::size_t index, const Read& read, std::vector<float*>& channels) {
        if (index == 1) {
            std::raise(SIGTERM);
        }
        return sound.Honest(read, channels);
    };
    Taken taken;
    EXPECT_THROW(ReadSound(sound, 0, ToTheEnd, 1000, taken.Take()), Program::Interrupted);
    EXPECT_EQ(taken.left.size(), 2000U);
    std::signal(SIGTERM, SIG_DFL);
}

TEST(FindSoundEnd, FindsItForAnyLength) {
    for (const std::int64_t frames : {0, 1, 2, 999, 1000, 1001, 65'536, 123'457}) {
        ScriptedSound sound(frames);
        EXPECT_EQ(Program::FindSoundEnd(sound, 1000), frames);
        EXPECT_LT(sound.reads.size(), 60U);
    }
}

TEST(FindSoundEnd, ASoundWithoutEndIsGivenUp) {
    ScriptedSound sound(0);
    sound.script = [](std::size_t, const ScriptedSound::Read& read, std::vector<float*>&) {
        return read.count;
    };
    EXPECT_GT(Program::FindSoundEnd(sound, 1000), std::int64_t{1} << 39);
    EXPECT_LT(sound.reads.size(), 100U);
}
