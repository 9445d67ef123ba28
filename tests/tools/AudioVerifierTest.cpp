#include "tools/zanthe/AudioVerifier.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/tools/ScriptedSound.h"
#include "tools/zanthe/Interrupt.h"

using Program::AudioVerification;
using Program::AudioVerifier;
using Program::ReadKind;
using Program::ReadSpan;
using What = Program::Difference::What;

namespace {

constexpr int Rate = 8000;
constexpr std::int64_t Length = 100003; // three linear spans: 2 of 48000 and what is left
constexpr std::size_t LinearReads = 3;
constexpr std::int64_t Seeks = 150;

AudioVerification Verify(ScriptedSound& sound, std::uint64_t seed = 7) {
    return AudioVerifier(sound, {.rate = Rate, .seeks = Seeks, .seed = seed}).Run();
}

// Makes a sound that is honest while it is read from start to end and bent afterwards.
void BendAfterwards(ScriptedSound& sound, const ScriptedSound::Script& bent) {
    sound.script = [&sound, bent](std::size_t index, const ScriptedSound::Read& read,
                                  std::vector<float*>& channels) {
        return index < LinearReads ? sound.Honest(read, channels) : bent(index, read, channels);
    };
}

const Program::ReadTally& TallyOf(const AudioVerification& found, ReadKind kind) {
    return found.tallies.at(static_cast<std::size_t>(kind));
}

bool Holds(const ScriptedSound::Read& read, std::int64_t frame) {
    return read.start <= frame && frame < read.start + read.count;
}

} // namespace

TEST(AudioVerifier, FindsAnHonestReaderEqual) {
    ScriptedSound sound(Length);
    const AudioVerification found = Verify(sound);
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.Differences(), 0);
    EXPECT_EQ(found.frames, Length);
    EXPECT_EQ(found.Spans(), static_cast<std::int64_t>(sound.reads.size()));
}

TEST(AudioVerifier, CountsWhatItRead) {
    ScriptedSound sound(Length);
    const AudioVerification found = Verify(sound);
    ASSERT_EQ(found.tallies.size(), 5U);
    EXPECT_EQ(TallyOf(found, ReadKind::Linear).spans, static_cast<std::int64_t>(LinearReads));
    EXPECT_EQ(TallyOf(found, ReadKind::Linear).frames, Length);
    EXPECT_EQ(TallyOf(found, ReadKind::Random).spans, Seeks);
    EXPECT_GT(TallyOf(found, ReadKind::Random).frames, Length);
    EXPECT_EQ(TallyOf(found, ReadKind::Backward).frames, Length);
    EXPECT_EQ(TallyOf(found, ReadKind::AcrossEnd).spans, 16);
    EXPECT_EQ(TallyOf(found, ReadKind::BehindEnd).spans, 16);
    EXPECT_EQ(TallyOf(found, ReadKind::BehindEnd).frames, 0);
}

TEST(AudioVerifier, ReadsShortAndLongOddAndEvenSpansEverywhere) {
    ScriptedSound sound(Length);
    Verify(sound);
    const auto begin = sound.reads.begin() + LinearReads;
    const auto end = begin + Seeks;
    const auto any = [&](auto&& is) { return std::any_of(begin, end, is); };
    EXPECT_TRUE(any([](auto& read) { return read.count <= 3; }));
    EXPECT_TRUE(any([](auto& read) { return read.count > 20000; }));
    EXPECT_TRUE(any([](auto& read) { return read.count % 2 == 1 && read.count > 100; }));
    EXPECT_TRUE(any([](auto& read) { return read.count % 2 == 0; }));
    EXPECT_TRUE(any([](auto& read) { return read.start < Length / 10; }));
    EXPECT_TRUE(any([](auto& read) { return read.start > Length / 10 * 9; }));
    EXPECT_TRUE(std::none_of(sound.reads.begin(), sound.reads.end(),
                             [](auto& read) { return read.count == 0; }));
}

TEST(AudioVerifier, ReadsBackwardWithoutAGap) {
    ScriptedSound sound(Length);
    Verify(sound);
    std::int64_t end = Length;
    for (std::size_t i = LinearReads + Seeks; end > 0; ++i) {
        ASSERT_EQ(sound.reads.at(i).start + sound.reads[i].count, end);
        end = sound.reads[i].start;
    }
    EXPECT_EQ(end, 0);
}

TEST(AudioVerifier, ReadsAcrossTheEndAndBehindIt) {
    ScriptedSound sound(Length);
    Verify(sound);
    const auto behind = sound.reads.end() - 16;
    EXPECT_TRUE(std::all_of(behind - 16, behind, [](auto& read) {
        return read.start < Length && read.start + read.count > Length;
    }));
    EXPECT_TRUE(
        std::all_of(behind, sound.reads.end(), [](auto& read) { return read.start >= Length; }));
    EXPECT_EQ(behind->start, Length);
}

TEST(AudioVerifier, TheSeedDecidesTheReads) {
    ScriptedSound first(Length);
    ScriptedSound same(Length);
    ScriptedSound other(Length);
    Verify(first, 7);
    Verify(same, 7);
    Verify(other, 8);
    EXPECT_EQ(first.reads, same.reads);
    EXPECT_NE(first.reads, other.reads);
}

TEST(AudioVerifier, FindsOneWrongSample) {
    constexpr std::int64_t wrong = 61234;
    ScriptedSound sound(Length);
    BendAfterwards(sound, [&](std::size_t, const auto& read, auto& channels) {
        const unsigned int count = sound.Honest(read, channels);
        if (Holds(read, wrong)) {
            channels[1][wrong - read.start] += 1.0F / (1 << 22);
        }
        return count;
    });
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Sample);
    EXPECT_EQ(found.first->frame, wrong);
    EXPECT_EQ(found.first->channel, 1U);
    EXPECT_EQ(found.first->expected, sound.planes[1][wrong]);
    EXPECT_EQ(found.first->answered, sound.planes[1][wrong] + 1.0F / (1 << 22));
    EXPECT_EQ(TallyOf(found, ReadKind::Backward).differences, 1);
}

TEST(AudioVerifier, NamesTheEarliestOfSeveralWrongSamples) {
    ScriptedSound sound(Length);
    BendAfterwards(sound, [&](std::size_t, const auto& read, auto& channels) {
        const unsigned int count = sound.Honest(read, channels);
        if (count > 2) {
            channels[0][2] = 2;
            channels[1][1] = 3;
        }
        return count;
    });
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->frame, found.first->span.start + 1);
    EXPECT_EQ(found.first->channel, 1U);
    EXPECT_EQ(found.first->answered, 3);
}

TEST(AudioVerifier, ZeroAndMinusZeroDiffer) {
    ScriptedSound sound(Length);
    sound.planes[0][500] = 0.0F;
    BendAfterwards(sound, [&](std::size_t, const auto& read, auto& channels) {
        const unsigned int count = sound.Honest(read, channels);
        if (Holds(read, 500)) {
            channels[0][500 - read.start] = -0.0F;
        }
        return count;
    });
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->frame, 500);
}

TEST(AudioVerifier, NotANumberEqualsItselfByItsBits) {
    ScriptedSound sound(Length);
    sound.planes[0][500] = std::bit_cast<float>(0x7FC00001U);
    EXPECT_TRUE(Verify(sound).Equal());
}

TEST(AudioVerifier, NotANumberWithOtherBitsDiffers) {
    ScriptedSound sound(Length);
    sound.planes[0][500] = std::bit_cast<float>(0x7FC00001U);
    BendAfterwards(sound, [&](std::size_t, const auto& read, auto& channels) {
        const unsigned int count = sound.Honest(read, channels);
        if (Holds(read, 500)) {
            channels[0][500 - read.start] = std::bit_cast<float>(0x7FC00002U);
        }
        return count;
    });
    EXPECT_FALSE(Verify(sound).Equal());
}

TEST(AudioVerifier, FindsAReadThatIsShortInTheMiddle) {
    ScriptedSound sound(Length);
    BendAfterwards(sound, [&](std::size_t, const auto& read, auto& channels) {
        auto cut = read;
        if (Holds(read, 50000)) {
            cut.count = static_cast<unsigned int>(50000 - read.start);
        }
        return sound.Honest(cut, channels);
    });
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Count);
    EXPECT_EQ(found.first->answeredCount, 50000 - found.first->span.start);
    EXPECT_GT(found.first->expectedCount, found.first->answeredCount);
}

TEST(AudioVerifier, FindsALinearReadThatStopsTooSoon) {
    ScriptedSound sound(Length);
    sound.script = [&](std::size_t index, const auto& read, auto& channels) {
        auto cut = read;
        if (index == 1) {
            cut.count = 1000;
        }
        return sound.Honest(cut, channels);
    };
    const AudioVerification found = Verify(sound);
    EXPECT_EQ(found.frames, 49000);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Count);
    EXPECT_GT(found.first->answeredCount, found.first->expectedCount);
    EXPECT_GE(TallyOf(found, ReadKind::BehindEnd).differences, 4);
}

TEST(AudioVerifier, FindsFramesAnsweredBehindTheEnd) {
    ScriptedSound sound(Length);
    BendAfterwards(sound, [&](std::size_t, const auto& read, auto& channels) {
        sound.Honest(read, channels);
        return read.count;
    });
    const AudioVerification found = Verify(sound);
    EXPECT_EQ(TallyOf(found, ReadKind::Backward).differences, 0);
    EXPECT_EQ(TallyOf(found, ReadKind::AcrossEnd).differences, 16);
    EXPECT_EQ(TallyOf(found, ReadKind::BehindEnd).differences, 16);
}

TEST(AudioVerifier, FindsMoreAnsweredThanAskedFor) {
    ScriptedSound sound(Length);
    sound.script = [&](std::size_t, const auto& read, auto& channels) {
        return sound.Honest(read, channels) + 1;
    };
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Count);
    EXPECT_EQ(found.first->span.kind, ReadKind::Linear);
    EXPECT_EQ(found.first->expectedCount, 48000);
    EXPECT_EQ(found.first->answeredCount, 48001);
}

TEST(AudioVerifier, FindsASampleWrittenBehindTheAnsweredCount) {
    ScriptedSound sound(Length);
    BendAfterwards(sound, [&](std::size_t, const auto& read, auto& channels) {
        const unsigned int count = sound.Honest(read, channels);
        if (count < read.count) {
            channels[0][count] = 0;
        }
        return count;
    });
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Touched);
    EXPECT_EQ(found.first->frame, Length);
    EXPECT_EQ(found.first->channel, 0U);
    EXPECT_EQ(TallyOf(found, ReadKind::AcrossEnd).differences, 16);
    EXPECT_EQ(TallyOf(found, ReadKind::BehindEnd).differences, 16);
}

TEST(AudioVerifier, FindsASampleWrittenBehindTheCallersPlane) {
    ScriptedSound sound(Length);
    sound.script = [&](std::size_t index, const auto& read, auto& channels) {
        const unsigned int count = sound.Honest(read, channels);
        if (index == 0) {
            channels[1][read.count + 2] = 0;
        }
        return count;
    };
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Touched);
    EXPECT_EQ(found.first->span.kind, ReadKind::Linear);
    EXPECT_EQ(found.first->frame, 48002);
    EXPECT_EQ(found.Differences(), 1);
}

TEST(AudioVerifier, FindsAFrameThatIsCountedButNeverWritten) {
    ScriptedSound sound(Length);
    sound.script = [&](std::size_t, const auto& read, auto& channels) {
        std::vector<float> kept{channels[0][0], channels[1][0]};
        const unsigned int count = sound.Honest(read, channels);
        channels[0][0] = kept[0];
        channels[1][0] = kept[1];
        return count;
    };
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Sample);
    EXPECT_EQ(found.first->frame, found.first->span.start);
}

TEST(AudioVerifier, AReadThatFailsAfterTheLinearReadingIsADifference) {
    ScriptedSound sound(Length);
    BendAfterwards(sound, [&](std::size_t index, const auto& read, auto& channels) {
        if (index == LinearReads + 4) {
            throw std::runtime_error("lost the thread");
        }
        return sound.Honest(read, channels);
    });
    const AudioVerification found = Verify(sound);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, What::Failure);
    EXPECT_EQ(found.first->failure, "lost the thread");
    EXPECT_EQ(found.first->span.index, 4);
    EXPECT_EQ(found.Differences(), 1);
}

TEST(AudioVerifier, AFailureOfTheLinearReadingPasses) {
    ScriptedSound sound(Length);
    sound.script = [](std::size_t, const auto&, auto&) -> unsigned int {
        throw std::runtime_error("broken");
    };
    EXPECT_THROW(Verify(sound), std::runtime_error);
}

TEST(AudioVerifier, ASoundWithoutFramesIsStillAskedBehindItsEnd) {
    ScriptedSound sound(0);
    const AudioVerification found = Verify(sound);
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.frames, 0);
    EXPECT_EQ(TallyOf(found, ReadKind::Random).spans, 0);
    EXPECT_EQ(TallyOf(found, ReadKind::BehindEnd).spans, 16);
}

TEST(AudioVerifier, OneFrameAtTheLowestRateIsEnough) {
    ScriptedSound sound(1);
    const AudioVerification found = AudioVerifier(sound, {.rate = 1, .seeks = 10, .seed = 3}).Run();
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.frames, 1);
    EXPECT_EQ(TallyOf(found, ReadKind::Backward).spans, 1);
}

TEST(AudioVerifier, ASoundThatEndsWithASpanIsReadOnceMore) {
    ScriptedSound sound(48000);
    const AudioVerification found = Verify(sound);
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.frames, 48000);
    EXPECT_EQ(TallyOf(found, ReadKind::Linear).spans, 2);
}

TEST(AudioVerifier, TheWatchSeesEveryReadAndCanStopThem) {
    ScriptedSound sound(Length);
    std::size_t seen = 0;
    AudioVerifier verifier(sound, {.rate = Rate, .seeks = Seeks, .seed = 7}, [&](const ReadSpan&) {
        if (++seen == 10) {
            throw Program::Interrupted{2};
        }
    });
    EXPECT_THROW(verifier.Run(), Program::Interrupted);
    EXPECT_EQ(sound.reads.size(), 9U);
}
