#include "zanthe/audio/mf/MFAudioReader.h"

#include <limits>

#include <gtest/gtest.h>

#include "tests/zanthe/audio/mf/ScriptedSound.h"

namespace Zanthe {
namespace {

constexpr std::int64_t kRate = 48000;
constexpr std::int64_t kFrames = 1000;
constexpr std::int64_t kUnitsPerSecond = 10'000'000;

// A reader over twenty seconds in samples of a thousand frames.
class Reader : public testing::Test {
protected:
    Reader() { m_script->duration = 20 * kUnitsPerSecond; }

    void Initialize(int rate = kRate) { ASSERT_TRUE(m_reader.Initialize(rate)); }

    StereoSound Read(std::int64_t start, unsigned int count) {
        return ReadSpan(m_reader, start, count);
    }

    Script m_script = MakeSoundScript(SoundSamples(960, kFrames, kRate));
    ScriptedSoundOpening m_opening{m_script};
    MFAudioReader m_reader{std::string("a.wma")};
};

TEST_F(Reader, AnswersNothingBeforeItIsInitialized) {
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
    m_script->openResult = E_FAIL;
    EXPECT_FALSE(m_reader.Initialize(kRate));
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
}

TEST_F(Reader, NeedsTwoChannels) {
    Initialize();
    float left[4] = {9, 9, 9, 9};
    for (const std::size_t count : {0U, 1U, 3U}) {
        std::vector<float*> channels(count, left);
        EXPECT_EQ(m_reader.FillAudioBuffer(0, 4, channels), 0U);
    }
    EXPECT_EQ(left[0], 9);
}

TEST_F(Reader, ServesAReadWithinTheCurrentSampleWithoutTheSource) {
    Initialize();
    EXPECT_EQ(m_script->reads, 1);
    EXPECT_TRUE(Read(10, 500) == Ramp(10, 500));
    EXPECT_TRUE(Read(999, 1) == Ramp(999, 1));
    EXPECT_TRUE(Read(0, 1000) == Ramp(0, 1000));
    EXPECT_EQ(m_script->reads, 1);
    EXPECT_EQ(m_reader.SeekCount(), 0);
}

TEST_F(Reader, ReadsOnWithOneReadASample) {
    Initialize();
    EXPECT_TRUE(Read(0, 5500) == Ramp(0, 5500));
    EXPECT_TRUE(Read(5500, 700) == Ramp(5500, 700));
    EXPECT_EQ(m_script->reads, 7);
    EXPECT_EQ(m_reader.SeekCount(), 0);
}

TEST_F(Reader, AReadAcrossSamplesHasEveryFrameOnce) {
    constexpr int rate = 44100;
    m_script->samples = SoundSamples(500, 1023, rate);
    Initialize(rate);
    EXPECT_TRUE(Read(1, 200'000) == Ramp(1, 200'000));
    EXPECT_TRUE(Read(1022, 2) == Ramp(1022, 2));
    for (std::int64_t start = 300'000; start < 310'000; start += 977) {
        EXPECT_TRUE(Read(start, 2048) == Ramp(start, 2048)) << start;
    }
}

TEST_F(Reader, OddRatesComeOutExactToo) {
    m_script->duration = 60 * kUnitsPerSecond;
    for (const int rate : {8000, 11025, 16001, 22050, 96000, 192000}) {
        m_script->samples = SoundSamples(300, 1021, rate);
        MFAudioReader reader(std::string("a.wma"));
        ASSERT_TRUE(reader.Initialize(rate));
        for (const std::int64_t start : {250'001, 7, 300'000, 12'345, 100'000}) {
            EXPECT_TRUE(ReadSpan(reader, start, 3000) == Ramp(start, 3000)) << rate << ' ' << start;
        }
    }
}

TEST_F(Reader, AReadBehindTheCursorSeeks) {
    Initialize();
    EXPECT_TRUE(Read(50'000, 10) == Ramp(50'000, 10));
    const std::int64_t before = m_reader.SeekCount();
    EXPECT_TRUE(Read(48'000, 10) == Ramp(48'000, 10));
    EXPECT_EQ(m_reader.SeekCount(), before + 1);
}

TEST_F(Reader, LessThanFiveSecondsAheadItSteps) {
    Initialize();
    const std::int64_t frame = 1000 + 49 * kRate / 10;
    EXPECT_TRUE(Read(frame, 10) == Ramp(frame, 10));
    EXPECT_EQ(m_reader.SeekCount(), 0);
}

TEST_F(Reader, FiveSecondsAheadItSeeks) {
    Initialize();
    const std::int64_t frame = 1000 + 51 * kRate / 10;
    EXPECT_TRUE(Read(frame, 10) == Ramp(frame, 10));
    EXPECT_EQ(m_reader.SeekCount(), 1);
    EXPECT_EQ(m_script->reads, 2);
}

TEST_F(Reader, TheWindowIsCountedFromTheLastUnitOfTheSample) {
    m_script->samples = SoundSamples(40, kRate, kRate); // a second each
    Initialize();
    EXPECT_EQ(Read(6 * kRate, 1).Frames(), 1U); // 5 s and a unit behind the last unit
    EXPECT_EQ(m_reader.SeekCount(), 1);
    EXPECT_EQ(Read(11 * kRate + kRate - 1, 1).Frames(), 1U);
    EXPECT_EQ(m_reader.SeekCount(), 1);
}

// A seek's time stamp need not fall on a frame; so the window's edge can be met to the unit.
TEST_F(Reader, TheWindowEndsAtFiveSecondsToTheUnit) {
    const auto seeksAfter = [&](std::int64_t offset) {
        m_script->samples[300].time += offset;
        MFAudioReader reader(std::string("a.wma"));
        EXPECT_TRUE(reader.Initialize(kRate));
        EXPECT_TRUE(ReadSpan(reader, 300'500, 1) == Ramp(300'500, 1));
        const std::int64_t before = reader.SeekCount();
        EXPECT_TRUE(ReadSpan(reader, 541'000, 1) == Ramp(541'000, 1));
        m_script->samples[300].time -= offset;
        return reader.SeekCount() - before;
    };
    EXPECT_EQ(seeksAfter(0), 1); // 50000001 units behind the sample's last one
    EXPECT_EQ(seeksAfter(1), 1); // 50000000
    EXPECT_EQ(seeksAfter(2), 0); // 49999999
}

TEST_F(Reader, AReadPastTheEndReturnsWhatThereIs) {
    Initialize();
    std::vector<float> left(100, 9.0F);
    std::vector<float> right(100, 9.0F);
    std::vector<float*> channels{left.data(), right.data()};
    EXPECT_EQ(m_reader.FillAudioBuffer(959'950, 100, channels), 50U);
    EXPECT_EQ(left[49], 959'999.0F);
    EXPECT_EQ(left[50], 9.0F);
    EXPECT_EQ(right[99], 9.0F);
    EXPECT_EQ(Read(960'000, 10).Frames(), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::max(), 10).Frames(), 0U);
    EXPECT_TRUE(Read(0, 10) == Ramp(0, 10));
}

TEST_F(Reader, SoundBehindTheToldLengthIsFoundToo) {
    m_script->duration = 19 * kUnitsPerSecond;
    Initialize();
    for (const std::int64_t start : {912'000, 930'001, 3, 959'999}) {
        EXPECT_TRUE(Read(start, 10) == Ramp(start, start == 959'999 ? 1 : 10)) << start;
    }
    EXPECT_EQ(Read(960'000, 10).Frames(), 0U);
}

TEST_F(Reader, FarBehindTheToldLengthNothingIsLookedFor) {
    m_script->duration = 10 * kUnitsPerSecond;
    Initialize();
    EXPECT_EQ(Read(15 * kRate, 10).Frames(), 0U);
    EXPECT_EQ(m_reader.SeekCount(), 0);
    EXPECT_TRUE(Read(15 * kRate - 1, 1) == Ramp(15 * kRate - 1, 1));
}

TEST_F(Reader, NothingIsBeforeTheStart) {
    Initialize();
    EXPECT_EQ(Read(-1, 10).Frames(), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::min(), 10).Frames(), 0U);
    EXPECT_EQ(m_reader.SeekCount(), 0);
}

TEST_F(Reader, AReadOfNothingIsNothing) {
    Initialize();
    EXPECT_EQ(Read(5, 0).Frames(), 0U);
}

TEST_F(Reader, AFailureInTheMiddleEndsTheReadAndTheNextOneStartsAfresh) {
    Initialize();
    m_script->outcome = [](int read) {
        return read == 3 ? SoundOutcome::Failed : SoundOutcome::Sample;
    };
    EXPECT_TRUE(Read(0, 10'000) == Ramp(0, 3000));
    EXPECT_TRUE(Read(0, 10'000) == Ramp(0, 10'000));
}

TEST_F(Reader, ALateLandingIsFoundOutWithoutWrongSamples) {
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(position * kRate / kUnitsPerSecond / kFrames + 3);
    };
    Initialize();
    EXPECT_TRUE(Read(600'000, 5000) == Ramp(600'000, 5000));
    EXPECT_TRUE(Read(500'500, 5000) == Ramp(500'500, 5000));
}

TEST_F(Reader, TheForcedSeekIsNoSeam) {
    Initialize();
    EXPECT_EQ(m_reader.ForcedSeekInterval(), 60 * kRate);
    m_reader.SetForcedSeekInterval(10'000);
    EXPECT_TRUE(Read(0, 100'000) == Ramp(0, 100'000));
    EXPECT_EQ(m_reader.SeekCount(), 9);
    EXPECT_EQ(m_reader.GetPresentationLength(), 20 * kUnitsPerSecond);
}

TEST_F(Reader, AForcedSeekThatLandsAUnitBehindIsNoSeam) {
    for (std::size_t i = 1; i < m_script->samples.size(); ++i) {
        ++m_script->samples[i].time;
    }
    Initialize();
    m_reader.SetForcedSeekInterval(3000);
    EXPECT_TRUE(Read(0, 20'000) == Ramp(0, 20'000));
}

// Every step is a seek here, and every seek lands on the sample that was just read to its end.
TEST_F(Reader, ASourceThatDoesNotGetOnEndsTheRead) {
    for (std::size_t i = 1; i < m_script->samples.size(); ++i) {
        m_script->samples[i].time += 90; // not half a frame
    }
    Initialize();
    EXPECT_TRUE(Read(1500, 1) == Ramp(1500, 1));
    m_reader.SetForcedSeekInterval(0);
    EXPECT_TRUE(Read(1600, 20'000) == Ramp(1600, 400));
    EXPECT_GT(m_reader.SeekCount(), 50);
    EXPECT_LE(m_reader.SeekCount(), 110);
}

TEST_F(Reader, EmptySamplesAreReadPast) {
    m_script->samples.insert(m_script->samples.begin() + 1, 5, {208'333, 1000, 0, -1});
    Initialize();
    EXPECT_TRUE(Read(0, 3000) == Ramp(0, 3000));
}

TEST_F(Reader, ReadsOverASource) {
    MFAudioReader reader(MakeScriptedSource().Get());
    ASSERT_TRUE(reader.Initialize(kRate));
    EXPECT_TRUE(ReadSpan(reader, 123, 4567) == Ramp(123, 4567));
}

} // namespace
} // namespace Zanthe
