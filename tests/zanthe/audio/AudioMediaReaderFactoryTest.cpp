#include "zanthe/audio/AudioMediaReaderFactory.h"

#include <filesystem>
#include <stdexcept>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/Version.h"
#include "tests/support/SilentReader.h"
#include "tests/support/StereoSound.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/BRECLibAudioMediaReader.h"
#include "zanthe/audio/IAudioBackends.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"
#include "zanthe/core/TextException.h"

namespace Zanthe {
namespace {

boost::shared_ptr<IAudioReader> Create(const std::string& path, bool recontainer = false,
                                       int trackIndex = 0, int sampleRate = 48000) {
    return AudioMediaReaderFactory(path, trackIndex, sampleRate)
        .Create_AudioMediaReader(recontainer);
}

// The text of the plain exception that `path` ends in; a std::runtime_error is not caught.
std::string PlainFailureOf(const std::string& path) {
    try {
        Create(path);
    } catch (const TextException& error) {
        return error.what();
    }
    return "nothing thrown";
}

constexpr const char* NoMediaFoundation = "Failed to create MediaFoundation resource";
constexpr const char* NoChain = "Failed to create DSAudioChain";

TEST(AudioMediaReaderFactory, AnMp3IsReadToItsEnd) {
    const std::string path = MadeMedia("tone-44100-stereo-vbr.mp3");
    const auto reader = Create(path);
    ASSERT_NE(reader, nullptr);
    const StereoSound sound = ReadWhole(*reader);
    EXPECT_GT(sound.Frames(), 0U);
    EXPECT_TRUE(sound == ReadWhole(*FFMPEGAudioReader::Create(path, -1, 48000)));
}

TEST(AudioMediaReaderFactory, AnMp3InCapitalsAndWithAnyTrack) {
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("A.MP3", ReadWholeFile(MadeMedia("tone-44100-stereo-vbr.mp3")));
    EXPECT_NE(dynamic_cast<FFMPEGAudioReader*>(Create(path, true, 7).get()), nullptr);
}

TEST(AudioMediaReaderFactory, AFactoryCanBeUsedAgain) {
    AudioMediaReaderFactory factory(MadeMedia("tone-44100-stereo-vbr.mp3"), 0, 44100);
    const auto first = factory.Create_AudioMediaReader(false);
    const auto second = factory.Create_AudioMediaReader(true);
    EXPECT_NE(first, second);
    EXPECT_TRUE(ReadSpan(*first, 100, 500) == ReadSpan(*second, 100, 500));
}

TEST(AudioMediaReaderFactory, AnMp3ThatCannotBeOpenedThrowsItsReadersText) {
    const TemporaryFolder folder;
    try {
        Create(folder / "none.mp3");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "PacketReader() - m_formatContext->openInput failed");
    }
}

class MockBackends : public IAudioBackends {
public:
    MOCK_METHOD(boost::shared_ptr<IAudioReader>, CreateFfmpeg, (const std::string&, int, int),
                (const, override));
    MOCK_METHOD(boost::shared_ptr<IAudioReader>, CreateRecording, (const std::string&, int),
                (const, override));
    MOCK_METHOD(boost::shared_ptr<IAudioReader>, CreateMediaFoundation,
                (const std::string&, bool, int), (const, override));
    MOCK_METHOD(boost::shared_ptr<IAudioReader>, CreateDirectShow, (const std::string&),
                (const, override));
};

TEST(AudioMediaReaderFactory, HandsOnWhatItWasMadeWith) {
    const auto backends = boost::make_shared<testing::StrictMock<MockBackends>>();
    const boost::shared_ptr<IAudioReader> reader = boost::make_shared<SilentReader>();
    const auto create = [&](const std::string& path, bool recontainer) {
        return AudioMediaReaderFactory(path, 7, 22050, backends)
            .Create_AudioMediaReader(recontainer);
    };
    EXPECT_CALL(*backends, CreateFfmpeg("a.mp3", -1, 22050)).WillOnce(testing::Return(reader));
    EXPECT_CALL(*backends, CreateRecording("a.brec", 7)).WillOnce(testing::Return(reader));
    EXPECT_CALL(*backends, CreateMediaFoundation("a.mp4", true, 22050))
        .WillOnce(testing::Return(reader));
    EXPECT_CALL(*backends, CreateMediaFoundation("a.wav", false, 22050))
        .WillOnce(testing::Return(reader));
    EXPECT_CALL(*backends, CreateDirectShow("a.avi")).WillOnce(testing::Return(reader));
    EXPECT_EQ(create("a.mp3", true), reader);
    EXPECT_EQ(create("a.brec", true), reader);
    EXPECT_EQ(create("a.mp4", true), reader);
    EXPECT_EQ(create("a.wav", false), reader);
    EXPECT_EQ(create("a.avi", false), reader);
}

TEST(AudioMediaReaderFactory, RecordingsInAnyCase) {
    const TemporaryFolder folder;
    for (const char* name : {"none.brec", "NONE.BREC"}) {
        const auto reader = Create(folder / name);
        EXPECT_NE(dynamic_cast<BRECLibAudioMediaReader*>(reader.get()), nullptr) << name;
    }
}

TEST(AudioMediaReaderFactory, MediaFoundationThatFailsThrowsAPlainException) {
    EXPECT_EQ(PlainFailureOf("none.wav"), NoMediaFoundation);
    EXPECT_EQ(PlainFailureOf("none.mp4"), NoMediaFoundation);
    EXPECT_EQ(PlainFailureOf("none.mts"), NoMediaFoundation);
}

TEST(AudioMediaReaderFactory, DirectShowThatFailsThrowsAPlainException) {
    EXPECT_EQ(PlainFailureOf("none.avi"), NoChain);
    EXPECT_EQ(PlainFailureOf("none"), NoChain);
}

TEST(AudioMediaReaderFactory, TheSystemsVersionDecides) {
    win32::SetSystemVersion({6, 1, 0});
    EXPECT_EQ(PlainFailureOf("none.mts"), NoChain);
    EXPECT_EQ(PlainFailureOf("none.mp4"), NoMediaFoundation);
    win32::SetSystemVersion({});
}

// How many copies there are in the folder for temporary files.
std::ptrdiff_t Copies(const TemporaryFolder& folder) {
    return std::distance(std::filesystem::directory_iterator(folder.Path()), {});
}

TEST(AudioMediaReaderFactory, RecontaineringIsForAacInMp4Alone) {
    const TemporaryFolder folder;
    setenv("TMPDIR", folder.Path().c_str(), 1);
    {
        const auto copied = Create(MadeMedia("audio-select/aac.mp4"), true);
        EXPECT_EQ(Copies(folder), 1);
        const auto direct = Create(MadeMedia("audio-select/aac.mp4"), false);
        const auto other = Create(MadeMedia("audio-select/ac3.mp4"), true);
        EXPECT_EQ(Copies(folder), 1);
        EXPECT_GT(ReadSpan(*copied, 0, 1000).Frames(), 0U);
        EXPECT_TRUE(ReadSpan(*copied, 0, 5000) == ReadSpan(*direct, 0, 5000));
        EXPECT_GT(ReadSpan(*other, 0, 1000).Frames(), 0U);
    }
    unsetenv("TMPDIR");
    EXPECT_EQ(Copies(folder), 0);
}

TEST(AudioMediaReaderFactory, AFileWithoutSoundThrowsAPlainException) {
    EXPECT_EQ(PlainFailureOf(MadeMedia("audio-select/no-sound.mp4")), NoMediaFoundation);
}

} // namespace
} // namespace Zanthe
