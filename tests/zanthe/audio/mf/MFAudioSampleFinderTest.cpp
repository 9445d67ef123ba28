#include "zanthe/audio/mf/MFAudioSampleFinder.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mf/MediaFormats.h"
#include "tests/zanthe/audio/mf/ScriptedSound.h"

using testing::ElementsAre;
using testing::Pair;

namespace Zanthe {
namespace {

using SampleInRange = MFAudioSampleFinder::SampleInRange;

constexpr int kRate = 48000;
constexpr std::int64_t kFrames = 4800; // a tenth of a second
constexpr std::int64_t kLength = 1'000'000;
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

UINT32 Number(IMFMediaType& type, REFGUID key) {
    return MFGetAttributeUINT32(&type, key, 0xDEAD);
}

GUID SubtypeOf(IMFMediaType& type) {
    GUID subtype{};
    type.GetGUID(MF_MT_SUBTYPE, &subtype);
    return subtype;
}

// A finder over a hundred samples of a tenth of a second each, of which the file tells ten seconds.
class Finder : public testing::Test {
protected:
    Finder() { m_script->duration = 100 * kLength; }

    bool Initialize(int rate = kRate) { return m_finder.Initialize(rate); }

    bool Seek(std::int64_t time) { return m_finder.SeekAndWaitForSample(time, nullptr); }

    bool Advance() { return m_finder.AdvanceToNextSample(nullptr); }

    std::int64_t Time() {
        LONGLONG time = -1;
        com::ComPtr<IMFSample> sample;
        if (m_finder.GetCurrentSample(sample.Put())) {
            sample->GetSampleTime(&time);
        }
        return time;
    }

    std::int64_t Duration() {
        LONGLONG duration = -1;
        com::ComPtr<IMFSample> sample;
        if (m_finder.GetCurrentSample(sample.Put())) {
            sample->GetSampleDuration(&duration);
        }
        return duration;
    }

    Script m_script = MakeSoundScript(SoundSamples(100, kFrames, kRate));
    ScriptedSoundOpening m_opening{m_script};
    MFAudioSampleFinder m_finder{std::string("caf\u00e9.wma"), false};
};

TEST_F(Finder, IsNothingBeforeItIsInitialized) {
    com::ComPtr<IMFSample> sample;
    com::ComPtr<IMFMediaType> type;
    EXPECT_FALSE(m_finder.IsInitialized());
    EXPECT_TRUE(m_finder.HasNullCurrentSample());
    EXPECT_EQ(m_finder.StreamIndex(), -1);
    EXPECT_EQ(m_finder.SeekCount(), 0);
    EXPECT_EQ(m_finder.GetPresentationLength(), kMost);
    EXPECT_EQ(m_finder.FilePath(), "caf\u00e9.wma");
    EXPECT_EQ(m_finder.IsTimeWithinCurrentSample(0), SampleInRange::NoAnswer);
    EXPECT_FALSE(m_finder.GetCurrentSample(sample.Put()));
    EXPECT_FALSE(m_finder.GetOutputType(type.Put()));
    EXPECT_FALSE(Advance());
    EXPECT_FALSE(Seek(0));
    EXPECT_EQ(m_script->reads, 0);
}

TEST_F(Finder, AsksForStereoFloatsAtTheRate) {
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(m_script->url, L"caf\u00e9.wma");
    IMFMediaType& type = *m_script->typeSet;
    GUID major{};
    type.GetMajorType(&major);
    EXPECT_EQ(major, MFMediaType_Audio);
    EXPECT_EQ(SubtypeOf(type), MFAudioFormat_Float);
    EXPECT_EQ(Number(type, MF_MT_AUDIO_NUM_CHANNELS), 2U);
    EXPECT_EQ(Number(type, MF_MT_AUDIO_SAMPLES_PER_SECOND), 48000U);
    EXPECT_EQ(Number(type, MF_MT_AUDIO_BITS_PER_SAMPLE), 32U);
    EXPECT_EQ(Number(type, MF_MT_AUDIO_BLOCK_ALIGNMENT), 8U);
    EXPECT_EQ(Number(type, MF_MT_AUDIO_AVG_BYTES_PER_SECOND), 384000U);
    EXPECT_EQ(Number(type, MF_MT_ALL_SAMPLES_INDEPENDENT), 1U);
    EXPECT_EQ(Number(type, MF_MT_FIXED_SIZE_SAMPLES), 1U);
    EXPECT_THAT(m_script->selections, ElementsAre(Pair(MF_SOURCE_READER_ALL_STREAMS, FALSE),
                                                  Pair(MF_SOURCE_READER_FIRST_AUDIO_STREAM, TRUE)));
}

TEST_F(Finder, StandsOnTheFirstSample) {
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(m_finder.IsInitialized());
    EXPECT_EQ(m_finder.StreamIndex(), 1);
    EXPECT_EQ(m_finder.GetPresentationLength(), 100 * kLength);
    EXPECT_EQ(m_finder.ForcedSeekInterval(), 2'880'000);
    EXPECT_EQ(Time(), 0);
    EXPECT_EQ(Duration(), kLength);
    EXPECT_EQ(m_script->reads, 1);
}

TEST_F(Finder, IsInitializedOnce) {
    EXPECT_TRUE(Initialize());
    EXPECT_TRUE(Initialize(8000));
    EXPECT_EQ(m_script->reads, 1);
    EXPECT_EQ(m_finder.AudioSampleFormat().samplesPerSecond, 48000U);
}

TEST_F(Finder, OverASourceItHasNoPath) {
    MFAudioSampleFinder finder(MakeScriptedSource().Get(), false);
    EXPECT_TRUE(finder.Initialize(kRate));
    EXPECT_EQ(finder.FilePath(), "");
}

TEST_F(Finder, WhatFailsWhileOpeningEndsWithFalse) {
    for (HRESULT* step :
         {&m_script->openResult, &m_script->setTypeResult, &m_script->selectResult}) {
        *step = E_FAIL;
        EXPECT_FALSE(Initialize());
        EXPECT_FALSE(m_finder.IsInitialized());
        *step = S_OK;
    }
    m_script->outcome = [](int) { return SoundOutcome::Failed; };
    EXPECT_FALSE(Initialize());
    m_script->outcome = [](int) { return SoundOutcome::Refused; };
    EXPECT_FALSE(Initialize());
    m_script->outcome = {};
    EXPECT_TRUE(Initialize());
}

TEST_F(Finder, NoRateIsNoFormat) {
    EXPECT_FALSE(Initialize(0));
    EXPECT_FALSE(Initialize(-48000));
}

TEST_F(Finder, AStreamWithoutSamplesIsNoFailure) {
    m_script->samples.clear();
    EXPECT_TRUE(Initialize());
    EXPECT_TRUE(m_finder.HasNullCurrentSample());
    EXPECT_FALSE(Advance());
    EXPECT_FALSE(Seek(0));
}

TEST_F(Finder, AnUnknownDurationLeavesSeeksUnchecked) {
    m_script->duration = 0;
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(m_finder.GetPresentationLength(), kMost);
    EXPECT_FALSE(Seek(1000 * kLength)); // behind the last sample, which is found and left
    EXPECT_EQ(m_finder.SeekCount(), 1);
}

TEST_F(Finder, InTheNativeFormatTheRateIsTheSources) {
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, 22050);
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, 1);
    MFAudioSampleFinder finder(std::string("a.wma"), true);
    ASSERT_TRUE(finder.Initialize(48000));
    const MFAudioSampleFormat format = finder.AudioSampleFormat();
    EXPECT_EQ(format.subtype, MFAudioFormat_PCM);
    EXPECT_EQ(format.channels, 1U);
    EXPECT_EQ(format.samplesPerSecond, 22050U);
    EXPECT_EQ(format.bitsPerSample, 16U);
    EXPECT_EQ(format.blockAlign, 2U);
    EXPECT_EQ(finder.ForcedSeekInterval(), 22050 * 60);
    com::ComPtr<IMFMediaType> type;
    ASSERT_TRUE(finder.GetOutputType(type.Put()));
    EXPECT_EQ(SubtypeOf(*type), MFAudioFormat_PCM);
}

TEST_F(Finder, FloatsStayFloatsInTheNativeFormat) {
    m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_Float);
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 32);
    MFAudioSampleFinder finder(std::string("a.wav"), true);
    ASSERT_TRUE(finder.Initialize(48000));
    EXPECT_EQ(finder.AudioSampleFormat().subtype, MFAudioFormat_Float);
    EXPECT_EQ(finder.AudioSampleFormat().blockAlign, 8U);
}

TEST_F(Finder, CompressedSoundComesAsIntegersOf16Bits) {
    com::ComPtr<IMFMediaType> native;
    MFCreateMediaType(native.Put());
    native->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_AAC);
    native->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, 2);
    native->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, 48000);
    m_script->nativeType = native;
    MFAudioSampleFinder finder(std::string("a.m4a"), true);
    ASSERT_TRUE(finder.Initialize(48000));
    EXPECT_EQ(finder.AudioSampleFormat().subtype, MFAudioFormat_PCM);
    EXPECT_EQ(finder.AudioSampleFormat().bitsPerSample, 16U);
}

TEST_F(Finder, AFrameOfOddWidthIsWholeBytes) {
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 20);
    MFAudioSampleFinder finder(std::string("a.wav"), true);
    ASSERT_TRUE(finder.Initialize(48000));
    EXPECT_EQ(finder.AudioSampleFormat().blockAlign, 5U); // 40 bits, and not two of 16
}

TEST_F(Finder, APartOfAFrameIsNotCounted) {
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, 7);
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 8);
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, kRate);
    MFAudioSampleFinder finder(std::string("a.wav"), true);
    ASSERT_TRUE(finder.Initialize(0));
    com::ComPtr<IMFSample> sample;
    ASSERT_TRUE(finder.GetCurrentSample(sample.Put()));
    LONGLONG duration = 0;
    sample->GetSampleDuration(&duration);
    EXPECT_EQ(duration,
              std::llround(static_cast<double>(kFrames * 8 / 7) / 48000 * 1e7)); // 38400 bytes by 7
}

TEST_F(Finder, ANativeFormatThatTellsNothingIsRefused) {
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, 0);
    MFAudioSampleFinder silent(std::string("a.wma"), true);
    EXPECT_FALSE(silent.Initialize(48000));
    m_script->nativeTypeResult = E_FAIL;
    EXPECT_FALSE(silent.Initialize(48000));
}

TEST_F(Finder, TellsHowATimeLies) {
    ASSERT_TRUE(Initialize());
    ASSERT_TRUE(Advance());
    EXPECT_EQ(m_finder.IsTimeWithinCurrentSample(kLength - 1), SampleInRange::Before);
    EXPECT_EQ(m_finder.IsTimeWithinCurrentSample(kLength), SampleInRange::Within);
    EXPECT_EQ(m_finder.IsTimeWithinCurrentSample(2 * kLength - 1), SampleInRange::Within);
    EXPECT_EQ(m_finder.IsTimeWithinCurrentSample(2 * kLength), SampleInRange::After);
}

TEST_F(Finder, SeeksWithinThePresentationAlone) {
    ASSERT_TRUE(Initialize());
    EXPECT_FALSE(Seek(-1));
    EXPECT_FALSE(Seek(100 * kLength));
    EXPECT_FALSE(Seek(kMost));
    EXPECT_EQ(m_finder.SeekCount(), 0);
    EXPECT_EQ(m_script->flushes, 0);
    EXPECT_EQ(Time(), 0); // as it was
    EXPECT_TRUE(Seek(100 * kLength - 1));
    EXPECT_EQ(Time(), 99 * kLength);
}

TEST_F(Finder, ASeekFlushesAndSetsThePosition) {
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(Seek(5 * kLength + 7));
    EXPECT_EQ(m_script->flushes, 1);
    EXPECT_THAT(m_script->positions, ElementsAre(5 * kLength + 7));
    EXPECT_EQ(m_finder.SeekCount(), 1);
    EXPECT_EQ(Time(), 5 * kLength);
}

TEST_F(Finder, AFailedFlushIsNotWaitedFor) {
    ASSERT_TRUE(Initialize());
    m_script->flushResult = E_FAIL;
    EXPECT_TRUE(Seek(5 * kLength));
    EXPECT_EQ(Time(), 5 * kLength);
}

TEST_F(Finder, AFailedPositionIsNoSeek) {
    ASSERT_TRUE(Initialize());
    m_script->positionResult = E_FAIL;
    EXPECT_FALSE(Seek(5 * kLength));
    EXPECT_EQ(m_finder.SeekCount(), 0);
    EXPECT_EQ(Time(), 0);
}

TEST_F(Finder, ASeekThatBringsNothingLeavesNoSample) {
    ASSERT_TRUE(Initialize());
    m_script->outcome = [](int) { return SoundOutcome::End; };
    EXPECT_FALSE(Seek(5 * kLength));
    EXPECT_EQ(m_finder.SeekCount(), 1);
    EXPECT_TRUE(m_finder.HasNullCurrentSample());
    m_script->outcome = {};
    EXPECT_TRUE(Seek(5 * kLength));
    EXPECT_EQ(Time(), 5 * kLength);
}

TEST_F(Finder, TimesCountFromTheFirstSample) {
    constexpr std::int64_t first = 14'000'000;
    m_script->samples = SoundSamples(100, kFrames, kRate, first);
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(Time(), 0);
    ASSERT_TRUE(Seek(5 * kLength));
    EXPECT_THAT(m_script->positions, ElementsAre(first + 5 * kLength));
    EXPECT_EQ(Time(), 5 * kLength);
    ASSERT_TRUE(Advance());
    EXPECT_EQ(Time(), 6 * kLength);
}

TEST_F(Finder, ALandingBeforeTheTargetIsWalkedFrom) {
    m_script->landing = [](std::int64_t) { return 30; };
    ASSERT_TRUE(Initialize());
    com::ComPtr<IMFSample> landed;
    EXPECT_TRUE(m_finder.SeekAndWaitForSample(50 * kLength, landed.Put()));
    EXPECT_EQ(Time(), 50 * kLength);
    EXPECT_EQ(m_finder.SeekCount(), 1);
    EXPECT_EQ(m_script->reads, 22);
    // What is handed out is where the seek landed.
    LONGLONG time = 0;
    landed->GetSampleTime(&time);
    EXPECT_EQ(time, 30 * kLength);
}

TEST_F(Finder, ALandingBehindTheTargetIsGoneBackFromByFiveSamples) {
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(position == 50 * kLength ? 52 : position / kLength);
    };
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(Seek(50 * kLength));
    EXPECT_THAT(m_script->positions, ElementsAre(50 * kLength, 45 * kLength));
    EXPECT_EQ(Time(), 50 * kLength);
    EXPECT_EQ(m_finder.SeekCount(), 2);
}

TEST_F(Finder, GoingBackTakesTheFirstSamplesTimeOffAgain) {
    constexpr std::int64_t first = 3 * kLength;
    m_script->samples = SoundSamples(100, kFrames, kRate, first);
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(position == 53 * kLength ? 52
                                                                 : (position - first) / kLength);
    };
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(Seek(50 * kLength));
    // 50 - 5 - 3 on the timeline, which begins at 3.
    EXPECT_THAT(m_script->positions, ElementsAre(53 * kLength, 45 * kLength));
    EXPECT_EQ(Time(), 50 * kLength);
}

TEST_F(Finder, GoingBackEndsAtTheStart) {
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(position == 0 ? 0 : 4);
    };
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(Seek(2 * kLength));
    EXPECT_THAT(m_script->positions, ElementsAre(2 * kLength, 0));
    EXPECT_EQ(Time(), 2 * kLength);
}

TEST_F(Finder, ASourceThatAlwaysLandsBehindIsGivenUp) {
    m_script->landing = [](std::int64_t) { return 60; };
    ASSERT_TRUE(Initialize());
    EXPECT_FALSE(Seek(50 * kLength));
    EXPECT_EQ(m_finder.SeekCount(), 2); // the second one came where the first had
}

TEST_F(Finder, SamplesThatAllHaveOneTimeEndTheWalk) {
    for (SoundSample& sample : m_script->samples) {
        sample = {7 * kLength, 0, 0, -1};
    }
    ASSERT_TRUE(Initialize());
    EXPECT_FALSE(Seek(50 * kLength));
    EXPECT_EQ(m_finder.SeekCount(), 1);
    EXPECT_LT(m_script->reads, 5);
}

TEST_F(Finder, AWalkHasAHundredMoves) {
    m_script->samples = SoundSamples(300, kFrames, kRate);
    m_script->duration = 300 * kLength;
    m_script->landing = [](std::int64_t) { return 0; };
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(Seek(100 * kLength));
    EXPECT_FALSE(Seek(101 * kLength));
    EXPECT_EQ(Time(), 101 * kLength); // reached with the last move, which nobody looked behind
}

TEST_F(Finder, AWalkEndsWithTheStream) {
    m_script->duration = 200 * kLength;
    ASSERT_TRUE(Initialize());
    EXPECT_FALSE(Seek(150 * kLength));
    EXPECT_TRUE(m_finder.HasNullCurrentSample());
}

TEST_F(Finder, ADurationFollowsFromTheBytes) {
    for (SoundSample& sample : m_script->samples) {
        sample.duration = 12'345;
    }
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(Duration(), kLength);
    ASSERT_TRUE(Advance());
    EXPECT_EQ(Duration(), kLength);
    ASSERT_TRUE(Seek(50 * kLength));
    EXPECT_EQ(Duration(), kLength);
}

TEST_F(Finder, SamplesMeetWhateverTheSourceSays) {
    constexpr int rate = 44100;
    constexpr std::int64_t frames = 1024;
    m_script->samples = SoundSamples(100, frames, rate);
    for (SoundSample& sample : m_script->samples) {
        sample.time += sample.time % 3 * 40'000; // a source that is off by milliseconds
    }
    ASSERT_TRUE(Initialize(rate));
    std::int64_t end = Time() + Duration();
    for (int i = 1; i < 100; ++i) {
        ASSERT_TRUE(Advance());
        EXPECT_NEAR(static_cast<double>(Time()), static_cast<double>(end), 1.0) << i;
        EXPECT_EQ(Time(), std::llround(i * frames / 44100.0 * 1e7));
        end = Time() + Duration();
    }
}

TEST_F(Finder, ASeekTrustsTheSourceAgain) {
    ASSERT_TRUE(Initialize());
    m_script->samples[50].time += 300;
    m_script->samples[51].time += 300;
    ASSERT_TRUE(Seek(50 * kLength + 300));
    EXPECT_EQ(Time(), 50 * kLength + 300);
    ASSERT_TRUE(Advance());
    // Counted in frames from the one that is nearest to where the seek landed.
    EXPECT_EQ(Time(), std::llround((240001 + 4800) / 48000.0 * 1e7));
}

TEST_F(Finder, AfterSixtySecondsAStepIsASeek) {
    m_script->samples = SoundSamples(700, kFrames, kRate);
    m_script->duration = 700 * kLength;
    ASSERT_TRUE(Initialize());
    for (int i = 0; i < 599; ++i) {
        ASSERT_TRUE(Advance());
    }
    EXPECT_EQ(m_finder.SeekCount(), 0);
    ASSERT_TRUE(Advance()); // to frame 2880000
    EXPECT_EQ(m_finder.SeekCount(), 1);
    EXPECT_THAT(m_script->positions, ElementsAre(600 * kLength + 1));
    EXPECT_EQ(Time(), 600 * kLength);
    ASSERT_TRUE(Advance());
    EXPECT_EQ(m_finder.SeekCount(), 1);
}

TEST_F(Finder, WithAnIntervalOfNothingEveryStepIsASeek) {
    ASSERT_TRUE(Initialize());
    for (const std::int64_t interval : {std::int64_t{0}, std::int64_t{-5}}) {
        m_finder.SetForcedSeekInterval(interval);
        EXPECT_EQ(m_finder.ForcedSeekInterval(), interval);
        const std::int64_t before = m_finder.SeekCount();
        const std::int64_t time = Time();
        for (int i = 1; i <= 5; ++i) {
            ASSERT_TRUE(Advance());
            EXPECT_EQ(m_finder.SeekCount(), before + i);
            EXPECT_EQ(Time(), time + i * kLength);
        }
    }
}

TEST_F(Finder, AWalkWhoseStepsAreSeeksHasAsManyMoves) {
    constexpr std::int64_t target = 60 * kLength + 5;
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(position == target ? 0 : position / kLength);
    };
    ASSERT_TRUE(Initialize());
    m_finder.SetForcedSeekInterval(0);
    EXPECT_TRUE(Seek(target));
    EXPECT_EQ(Time(), 60 * kLength);
    EXPECT_EQ(m_finder.SeekCount(), 61);
}

TEST_F(Finder, ASourceThatAlwaysLandsShortDoesNotSeekForEver) {
    ASSERT_TRUE(Initialize());
    m_finder.SetForcedSeekInterval(0);
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(std::max<std::int64_t>(position / kLength - 1, 0));
    };
    EXPECT_FALSE(Seek(50 * kLength));
    EXPECT_LE(m_finder.SeekCount(), 102);
}

TEST_F(Finder, ASourceOfEmptySamplesEnds) {
    m_script->samples.assign(100'000, {0, 0, 0, -1});
    ASSERT_TRUE(Initialize());
    int steps = 0;
    while (Advance()) {
        ++steps;
    }
    EXPECT_LE(steps, 1000);
}

TEST_F(Finder, TheEndLeavesNoSampleUntilASeek) {
    ASSERT_TRUE(Initialize());
    ASSERT_TRUE(Seek(99 * kLength));
    EXPECT_FALSE(Advance());
    EXPECT_TRUE(m_finder.HasNullCurrentSample());
    EXPECT_EQ(m_finder.IsTimeWithinCurrentSample(99 * kLength), SampleInRange::NoAnswer);
    EXPECT_FALSE(Advance());
    EXPECT_TRUE(Seek(3 * kLength));
    EXPECT_EQ(Time(), 3 * kLength);
}

TEST_F(Finder, AFailedStepLeavesNoSample) {
    ASSERT_TRUE(Initialize());
    for (const SoundOutcome outcome :
         {SoundOutcome::Failed, SoundOutcome::Refused, SoundOutcome::Nothing, SoundOutcome::Tick}) {
        ASSERT_TRUE(Seek(kLength));
        m_script->outcome = [outcome](int) { return outcome; };
        EXPECT_FALSE(Advance());
        EXPECT_TRUE(m_finder.HasNullCurrentSample());
        m_script->outcome = {};
    }
}

TEST_F(Finder, HandsSamplesOutWithAReference) {
    ASSERT_TRUE(Initialize());
    IMFSample* sample = nullptr;
    ASSERT_TRUE(m_finder.GetCurrentSample(&sample));
    IMFSample* const first = sample;
    first->AddRef(); // ours
    ASSERT_TRUE(m_finder.AdvanceToNextSample(&sample));
    EXPECT_NE(sample, first);
    EXPECT_EQ(first->Release(), 0U); // the finder and the place have given theirs back
    EXPECT_FALSE(m_finder.SeekAndWaitForSample(-1, &sample));
    EXPECT_NE(sample, nullptr); // as it was
    EXPECT_TRUE(m_finder.GetCurrentSample(nullptr));
    m_script->outcome = [](int) { return SoundOutcome::End; };
    EXPECT_FALSE(Advance());
    EXPECT_FALSE(m_finder.GetCurrentSample(&sample));
    EXPECT_EQ(sample, nullptr);
}

TEST_F(Finder, TimesAtTheEdgeOfNumbersDoNoHarm) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    m_script->duration = 0;
    m_script->samples = {{least, 0, kFrames, kMost}, {kMost, 0, kFrames, kMost}};
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(position < 0 ? 0 : 1);
    };
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(Time(), 0);
    EXPECT_FALSE(Seek(kMost - 1)); // nothing to assert but that it comes back
    Advance();
    Advance();
}

} // namespace
} // namespace Zanthe
