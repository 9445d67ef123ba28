#include "zanthe/audio/mf/LegacyMFAudioReader.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/win32/Version.h"
#include "tests/zanthe/audio/mf/ScriptedResampler.h"
#include "tests/zanthe/audio/mf/ScriptedSound.h"

using testing::ElementsAre;
using testing::Pair;

namespace Zanthe {
namespace {

constexpr int kRate = 44100;
constexpr std::int64_t kFrames = 4410; // a tenth of a second
constexpr std::int64_t kLength = 1'000'000;

std::int64_t TimeOf(std::int64_t frame) {
    return std::llround(static_cast<double>(frame) / kRate * 1e7);
}

class OlderSystem {
public:
    OlderSystem() { win32::SetSystemVersion({6, 1, 0}); }

    OlderSystem(const OlderSystem&) = delete;
    OlderSystem& operator=(const OlderSystem&) = delete;

    ~OlderSystem() { win32::SetSystemVersion({}); }
};

// A reader over a hundred samples of a tenth of a second each.
class Legacy : public testing::Test {
protected:
    Legacy() { m_script->duration = 100 * kLength; }

    void Initialize() { ASSERT_EQ(m_reader.Initialize(), S_OK); }

    StereoSound Read(std::int64_t start, unsigned int count) {
        return ReadSpan(m_reader, start, count);
    }

    Script m_script = MakeSoundScript(SoundSamples(100, kFrames, kRate));
    ScriptedSoundOpening m_opening{m_script};
    LegacyMFAudioReader m_reader{L"a.wma", false};
};

TEST_F(Legacy, IsNothingBeforeItIsInitialized) {
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
    EXPECT_EQ(m_reader.StreamLength(), -1);
    EXPECT_EQ(m_reader.NumSeeks(), -1);
    EXPECT_EQ(m_reader.NumReseeks(), -1);
    EXPECT_EQ(m_reader.NumTimeAdjusts(), -1);
}

TEST_F(Legacy, CountsFromNoughtOnceItIs) {
    Initialize();
    EXPECT_EQ(m_script->url, L"a.wma");
    EXPECT_EQ(m_reader.StreamLength(), 100 * kLength);
    EXPECT_EQ(m_reader.NumSeeks(), 0);
    EXPECT_EQ(m_reader.NumReseeks(), 0);
    EXPECT_EQ(m_reader.NumTimeAdjusts(), 0);
    EXPECT_EQ(m_reader.Initialize(), S_OK);
    EXPECT_EQ(m_script->reads, 1);
}

TEST_F(Legacy, AsksForTheCanonicalFormat) {
    Initialize();
    IMFMediaType& type = *m_script->typeSet;
    GUID subtype{};
    type.GetGUID(MF_MT_SUBTYPE, &subtype);
    EXPECT_EQ(subtype, MFAudioFormat_Float);
    EXPECT_EQ(MFGetAttributeUINT32(&type, MF_MT_AUDIO_AVG_BYTES_PER_SECOND, 0), 352800U);
    EXPECT_EQ(MFGetAttributeUINT32(&type, MF_MT_AUDIO_BITS_PER_SAMPLE, 0), 32U);
    EXPECT_EQ(MFGetAttributeUINT32(&type, MF_MT_AUDIO_NUM_CHANNELS, 0), 2U);
    EXPECT_EQ(MFGetAttributeUINT32(&type, MF_MT_AUDIO_SAMPLES_PER_SECOND, 0), 44100U);
    EXPECT_EQ(MFGetAttributeUINT32(&type, MF_MT_AUDIO_BLOCK_ALIGNMENT, 0), 8U);
    EXPECT_EQ(MFGetAttributeUINT32(&type, MF_MT_FIXED_SIZE_SAMPLES, 0), 1U);
    EXPECT_THAT(m_script->selections, ElementsAre(Pair(MF_SOURCE_READER_ALL_STREAMS, FALSE),
                                                  Pair(MF_SOURCE_READER_FIRST_AUDIO_STREAM, TRUE)));
}

TEST_F(Legacy, WhatFailsWhileOpeningIsTold) {
    for (HRESULT* step : {&m_script->openResult, &m_script->selectResult,
                          &m_script->nativeTypeResult, &m_script->setTypeResult}) {
        *step = MF_E_NOT_FOUND;
        EXPECT_EQ(m_reader.Initialize(), MF_E_NOT_FOUND);
        EXPECT_EQ(m_reader.NumSeeks(), -1);
        *step = S_OK;
    }
    Initialize();
}

TEST_F(Legacy, AFirstSampleThatFailsLeavesItInitialized) {
    m_script->outcome = [](int read) {
        return read == 0 ? SoundOutcome::Failed : SoundOutcome::Sample;
    };
    EXPECT_EQ(m_reader.Initialize(), E_FAIL);
    EXPECT_EQ(m_reader.NumSeeks(), 0);
    EXPECT_TRUE(Read(0, 100) == Ramp(0, 100));
}

TEST_F(Legacy, NeedsTwoChannels) {
    Initialize();
    float plane[4] = {9, 9, 9, 9};
    for (const std::size_t count : {0U, 1U, 3U}) {
        std::vector<float*> channels(count, plane);
        EXPECT_EQ(m_reader.FillAudioBuffer(0, 4, channels), 0U);
    }
    EXPECT_EQ(plane[0], 9);
}

TEST_F(Legacy, ReadsOnWithoutASeek) {
    Initialize();
    EXPECT_TRUE(Read(0, 1000) == Ramp(0, 1000));
    EXPECT_TRUE(Read(1000, 10'000) == Ramp(1000, 10'000));
    EXPECT_TRUE(Read(11'000, 2230) == Ramp(11'000, 2230)); // to the end of a sample
    EXPECT_TRUE(Read(13'230, 5000) == Ramp(13'230, 5000));
    EXPECT_EQ(m_reader.NumSeeks(), 0);
    EXPECT_EQ(m_script->reads, 5);
}

TEST_F(Legacy, AnywhereElseItSeeks) {
    Initialize();
    for (const std::int64_t start : {200'000, 17, 300'000, 4410, 440'990}) {
        const std::int32_t before = m_reader.NumSeeks();
        EXPECT_TRUE(Read(start, 10) == Ramp(start, 10)) << start;
        EXPECT_EQ(m_reader.NumSeeks(), before + 1);
    }
    EXPECT_EQ(m_reader.NumReseeks(), 0);
    EXPECT_EQ(m_script->positions.front(), TimeOf(200'000));
}

TEST_F(Legacy, ReadsAcrossSamplesBehindASeek) {
    Initialize();
    EXPECT_TRUE(Read(123'456, 50'000) == Ramp(123'456, 50'000));
    EXPECT_TRUE(Read(173'456, 50'000) == Ramp(173'456, 50'000));
    EXPECT_EQ(m_reader.NumSeeks(), 1);
}

TEST_F(Legacy, AReadPastTheEndReturnsWhatThereIs) {
    Initialize();
    EXPECT_TRUE(Read(440'950, 100) == Ramp(440'950, 50));
    EXPECT_EQ(Read(441'000, 10).Frames(), 0U);
    EXPECT_TRUE(Read(0, 10) == Ramp(0, 10));
}

TEST_F(Legacy, BehindTheToldLengthNothingIsSought) {
    Initialize();
    EXPECT_EQ(Read(441'001, 10).Frames(), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::max(), 10).Frames(), 0U);
    EXPECT_EQ(m_reader.NumSeeks(), 0);
}

TEST_F(Legacy, WithoutALengthOnlyReadingOnIsPossible) {
    m_script->duration = 0;
    Initialize();
    EXPECT_EQ(m_reader.StreamLength(), 0);
    EXPECT_TRUE(Read(0, 10'000) == Ramp(0, 10'000));
    EXPECT_TRUE(Read(10'000, 10'000) == Ramp(10'000, 10'000));
    EXPECT_EQ(Read(300'000, 10).Frames(), 0U);
}

TEST_F(Legacy, NothingIsBeforeTheStart) {
    Initialize();
    EXPECT_EQ(Read(-1, 10).Frames(), 0U);
    EXPECT_EQ(m_reader.NumSeeks(), 0);
}

TEST_F(Legacy, TimesCountFromTheFirstSample) {
    // A seek goes to the time itself: the script answers as if its own clock began at 0 there.
    m_script->samples = SoundSamples(100, kFrames, kRate, 5 * kLength);
    m_script->landing = [](std::int64_t position) {
        return static_cast<std::size_t>(position / kLength);
    };
    Initialize();
    EXPECT_TRUE(Read(0, 10) == Ramp(0, 10));
    EXPECT_TRUE(Read(220'500, 10) == Ramp(220'500, 10));
    EXPECT_THAT(m_script->positions, ElementsAre(TimeOf(220'500)));
    EXPECT_EQ(m_reader.NumReseeks(), 0);
}

TEST_F(Legacy, AMinuteWithoutASeekForcesOne) {
    m_script->samples = SoundSamples(700, kFrames, kRate);
    m_script->duration = 700 * kLength;
    Initialize();
    EXPECT_EQ(Read(0, 2'646'000 - 4410).Frames(), 2'641'590U);
    EXPECT_EQ(Read(2'641'590, 0).Frames(), 0U);
    EXPECT_EQ(m_reader.NumSeeks(), 0);
    EXPECT_EQ(Read(0, 1).Frames(), 1U); // back, to begin a run of exactly a minute
    EXPECT_EQ(m_reader.NumSeeks(), 1);
    EXPECT_EQ(Read(1, 2'645'999).Frames(), 2'645'999U);
    EXPECT_EQ(m_reader.NumSeeks(), 1);
    EXPECT_TRUE(Read(2'646'000, 100) == Ramp(2'646'000, 100));
    EXPECT_EQ(m_reader.NumSeeks(), 2);
    EXPECT_TRUE(Read(2'646'100, 10'000) == Ramp(2'646'100, 10'000));
    EXPECT_EQ(m_reader.NumSeeks(), 2);
}

TEST_F(Legacy, AFrameShortOfAMinuteForcesNone) {
    m_script->samples = SoundSamples(700, kFrames, kRate);
    m_script->duration = 700 * kLength;
    --m_script->samples[599].frames;
    Initialize();
    EXPECT_EQ(Read(0, 2'645'999).Frames(), 2'645'999U);
    EXPECT_EQ(Read(2'645'999, 10).Frames(), 10U);
    EXPECT_EQ(m_reader.NumSeeks(), 0);
}

TEST_F(Legacy, WhereNothingCanBeSoughtNoSeekIsForced) {
    m_script->samples = SoundSamples(700, kFrames, kRate);
    m_script->duration = 600 * kLength;
    Initialize();
    EXPECT_EQ(Read(0, 2'646'000).Frames(), 2'646'000U);
    EXPECT_TRUE(Read(2'646'000, 10'000) == Ramp(2'646'000, 10'000));
    EXPECT_EQ(m_reader.NumSeeks(), 0);
}

TEST_F(Legacy, AForcedSeekHappensWithinASampleToo) {
    m_script->samples = SoundSamples(700, kFrames, kRate);
    m_script->duration = 700 * kLength;
    Initialize();
    EXPECT_EQ(Read(0, 2'646'001).Frames(), 2'646'001U);
    EXPECT_TRUE(Read(2'646'001, 10) == Ramp(2'646'001, 10)); // the current sample has it
    EXPECT_EQ(m_reader.NumSeeks(), 1);
}

TEST_F(Legacy, ALandingBeforeTheTargetIsReadUpFrom) {
    m_script->landing = [](std::int64_t) { return 20; };
    Initialize();
    EXPECT_TRUE(Read(30 * kFrames + 7, 100) == Ramp(30 * kFrames + 7, 100));
    EXPECT_EQ(m_reader.NumSeeks(), 1);
    EXPECT_EQ(m_reader.NumReseeks(), 0);
}

TEST_F(Legacy, ALandingThatEndsAtTheTargetIsAGoodOne) {
    m_script->landing = [](std::int64_t) { return 29; };
    Initialize();
    m_script->outcome = [](int read) {
        return read == 2 ? SoundOutcome::End : SoundOutcome::Sample;
    };
    EXPECT_EQ(Read(30 * kFrames, 10).Frames(), 0U); // nothing came behind it
    EXPECT_EQ(m_reader.NumReseeks(), 0);
    EXPECT_TRUE(Read(30 * kFrames, 10) == Ramp(30 * kFrames, 10)); // gone on from there
    EXPECT_EQ(m_reader.NumSeeks(), 1);
}

TEST_F(Legacy, ThreeLandingsOnOnePlaceTakeItForTheTarget) {
    m_script->landing = [](std::int64_t) { return 52; };
    Initialize();
    EXPECT_TRUE(Read(50 * kFrames, 100) == Ramp(52 * kFrames, 100));
    EXPECT_EQ(m_reader.NumSeeks(), 3);
    EXPECT_EQ(m_reader.NumReseeks(), 2);
    EXPECT_EQ(m_reader.NumTimeAdjusts(), 0);
    // From there on it goes by what was taken.
    EXPECT_TRUE(Read(52 * kFrames + 100, 100) == Ramp(52 * kFrames + 100, 100));
    EXPECT_EQ(m_reader.NumSeeks(), 3);
}

TEST_F(Legacy, APlaceIsTakenForTheTargetOnlyOnce) {
    m_script->samples = SoundSamples(700, kFrames, kRate);
    m_script->duration = 700 * kLength;
    int seeks = 0;
    // Forced, so that the place that was taken is sought as well, and missed three times on another
    // place.
    m_script->landing = [&seeks](std::int64_t position) {
        ++seeks;
        return static_cast<std::size_t>(seeks <= 3 ? 652 : (seeks <= 6 ? 655 : position / kLength));
    };
    Initialize();
    EXPECT_EQ(Read(0, 2'646'001).Frames(), 2'646'001U);
    // Of the three samples that were missed, a fifth.
    const std::int64_t reached = 652 * kFrames + 3 * kFrames / 5;
    EXPECT_TRUE(Read(2'646'001, 10) == Ramp(reached, 10));
    EXPECT_EQ(m_reader.NumSeeks(), 7);
    EXPECT_EQ(m_reader.NumReseeks(), 5);
    EXPECT_EQ(m_reader.NumTimeAdjusts(), 1); // which a second taking over would have spared
}

TEST_F(Legacy, FromTheSixthAttemptOnTheTargetMoves) {
    std::vector<std::int64_t> asked;
    m_script->landing = [&](std::int64_t position) {
        asked.push_back(position);
        const auto at = static_cast<std::size_t>(position / kLength);
        return asked.size() <= 7 ? 60 + asked.size() % 2 : at;
    };
    Initialize();
    const std::int64_t target = 50 * kFrames;
    const StereoSound read = Read(target, 100);
    EXPECT_EQ(m_reader.NumReseeks(), 7);
    EXPECT_EQ(m_reader.NumTimeAdjusts(), 2);
    EXPECT_EQ(m_reader.NumSeeks(), 8);
    // A fifth of the miss each: landings on sample 60 and then 61.
    const std::int64_t first = target + (60 * kFrames - target) / 5;
    const std::int64_t second = first + (61 * kFrames - first) / 5;
    ASSERT_EQ(asked.size(), 8U);
    EXPECT_THAT(std::vector(asked.begin(), asked.begin() + 6), testing::Each(TimeOf(target)));
    EXPECT_EQ(asked[6], TimeOf(first));
    EXPECT_EQ(asked[7], TimeOf(second));
    EXPECT_TRUE(read == Ramp(second, 100));
}

TEST_F(Legacy, TheFractionOfAFifthIsCutOff) {
    std::vector<std::int64_t> asked;
    m_script->samples = SoundSamples(100, 3, kRate);
    m_script->duration = 100 * kLength;
    m_script->landing = [&](std::int64_t position) {
        asked.push_back(position);
        return 20 + asked.size() % 2; // always behind frame 50
    };
    Initialize();
    Read(50, 1);
    ASSERT_GT(asked.size(), 7U);
    EXPECT_EQ(asked[6], TimeOf(50 + (60 - 50) / 5));
    EXPECT_EQ(asked[7], TimeOf(52 + (63 - 52) / 5));
}

TEST_F(Legacy, AfterThirtyAttemptsNothingIsRead) {
    int seeks = 0;
    m_script->samples = SoundSamples(100'000, 10, kRate);
    m_script->duration = 1000 * kLength;
    m_script->landing = [&seeks](std::int64_t position) {
        // Always far behind, and never twice on one place.
        return static_cast<std::size_t>(position * kRate / 10'000'000 / 10 + 1000 + ++seeks);
    };
    Initialize();
    float plane[10] = {9};
    std::vector<float*> channels{plane, plane};
    EXPECT_EQ(m_reader.FillAudioBuffer(5000, 10, channels), 0U);
    EXPECT_EQ(plane[0], 9);
    EXPECT_EQ(m_reader.NumReseeks(), 30);
    EXPECT_EQ(m_reader.NumTimeAdjusts(), 25);
    EXPECT_EQ(m_reader.NumSeeks(), 31);
}

TEST_F(Legacy, ASearchThatFailedIsNotReadOnFrom) {
    Initialize();
    EXPECT_TRUE(Read(0, 4410) == Ramp(0, 4410));
    m_script->outcome = [](int) { return SoundOutcome::Tick; };
    EXPECT_EQ(Read(200'000, 10).Frames(), 0U);
    m_script->outcome = {};
    EXPECT_TRUE(Read(4410, 10) == Ramp(4410, 10));
}

TEST_F(Legacy, ATickEndsTheSearchForASample) {
    Initialize();
    m_script->outcome = [](int read) {
        return read == 1 ? SoundOutcome::Tick : SoundOutcome::Sample;
    };
    EXPECT_EQ(Read(300'000, 10).Frames(), 0U);
    EXPECT_TRUE(Read(300'000, 10) == Ramp(300'000, 10));
}

TEST_F(Legacy, ATickWithASampleEndsTheSearchToo) {
    Initialize();
    m_script->outcome = [](int read) {
        return read == 1 ? SoundOutcome::TickWithSample : SoundOutcome::Sample;
    };
    EXPECT_EQ(Read(300'000, 10).Frames(), 0U);
}

TEST_F(Legacy, ManyTicksAreReadPastOnTheWayOn) {
    Initialize();
    m_script->outcome = [](int read) {
        return read > 1 && read < 100 ? SoundOutcome::Tick : SoundOutcome::Sample;
    };
    EXPECT_TRUE(Read(0, 20'000) == Ramp(0, 20'000));
}

TEST_F(Legacy, ATickIsReadPastOnTheWayOn) {
    Initialize();
    m_script->outcome = [](int read) {
        return read == 1 || read == 2 || read == 5 ? SoundOutcome::Tick : SoundOutcome::Sample;
    };
    EXPECT_TRUE(Read(0, 20'000) == Ramp(0, 20'000));
    EXPECT_EQ(m_reader.NumSeeks(), 0);
}

TEST_F(Legacy, TicksWithoutEndAreAnEnd) {
    Initialize();
    m_script->outcome = [](int) { return SoundOutcome::Tick; };
    EXPECT_TRUE(Read(0, 20'000) == Ramp(0, 4410));
}

TEST_F(Legacy, TheLastSampleThatSaysSoIsNotRead) {
    Initialize();
    m_script->outcome = [](int) { return SoundOutcome::EndWithSample; };
    EXPECT_TRUE(Read(0, 20'000) == Ramp(0, 4410));
    EXPECT_EQ(Read(300'000, 10).Frames(), 0U);
}

TEST_F(Legacy, NoSampleAndNoReasonIsAnEnd) {
    Initialize();
    m_script->outcome = [](int) { return SoundOutcome::Nothing; };
    EXPECT_TRUE(Read(0, 20'000) == Ramp(0, 4410));
    EXPECT_EQ(Read(300'000, 10).Frames(), 0U);
}

TEST_F(Legacy, EmptySamplesWithoutEndAreAnEnd) {
    m_script->samples.assign(100'000, {0, 0, 0, -1});
    Initialize();
    EXPECT_EQ(Read(5, 10).Frames(), 0U);
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
}

TEST_F(Legacy, OverASourceItIsOpenAtOnce) {
    LegacyMFAudioReader reader(MakeScriptedSource().Get());
    EXPECT_EQ(reader.NumSeeks(), 0);
    EXPECT_EQ(reader.StreamLength(), 100 * kLength);
    EXPECT_EQ(reader.Initialize(), S_OK);
    EXPECT_EQ(m_script->reads, 0);
    EXPECT_TRUE(ReadSpan(reader, 0, 10'000) == Ramp(0, 10'000));
    EXPECT_TRUE(ReadSpan(reader, 200'000, 10'000) == Ramp(200'000, 10'000));
    EXPECT_EQ(reader.NumSeeks(), 2);
}

TEST_F(Legacy, OverASourceThatFailsItAnswersNothing) {
    for (HRESULT* step :
         {&m_script->openResult, &m_script->selectResult, &m_script->setTypeResult}) {
        *step = E_FAIL;
        LegacyMFAudioReader reader(MakeScriptedSource().Get());
        EXPECT_EQ(ReadSpan(reader, 0, 10).Frames(), 0U);
        *step = S_OK;
    }
    LegacyMFAudioReader none(static_cast<IMFMediaSource*>(nullptr));
    EXPECT_EQ(ReadSpan(none, 0, 10).Frames(), 0U);
}

// The same on a system whose source readers do not convert, over a source of floats.
class LegacyResampled : public Legacy {
protected:
    LegacyResampled() {
        m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_Float);
        m_script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 32);
    }

    OlderSystem m_system;
    std::shared_ptr<ResamplerScript> m_resampler = std::make_shared<ResamplerScript>();
    ScriptedResampling m_resampling{m_resampler};
};

TEST_F(LegacyResampled, TheSourceGivesWhatItHas) {
    Initialize();
    EXPECT_EQ(MFGetAttributeUINT32(m_script->typeSet.Get(), MF_MT_AUDIO_SAMPLES_PER_SECOND, 0),
              44100U);
    EXPECT_EQ(MFGetAttributeUINT32(m_script->typeSet.Get(), MF_MT_FIXED_SIZE_SAMPLES, 7), 7U);
    EXPECT_EQ(m_resampler->inputType, m_script->typeSet);
    EXPECT_EQ(MFGetAttributeUINT32(m_resampler->outputType.Get(), MF_MT_AUDIO_BLOCK_ALIGNMENT, 0),
              8U);
    EXPECT_EQ(MFGetAttributeUINT32(m_resampler->outputType.Get(), MF_MT_FIXED_SIZE_SAMPLES, 7), 7U);
    EXPECT_THAT(m_resampler->messages, ElementsAre("begin"));
}

TEST_F(LegacyResampled, IntegersAreReadAs16BitsWhereTheyDoNotSay) {
    com::ComPtr<IMFMediaType> native;
    MFCreateMediaType(native.Put());
    native->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, 3);
    native->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, 32000);
    m_script->nativeType = native;
    Initialize();
    GUID subtype{};
    m_script->typeSet->GetGUID(MF_MT_SUBTYPE, &subtype);
    EXPECT_EQ(subtype, MFAudioFormat_PCM);
    EXPECT_EQ(MFGetAttributeUINT32(m_script->typeSet.Get(), MF_MT_AUDIO_BITS_PER_SAMPLE, 0), 16U);
    EXPECT_EQ(MFGetAttributeUINT32(m_script->typeSet.Get(), MF_MT_AUDIO_BLOCK_ALIGNMENT, 0), 6U);
}

TEST_F(LegacyResampled, AChannelHasWholeBytes) {
    m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_PCM);
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 20);
    Initialize();
    EXPECT_EQ(MFGetAttributeUINT32(m_script->typeSet.Get(), MF_MT_AUDIO_BLOCK_ALIGNMENT, 0), 4U);
}

TEST_F(LegacyResampled, WhatGoesInIsCountedInTheSourcesFrames) {
    m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_PCM);
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 16);
    m_script->sampleBytes = 2;
    Initialize();
    Read(100, 1);
    ASSERT_FALSE(m_resampler->inputBytes.empty());
    EXPECT_EQ(m_resampler->inputBytes.front(), static_cast<std::size_t>(kFrames - 100) * 4);
}

TEST_F(LegacyResampled, AMinuteWithoutASeekForcesOne) {
    m_script->samples = SoundSamples(700, kFrames, kRate);
    m_script->duration = 700 * kLength;
    Initialize();
    EXPECT_EQ(Read(0, 2'646'000).Frames(), 2'646'000U);
    m_resampler->messages.clear();
    EXPECT_TRUE(Read(2'646'000, 10) == Ramp(2'646'000, 10));
    EXPECT_EQ(m_reader.NumSeeks(), 1);
    EXPECT_EQ(m_resampler->messages.front(), "flush");
}

TEST_F(LegacyResampled, WhatFailsWhileOpeningIsTold) {
    m_resampler->createResult = E_FAIL;
    EXPECT_LT(m_reader.Initialize(), 0);
    m_resampler->createResult = S_OK;
    for (HRESULT* step : {&m_resampler->inputTypeResult, &m_resampler->outputTypeResult}) {
        *step = MF_E_INVALIDMEDIATYPE;
        EXPECT_EQ(m_reader.Initialize(), MF_E_INVALIDMEDIATYPE);
        *step = S_OK;
    }
    m_script->nativeType->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, 0);
    EXPECT_EQ(m_reader.Initialize(), MF_E_INVALIDMEDIATYPE);
}

TEST_F(LegacyResampled, AJumpFlushesAndReadingOnDrains) {
    Initialize();
    EXPECT_TRUE(Read(0, 100) == Ramp(0, 100));
    EXPECT_TRUE(Read(100, 5000) == Ramp(100, 5000));
    EXPECT_TRUE(Read(200'007, 100) == Ramp(200'007, 100));
    EXPECT_THAT(m_resampler->messages,
                ElementsAre("begin", "flush", "input", "drain", "input", "flush", "input"));
    EXPECT_EQ(m_reader.NumSeeks(), 1);
}

TEST_F(LegacyResampled, OutputIsPulledAFrameAtATime) {
    Initialize();
    EXPECT_EQ(Read(0, 100).Frames(), 100U);
    EXPECT_EQ(m_resampler->outputs, 100);
}

TEST_F(LegacyResampled, APlaceThatIsNotFoundIsNotReadOnFrom) {
    Initialize();
    EXPECT_EQ(Read(441'001, 10).Frames(), 0U);
    EXPECT_EQ(Read(441'001, 10).Frames(), 0U);
}

TEST_F(LegacyResampled, TheEndIsAnEnd) {
    Initialize();
    EXPECT_TRUE(Read(440'990, 100) == Ramp(440'990, 10));
}

TEST_F(LegacyResampled, AResamplerThatOnlyFailsIsAnEnd) {
    Initialize();
    m_resampler->outputResult = E_FAIL;
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
    m_resampler->outputResult = S_OK;
    m_resampler->inputResult = MF_E_NOTACCEPTING;
    EXPECT_EQ(Read(200'000, 10).Frames(), 0U);
}

} // namespace
} // namespace Zanthe
