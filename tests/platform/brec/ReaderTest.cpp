#include "platform/brec/Reader.h"

#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

boost::shared_ptr<BREC::Reader> Open(const std::string& path) {
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(44100, 2);
    return BREC::Reader::create(path, format, nullptr);
}

struct Expected {
    int type;
    std::string codec;
    std::uint32_t width;
    std::uint32_t height;
    std::uint64_t length;
};

TEST(BrecReader, DescribesEveryTrack) {
    const auto reader = Open(MadeMedia("classify/recording.brec"));
    ASSERT_NE(reader, nullptr);
    const std::array<Expected, 5> expected{{
        {BREC::VideoTrack, "avc1", 64, 48, 12},
        {BREC::AudioTrack, "sowt", 0, 0, 22050},
        {BREC::VideoTrack, "avc1", 32, 24, 7},
        {BREC::VideoTrack, "bsc2", 48, 32, 4},
        {BREC::AudioTrack, "sowt", 0, 0, 22050}, // 24000 of its own frames at 48000 Hz
    }};
    const auto tracks = reader->tracks();
    ASSERT_EQ(tracks.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(tracks[i]->type(), expected[i].type) << i;
        EXPECT_EQ(tracks[i]->codec(), expected[i].codec) << i;
        EXPECT_EQ(tracks[i]->width(), expected[i].width) << i;
        EXPECT_EQ(tracks[i]->height(), expected[i].height) << i;
        EXPECT_EQ(tracks[i]->lengthInFrames(), expected[i].length) << i;
    }
}

TEST(BrecReader, SoundIsCountedAtTheWantedRate) {
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(48000, 2);
    EXPECT_EQ(format.sampleRate(), 48000);
    EXPECT_EQ(format.channelCount(), 2);
    const auto reader = BREC::Reader::create(MadeMedia("classify/recording.brec"), format, nullptr);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->tracks().at(1)->lengthInFrames(), 24000U);
}

TEST(BrecReader, TracksAreTheSameAtEveryCallAndOutliveTheReader) {
    auto reader = Open(MadeMedia("classify/recording.brec"));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->tracks(), reader->tracks());
    const auto track = reader->tracks().front();
    reader.reset();
    EXPECT_EQ(track->codec(), "avc1");
}

TEST(BrecReader, ATrackThatNothingDecodesGivesNothingAndSaysSo) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("rec-png-third.mov"));
    bytes.replace(bytes.find("jpeg", bytes.find("moov")), 4, "bsc2");
    const auto reader = Open(folder.Write("a.brec", bytes));
    ASSERT_NE(reader, nullptr);
    const auto track = reader->tracks().at(1);
    EXPECT_EQ(track->type(), BREC::VideoTrack);
    EXPECT_EQ(track->codec(), "bsc2");
    EXPECT_EQ(track->width(), 64U);
    std::vector<unsigned char> buffer(64 * 48 * 4, 7);
    const auto untouched = buffer;
    double outTime = -1.0;
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(
            track->decodeFrameAtTime(0.0, buffer.data(), 64 * 48 * 4, &outTime, -1.0, 0.0, 0.0));
    }
    EXPECT_EQ(track->fillAudioBuffer(0, 16, buffer.data()), 0U);
    EXPECT_EQ(outTime, -1.0);
    EXPECT_EQ(buffer, untouched);
    // The tracks behind it are found all the same.
    std::vector<unsigned char> larger(80 * 60 * 4);
    EXPECT_TRUE(reader->tracks().at(3)->decodeFrameAtTime(0.0, larger.data(), 80 * 60 * 4, &outTime,
                                                          -1.0, 0.0, 0.0));
}

TEST(BrecReader, OpensAPathWithBackslashes) {
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("a.brec", ReadWholeFile(MadeMedia("classify/recording.brec")));
    std::string turned = path;
    std::replace(turned.begin(), turned.end(), '/', '\\');
    EXPECT_NE(Open(turned), nullptr);
}

TEST(BrecReader, EmptyWhereNothingCanBeRead) {
    const TemporaryFolder folder;
    EXPECT_EQ(Open(""), nullptr);
    EXPECT_EQ(Open(folder / "none.brec"), nullptr);
    EXPECT_EQ(Open(folder.Path().string()), nullptr);
    EXPECT_EQ(Open(folder.Write("text.brec", "not a recording")), nullptr);
}

} // namespace
