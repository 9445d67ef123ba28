#include "zanthe/audio/mf/MFAudioReaderWin7.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "tests/zanthe/audio/mf/ScriptedResampler.h"
#include "tests/zanthe/audio/mf/ScriptedSound.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

constexpr std::int64_t kFrames = 1000;

// A reader over floats at a rate of the test's choice, through a resampler that hands them on: what
// comes out shows which frames of the source went in.
class Win7 : public testing::Test {
protected:
    void Initialize(int rate = 44100, std::int64_t frames = kFrames) {
        m_script->samples = SoundSamples(400, frames, rate);
        m_script->duration = m_script->samples.back().time + 250'000;
        m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFAudioFormat_Float);
        m_script->nativeType->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, 32);
        m_script->nativeType->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, static_cast<UINT32>(rate));
        ASSERT_TRUE(m_reader.Initialize(12345));
    }

    StereoSound Read(std::int64_t start, unsigned int count) {
        return ReadSpan(m_reader, start, count);
    }

    Script m_script = MakeSoundScript({});
    ScriptedSoundOpening m_opening{m_script};
    std::shared_ptr<ResamplerScript> m_resampler = std::make_shared<ResamplerScript>();
    ScriptedResampling m_resampling{m_resampler};
    MFAudioReaderWin7 m_reader{std::string("a.wma")};
};

TEST_F(Win7, PutsAResamplerBehindTheSource) {
    Initialize(32000);
    EXPECT_EQ(MFGetAttributeUINT32(m_resampler->inputType.Get(), MF_MT_AUDIO_SAMPLES_PER_SECOND, 0),
              32000U);
    IMFMediaType& output = *m_resampler->outputType;
    EXPECT_EQ(MFGetAttributeUINT32(&output, MF_MT_AUDIO_SAMPLES_PER_SECOND, 0), 44100U);
    EXPECT_EQ(MFGetAttributeUINT32(&output, MF_MT_AUDIO_BLOCK_ALIGNMENT, 0), 8U);
    EXPECT_EQ(MFGetAttributeUINT32(&output, MF_MT_FIXED_SIZE_SAMPLES, 7), 7U);
    EXPECT_THAT(m_resampler->messages, ElementsAre("begin"));
    EXPECT_EQ(m_resampler->infos, 1);
}

TEST_F(Win7, TellsTheResamplerOfItsEnd) {
    m_script->samples = SoundSamples(1, kFrames, 44100);
    {
        MFAudioReaderWin7 reader(MakeScriptedSource().Get());
        EXPECT_TRUE(reader.Initialize(0));
        EXPECT_TRUE(reader.Initialize(0)); // once
    }
    EXPECT_THAT(m_resampler->messages, ElementsAre("begin", "end"));
}

TEST_F(Win7, AnswersNothingBeforeItIsInitializedAndWithoutAResampler) {
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
    m_resampler->createResult = E_FAIL;
    Initialize();
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
}

TEST_F(Win7, AReadOfNothingChangesNothing) {
    Initialize();
    EXPECT_EQ(Read(0, 100).Frames(), 100U);
    EXPECT_EQ(Read(300'000, 0).Frames(), 0U);
    EXPECT_EQ(m_reader.SeekCount(), 0);
    EXPECT_TRUE(Read(100, 100) == Ramp(100, 100)); // goes on
    EXPECT_THAT(m_resampler->messages, ElementsAre("begin", "flush", "input", "drain"));
}

TEST_F(Win7, NeedsTwoChannels) {
    Initialize();
    std::vector<float*> none;
    EXPECT_EQ(m_reader.FillAudioBuffer(0, 10, none), 0U);
}

TEST_F(Win7, ReadingOnDrainsAndContinues) {
    Initialize();
    EXPECT_TRUE(Read(0, 1500) == Ramp(0, 1500));
    EXPECT_TRUE(Read(1500, 1500) == Ramp(1500, 1500));
    EXPECT_TRUE(Read(3000, 5) == Ramp(3000, 5));
    EXPECT_EQ(m_reader.SeekCount(), 0);
    EXPECT_THAT(m_resampler->messages, ElementsAre("begin", "flush", "input", "input", "drain",
                                                   "input", "drain", "input"));
}

TEST_F(Win7, ADelayInTheResamplerIsNoSeam) {
    m_resampler->delay = 32;
    Initialize();
    EXPECT_TRUE(Read(0, 1500) == Ramp(0, 1500));
    EXPECT_TRUE(Read(1500, 1500) == Ramp(1500, 1500));
}

// Some of their times are rounded up and some down.
TEST_F(Win7, RoundedTimesNeitherSkipNorDoubleAFrame) {
    for (const std::int64_t frames : {1024, 1152, 441, 1023}) {
        m_script->samples.clear();
        Initialize(44100, frames);
        MFAudioReaderWin7 reader(MakeScriptedSource().Get());
        ASSERT_TRUE(reader.Initialize(0));
        StereoSound joined;
        for (int i = 0; i < 30; ++i) {
            joined.Append(ReadSpan(reader, static_cast<std::int64_t>(joined.Frames()), 4321));
        }
        EXPECT_TRUE(joined == Ramp(0, std::size_t{30} * 4321)) << frames;
        EXPECT_TRUE(ReadSpan(reader, 150'000, 9000) == Ramp(150'000, 9000)) << frames;
    }
}

TEST_F(Win7, AnyOtherReadFlushes) {
    Initialize();
    EXPECT_TRUE(Read(0, 100) == Ramp(0, 100));
    EXPECT_TRUE(Read(50, 100) == Ramp(50, 100));
    EXPECT_TRUE(Read(300'000, 100) == Ramp(300'000, 100));
    EXPECT_TRUE(Read(200'000, 100) == Ramp(200'000, 100));
    EXPECT_THAT(m_resampler->messages, ElementsAre("begin", "flush", "input", "flush", "input",
                                                   "flush", "input", "flush", "input"));
    EXPECT_EQ(m_reader.SeekCount(), 2);
}

TEST_F(Win7, PositionsBecomeTheSources) {
    Initialize(48000);
    EXPECT_TRUE(Read(147'000, 10) == Ramp(160'000, 10));
    EXPECT_GT(m_reader.GetPresentationLength(), 0);
}

TEST_F(Win7, AReadPastTheEndReturnsWhatThereIs) {
    Initialize();
    EXPECT_TRUE(Read(399'990, 100) == Ramp(399'990, 10));
    EXPECT_EQ(Read(500'000, 100).Frames(), 0U);
    EXPECT_EQ(Read(-1, 100).Frames(), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::max(), 100).Frames(), 0U);
}

TEST_F(Win7, AResamplerThatTakesMuchBeforeItGivesIsFed) {
    m_resampler->delay = 2500;
    Initialize();
    EXPECT_TRUE(Read(0, 1500) == Ramp(0, 1500));
    EXPECT_THAT(m_resampler->messages,
                ElementsAre("begin", "flush", "input", "input", "input", "input"));
}

TEST_F(Win7, EmptySamplesAreReadPast) {
    Initialize();
    m_script->samples.insert(m_script->samples.begin() + 1, 7, {226'757, 1000, 0, -1});
    EXPECT_TRUE(Read(0, 3000) == Ramp(0, 3000));
}

TEST_F(Win7, AtTheEndItIsPulledOnceMore) {
    m_resampler->mostAtOnce = 10;
    Initialize();
    // What came in last gives ten frames, and the end of the stream ten more.
    EXPECT_TRUE(Read(399'970, 100) == Ramp(399'970, 20));
    EXPECT_EQ(m_resampler->outputs, 2);
}

TEST_F(Win7, AReadThatFellShortIsGoneOnFromWhereItStopped) {
    Initialize();
    m_script->outcome = [](int read) {
        return read == 2 ? SoundOutcome::Failed : SoundOutcome::Sample;
    };
    EXPECT_TRUE(Read(0, 5000) == Ramp(0, 2000));
    EXPECT_TRUE(Read(2000, 100) == Ramp(2000, 100));
    EXPECT_EQ(m_resampler->messages.back(), "input");
    EXPECT_EQ(m_resampler->messages.end()[-2], "drain");
    EXPECT_TRUE(Read(7000, 100) == Ramp(7000, 100));
    EXPECT_EQ(m_resampler->messages.end()[-2], "flush");
}

TEST_F(Win7, ARateWithoutAConversionIsReadFromItsStart) {
    Initialize(12345);
    EXPECT_TRUE(Read(50'000, 10) == Ramp(0, 10));
    EXPECT_EQ(Read(-1, 10).Frames(), 0U);
}

TEST_F(Win7, AResamplerThatOnlyFailsIsAnEnd) {
    Initialize();
    m_resampler->outputResult = E_FAIL;
    EXPECT_EQ(Read(0, 10).Frames(), 0U);
    EXPECT_EQ(m_resampler->outputs, 1);
    m_resampler->outputResult = S_OK;
    m_resampler->inputResult = MF_E_NOTACCEPTING;
    EXPECT_EQ(Read(200'000, 10).Frames(), 0U);
}

} // namespace
} // namespace Zanthe
