#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"
#include "tests/platform/av/SoundFiles.h"
#include "tests/platform/mf/Readers.h"
#include "tests/platform/mf/Sounds.h"
#include "tests/support/TestMedia.h"

namespace {

com::ComPtr<IMFMediaType> NativeType(const std::string& name) {
    const auto reader = OpenReader(MadeMedia("sound-exact/" + name), {});
    com::ComPtr<IMFMediaType> type;
    EXPECT_EQ(reader->GetNativeMediaType(kSound, 0, type.Put()), S_OK) << name;
    return type;
}

UINT32 Number(IMFMediaType& type, REFGUID key) {
    return MFGetAttributeUINT32(&type, key, 0);
}

TEST(NativeSoundType, TellsSamplesAsTheyAre) {
    const auto type = NativeType("pcm-24.wav");
    EXPECT_EQ(SubtypeOf(*type), MFAudioFormat_PCM);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_BITS_PER_SAMPLE), 24U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_NUM_CHANNELS), 2U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_SAMPLES_PER_SECOND), 48000U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_BLOCK_ALIGNMENT), 6U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_AVG_BYTES_PER_SECOND), 288000U);
    EXPECT_EQ(SubtypeOf(*NativeType("pcm-float.wav")), MFAudioFormat_Float);
    EXPECT_EQ(SubtypeOf(*NativeType("pcm-big-endian.mov")), MFAudioFormat_PCM);
    EXPECT_EQ(Number(*NativeType("pcm-extensible-6.wav"), MF_MT_AUDIO_CHANNEL_MASK), 0x3FU);
}

TEST(NativeSoundType, NamesTheCodec) {
    EXPECT_EQ(SubtypeOf(*NativeType("aac-stereo.m4a")), MFAudioFormat_AAC);
    EXPECT_EQ(SubtypeOf(*NativeType("mp3-44100.mp4")), MFAudioFormat_MP3);
    EXPECT_EQ(SubtypeOf(*NativeType("mp2.ts")), MFAudioFormat_MPEG);
    EXPECT_EQ(SubtypeOf(*NativeType("ac3.m2ts")), MFAudioFormat_Dolby_AC3);
    EXPECT_EQ(SubtypeOf(*NativeType("eac3.mp4")), MFAudioFormat_Dolby_DDPlus);
    EXPECT_EQ(SubtypeOf(*NativeType("alac-16.m4a")), MFAudioFormat_ALAC);
    EXPECT_EQ(SubtypeOf(*NativeType("flac.flac")), MFAudioFormat_FLAC);
    EXPECT_EQ(SubtypeOf(*NativeType("opus.mp4")), MFAudioFormat_Opus);
    EXPECT_EQ(SubtypeOf(*NativeType("wma2.wma")), MFAudioFormat_WMAudioV8);
    EXPECT_EQ(SubtypeOf(*NativeType("a-law.wav")), CodedSubtype(6));
    EXPECT_EQ(SubtypeOf(*NativeType("adpcm-ms.wav")), CodedSubtype(2));
}

TEST(SoundReader, GivesTheProgramsFloats) {
    for (const char* name : {"aac-stereo.m4a", "aac-44100.m2ts", "wma2.wma", "pcm-float.wav"}) {
        const auto reader = OpenSound(name, SoundType(MFAudioFormat_Float, 32, 2));
        const SoundRun run = ReadSound(*reader);
        EXPECT_TRUE(run.ended);
        auto expected =
            DecodeWithProgram(MadeMedia(std::string("sound-exact/") + name), AV_SAMPLE_FMT_FLT);
        ASSERT_LE(run.bytes.size(), expected.bytes.size()) << name;
        EXPECT_GT(run.bytes.size(), expected.bytes.size() - 8192) << name;
        expected.bytes.resize(run.bytes.size());
        EXPECT_TRUE(run.bytes == expected.bytes) << name;
    }
}

TEST(SoundReader, GivesIntegersOfEveryWidthAsTheFileHasThem) {
    const struct {
        const char* name;
        UINT32 bits;
        const char* program; // how the program writes them
    } files[] = {{"pcm-8.wav", 8, "u8"},
                 {"pcm-16.wav", 16, "s16le"},
                 {"pcm-24.wav", 24, "s24le"},
                 {"pcm-32.wav", 32, "s32le"},
                 {"alac-24.m4a", 24, "s24le"}};

    for (const auto& file : files) {
        const auto reader = OpenSound(file.name, SoundType(MFAudioFormat_PCM, file.bits));
        const SoundRun run = ReadSound(*reader);
        const auto expected =
            RunProgram("-i '" + MadeMedia(std::string("sound-exact/") + file.name) + "' -c:a pcm_" +
                       file.program + " -f " + file.program + " -");
        EXPECT_TRUE(run.bytes == expected) << file.name;
    }
}

TEST(SoundReader, SamplesTileTheTimeFromTheStreamsStart) {
    const auto late = OpenSound("sound-late.m2ts", SoundType(MFAudioFormat_Float, 32, 2, 44100));
    const SoundRun run = ReadSound(*late);
    EXPECT_NEAR(static_cast<double>(run.start), 2.9e7, 0.01e7);
    const double frames = static_cast<double>(run.bytes.size()) / 8;
    EXPECT_NEAR(static_cast<double>(run.end - run.start), frames / 44100 * 1e7, 1);
    EXPECT_EQ(ReadSound(*OpenSound("aac-stereo.m4a", SoundType(MFAudioFormat_Float))).start, 0);
}

TEST(SoundReader, SoundThatGoesOnBehindThePicturesIsAllThere) {
    const SoundRun run =
        ReadSound(*OpenSound("sound-longer.mp4", SoundType(MFAudioFormat_Float, 32, 2, 48000)));
    EXPECT_EQ(run.bytes.size(), 252000U * 8);
}

TEST(SoundReader, CompletesTheCurrentType) {
    const auto reader = OpenSound("aac-stereo.m4a", SoundType(MFAudioFormat_PCM));
    com::ComPtr<IMFMediaType> type;
    ASSERT_EQ(reader->GetCurrentMediaType(kSound, type.Put()), S_OK);
    EXPECT_EQ(SubtypeOf(*type), MFAudioFormat_PCM);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_BITS_PER_SAMPLE), 16U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_NUM_CHANNELS), 2U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_SAMPLES_PER_SECOND), 44100U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_BLOCK_ALIGNMENT), 4U);
    EXPECT_EQ(Number(*type, MF_MT_AUDIO_AVG_BYTES_PER_SECOND), 176400U);
}

TEST(SoundReader, RefusesTypesThatItDoesNotServe) {
    const auto reader = OpenSound("aac-stereo.m4a", SoundType(MFAudioFormat_Float));
    const auto set = [&](const com::ComPtr<IMFMediaType>& type) {
        return reader->SetCurrentMediaType(kSound, nullptr, type.Get());
    };
    EXPECT_EQ(set(SoundType(MFAudioFormat_AAC)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(SoundType(MFAudioFormat_PCM, 20)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(SoundType(MFAudioFormat_Float, 16)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(SoundType(MFAudioFormat_Float, 32, 9)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(SoundType(MFAudioFormat_Float, 32, 2, 4'000'000)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(VideoType(MFVideoFormat_RGB32)), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(ReadSound(*reader, 1).samples, 1U);
}

TEST(SoundReader, SamplesAsTheyAreNeedNoTypeSet) {
    const auto reader = OpenReader(MadeMedia("sound-exact/pcm-16.wav"), {});
    EXPECT_EQ(ReadNext(*reader, kSound).result, S_OK);
    const auto coded = OpenReader(MadeMedia("sound-exact/aac-stereo.m4a"), {});
    EXPECT_EQ(ReadNext(*coded, kSound).result, MF_E_TOPO_CODEC_NOT_FOUND);
}

LONGLONG TimeOfFrame(LONGLONG frame, int rate) {
    return std::llround(static_cast<double>(frame) / rate * 1e7);
}

class SoundPositions : public testing::TestWithParam<int> {};

// Whoever goes to the rounded time of a frame gets that frame first.
TEST_P(SoundPositions, ASampleBeginsWithTheFrameAtThePosition) {
    const int rate = GetParam();
    const auto reader = OpenSound("aac-44100.m2ts",
                                  SoundType(MFAudioFormat_Float, 32, 2, static_cast<UINT32>(rate)));
    const SoundRun whole = ReadSound(*reader);
    const auto frames = static_cast<LONGLONG>(whole.bytes.size() / 8);
    std::mt19937 random(11);
    for (int i = 0; i < 40; ++i) {
        const auto frame = static_cast<LONGLONG>(random() % static_cast<unsigned>(frames));
        const LONGLONG position = whole.start + TimeOfFrame(frame, rate);
        ASSERT_EQ(Seek(*reader, position), S_OK);
        const SoundRun run = ReadSound(*reader, 2);
        ASSERT_EQ(run.start, position);
        ASSERT_TRUE(std::equal(run.bytes.begin(), run.bytes.end(), whole.bytes.begin() + frame * 8))
            << frame;
        // A unit earlier it is the frame before, a unit later still this one.
        ASSERT_EQ(Seek(*reader, position - 1), S_OK);
        ASSERT_EQ(ReadSound(*reader, 1).start,
                  whole.start + TimeOfFrame(std::max(frame - 1, LONGLONG{0}), rate));
        ASSERT_EQ(Seek(*reader, position + 1), S_OK);
        ASSERT_EQ(ReadSound(*reader, 1).start, position);
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, SoundPositions, testing::Values(44100, 48000, 22050, 16001));

TEST(SoundReader, PositionsOutsideAreTheStartAndTheEnd) {
    const auto reader = OpenSound("aac-stereo.m4a", SoundType(MFAudioFormat_Float));
    const LONGLONG first = ReadSound(*reader, 1).start;
    for (const LONGLONG before : {LONGLONG{-1}, LONGLONG{-1} << 62}) {
        EXPECT_EQ(Seek(*reader, before), S_OK);
        EXPECT_EQ(ReadSound(*reader, 1).start, first);
    }
    for (const LONGLONG behind : {95'000'000LL, 200'000'000LL, 1LL << 62}) {
        EXPECT_EQ(Seek(*reader, behind), S_OK);
        const SoundRun run = ReadSound(*reader);
        EXPECT_EQ(run.samples, 0U) << behind;
        EXPECT_TRUE(run.ended);
    }
    EXPECT_EQ(Seek(*reader, 0), S_OK);
    EXPECT_EQ(ReadSound(*reader, 1).start, first);
}

TEST(SoundReader, ANewTypeGoesOnWhereTheOldOneWas) {
    const auto reader = OpenSound("pcm-16.wav", SoundType(MFAudioFormat_PCM, 16));
    const LONGLONG end = ReadSound(*reader, 5).end;
    ASSERT_EQ(reader->SetCurrentMediaType(kSound, nullptr, SoundType(MFAudioFormat_Float).Get()),
              S_OK);
    EXPECT_EQ(ReadSound(*reader, 1).start, end);
}

TEST(MediaSource, AReaderOnItReadsTheFileAndShutsItDown) {
    com::ComPtr<IMFSourceResolver> resolver;
    ASSERT_EQ(MFCreateSourceResolver(resolver.Put()), S_OK);
    const std::string path = MadeMedia("sound-exact/pcm-16.wav");
    const std::wstring url(path.begin(), path.end());
    MF_OBJECT_TYPE type = MF_OBJECT_INVALID;
    com::ComPtr<IUnknown> object;
    ASSERT_EQ(resolver->CreateObjectFromURL(url.c_str(), MF_RESOLUTION_MEDIASOURCE, nullptr, &type,
                                            object.Put()),
              S_OK);
    EXPECT_EQ(type, MF_OBJECT_MEDIASOURCE);
    com::ComPtr<IMFMediaSource> source;
    ASSERT_EQ(object->QueryInterface(IID_IMFMediaSource, source.PutVoid()), S_OK);
    com::ComPtr<IMFSourceReader> reader;
    ASSERT_EQ(MFCreateSourceReaderFromMediaSource(source.Get(), nullptr, reader.Put()), S_OK);
    EXPECT_EQ(ReadNext(*reader, kSound).result, S_OK);
    reader.Reset();
    EXPECT_EQ(MFCreateSourceReaderFromMediaSource(source.Get(), nullptr, reader.Put()),
              MF_E_SHUTDOWN);
    EXPECT_FALSE(reader);
}

TEST(MediaSource, IsMadeOfMediaFilesAlone) {
    com::ComPtr<IMFSourceResolver> resolver;
    ASSERT_EQ(MFCreateSourceResolver(resolver.Put()), S_OK);
    MF_OBJECT_TYPE type = MF_OBJECT_MEDIASOURCE;
    com::ComPtr<IUnknown> object;
    EXPECT_EQ(static_cast<UINT32>(resolver->CreateObjectFromURL(
                  L"/nothing/there.wav", MF_RESOLUTION_MEDIASOURCE, nullptr, &type, object.Put())),
              0x80070002U);
    EXPECT_EQ(type, MF_OBJECT_INVALID);
    EXPECT_EQ(resolver->CreateObjectFromURL(L"/dev/null", MF_RESOLUTION_MEDIASOURCE, nullptr, &type,
                                            object.Put()),
              MF_E_UNSUPPORTED_BYTESTREAM_TYPE);
    EXPECT_EQ(resolver->CreateObjectFromURL(L"x", 2, nullptr, &type, object.Put()), E_INVALIDARG);
    EXPECT_FALSE(object);
    EXPECT_EQ(MFCreateSourceReaderFromMediaSource(nullptr, nullptr, nullptr), E_POINTER);
}

} // namespace
