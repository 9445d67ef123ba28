#include <cmath>
#include <exception>

#include <gtest/gtest.h>

#include "tests/support/AviFile.h"
#include "tests/support/MemoryStream.h"
#include "zanthe/containers/avi20/Reader.h"

namespace {

using namespace Riff;
using AVI20::Read::FourCc;
using AVI20::Read::MediaStreamReader;
using AVI20::Read::Reader;

struct OpenAvi {
    explicit OpenAvi(const std::string& bytes)
        : stream(bytes)
        , reader(&stream) {}

    MemoryStream stream;
    Reader reader;
};

std::vector<Avi::Frame> Frames(std::size_t count, std::size_t keyDistance = 10) {
    std::vector<Avi::Frame> frames;
    for (std::size_t i = 0; i < count; ++i) {
        frames.push_back(
            {std::string(1 + i % 7, static_cast<char>('a' + i % 26)), i % keyDistance == 0});
    }
    return frames;
}

class AviReader : public testing::TestWithParam<Avi::IndexKind> {};

TEST_P(AviReader, EveryFrameIsFound) {
    const auto frames = Frames(45);
    OpenAvi avi(Avi::OneVideo({FourCc("cvid"), FourCc("cvid"), 64, 48}, frames, GetParam()));
    ASSERT_EQ(avi.reader.GetStreamCount(), 1U);
    const MediaStreamReader video = avi.reader.GetMediaStreamReader(0);
    ASSERT_TRUE(video.IsValid());
    ASSERT_EQ(video.GetFrameCount(), frames.size());
    std::string all;
    for (std::uint32_t i = 0; i < frames.size(); ++i) {
        ASSERT_EQ(video.GetFrameSize(i), frames[i].bytes.size());
        const auto buffer = video.ReadFrameToNewBuffer(i);
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer->data.get()), buffer->size),
                  frames[i].bytes);
        EXPECT_EQ(video.IsKeyFrame(i), frames[i].keyFrame);
        EXPECT_EQ(video.FindKeyFrame(i), i / 10 * 10);
        all += frames[i].bytes;
    }
    std::string read(all.size(), '?');
    EXPECT_EQ(video.GetTotalBytes(), all.size());
    EXPECT_EQ(video.ReadBytes(0, static_cast<std::uint32_t>(read.size()), read.data()), all.size());
    EXPECT_EQ(read, all);
    EXPECT_EQ(video.GetFrameSize(45), 0U);
    EXPECT_EQ(video.ReadFrameToNewBuffer(45), nullptr);
    EXPECT_DOUBLE_EQ(video.GetDurationSeconds(), 4.5);
    EXPECT_EQ(video.GetStreamInfo().isOldIndex, GetParam() == Avi::IndexKind::Old);
}

TEST_P(AviReader, AFileThatIsCutAnywhereFailsOrGivesWhatItHolds) {
    const auto frames = Frames(45);
    const std::string whole =
        Avi::OneVideo({FourCc("cvid"), FourCc("cvid"), 64, 48}, frames, GetParam());
    std::size_t read = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        try {
            OpenAvi avi(whole.substr(0, size));
            const MediaStreamReader video = avi.reader.GetMediaStreamReader(0);
            ASSERT_LE(video.GetFrameCount(), 45U);
            for (std::uint32_t i = 0; i < video.GetFrameCount(); ++i) {
                // The last entry may be cut itself; what it keeps is that of the one before.
                const auto buffer = video.ReadFrameToNewBuffer(i);
                if (buffer != nullptr && i + 1 < video.GetFrameCount()) {
                    ASSERT_EQ(
                        std::string(reinterpret_cast<char*>(buffer->data.get()), buffer->size),
                        frames[i].bytes)
                        << size << ' ' << i;
                    ++read;
                }
            }
        } catch (const std::exception&) {
            // No stream, or no index: the way in which such a file fails.
        }
    }
    EXPECT_GT(read, 1'000U); // and not everything has failed
}

INSTANTIATE_TEST_SUITE_P(BothIndexes, AviReader,
                         testing::Values(Avi::IndexKind::Old, Avi::IndexKind::OpenDml),
                         [](const auto& row) {
                             return row.param == Avi::IndexKind::Old ? "Old" : "OpenDml";
                         });

TEST(AviReaderStreams, AStreamIsLoadedOnce) {
    OpenAvi avi(Avi::OneVideo({}, Frames(30), Avi::IndexKind::OpenDml));
    const std::uint64_t before = avi.stream.bytesRead;
    avi.reader.GetMediaStreamReader(0);
    const std::uint64_t loaded = avi.stream.bytesRead;
    EXPECT_GT(loaded, before);
    EXPECT_EQ(avi.reader.GetMediaStreamReader(0).GetFrameCount(), 30U);
    EXPECT_EQ(avi.stream.bytesRead, loaded);
}

std::string BytesOf(const MediaStreamReader& stream) {
    std::string bytes(stream.GetTotalBytes(), '?');
    bytes.resize(stream.ReadBytes(0, static_cast<std::uint32_t>(bytes.size()), bytes.data()));
    return bytes;
}

// Several standard indexes each, in both lists of media.
TEST(AviReaderStreams, EachHasAnOpenDmlIndexOfItsOwn) {
    const auto sound = Frames(37, 1);
    const auto pictures = Frames(52, 25);
    OpenAvi avi(Avi::SoundAndVideo(sound, {FourCc("cvid"), FourCc("cvid"), 64, 48}, pictures));
    ASSERT_EQ(avi.reader.GetStreamCount(), 2U);
    // The second is asked for first.
    for (const std::size_t stream : {1U, 0U, 1U}) {
        const auto& frames = stream == 0 ? sound : pictures;
        const MediaStreamReader reader = avi.reader.GetMediaStreamReader(stream);
        EXPECT_EQ(reader.GetStreamInfo().header.fccType,
                  stream == 0 ? FourCc("auds") : FourCc("vids"));
        EXPECT_FALSE(reader.GetStreamInfo().isOldIndex);
        ASSERT_EQ(reader.GetFrameCount(), frames.size());
        std::string all;
        for (std::uint32_t i = 0; i < frames.size(); ++i) {
            EXPECT_EQ(reader.GetFrameSize(i), frames[i].bytes.size());
            EXPECT_EQ(reader.IsKeyFrame(i), frames[i].keyFrame);
            all += frames[i].bytes;
        }
        EXPECT_EQ(BytesOf(reader), all);
    }
    EXPECT_EQ(avi.reader.GetMediaStreamReader(1).FindKeyFrame(51), 50U);
    EXPECT_EQ(avi.reader.GetMediaStreamReader(1).FindKeyFrame(49), 25U);
}

TEST(AviReaderStreams, OneThatCannotBeLoadedThrowsEachTime) {
    const std::string entry = "00dc" + Number32(0) + Number32(4) + Number32(3);
    const std::string bad = Chunk("indx", std::string(24, 'x'));
    OpenAvi avi(List("RIFF", "AVI ",
                     List("strl", Avi::StreamHeader("vids", 0, 1) + bad) +
                         List("strl", Avi::StreamHeader("vids", 0, 1)) +
                         List("movi", Chunk("00dc", "abc")) + Chunk("idx1", entry)));
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(avi.reader.GetMediaStreamReader(0), std::exception);
        EXPECT_EQ(BytesOf(avi.reader.GetMediaStreamReader(1)), "abc");
    }
}

TEST(AviReaderStreams, OneBehindTheLastThrowsAndFurtherOnesAreInvalid) {
    OpenAvi avi(Avi::OneVideo({}, Frames(3), Avi::IndexKind::Old));
    EXPECT_THROW(avi.reader.GetMediaStreamReader(1), std::exception);
    const MediaStreamReader none = avi.reader.GetMediaStreamReader(2);
    EXPECT_FALSE(none.IsValid());
    EXPECT_EQ(none.GetFrameCount(), 0U);
    EXPECT_EQ(none.GetFrameSize(0), 0U);
    EXPECT_EQ(none.GetFrameOffset(0), 0U);
    EXPECT_FALSE(none.ReadFrame(0, nullptr));
    EXPECT_EQ(none.ReadBytes(0, 1, nullptr), 0U);
    EXPECT_EQ(none.GetTotalBytes(), 0U);
    EXPECT_EQ(none.ReadFrameToNewBuffer(0), nullptr);
    EXPECT_EQ(none.GetStreamInfo().header.fccType, 0U);
    EXPECT_FALSE(none.IsKeyFrame(0));
    EXPECT_EQ(none.FindKeyFrame(7), 0U);
    EXPECT_EQ(none.GetDurationSeconds(), 0.0);
}

TEST(AviReaderStreams, AStreamWithoutAnIndexThrows) {
    OpenAvi avi(List("RIFF", "AVI ", List("strl", Avi::StreamHeader("vids", 0, 1))));
    EXPECT_THROW(avi.reader.GetMediaStreamReader(0), std::exception);
}

TEST(AviReaderStreams, FrameZeroIsTakenForAKeyFrameUnasked) {
    OpenAvi avi(Avi::OneVideo({}, std::vector<Avi::Frame>(5, {"x", false}), Avi::IndexKind::Old));
    EXPECT_FALSE(avi.reader.GetMediaStreamReader(0).IsKeyFrame(0));
    EXPECT_EQ(avi.reader.GetMediaStreamReader(0).FindKeyFrame(0), 0U);
    EXPECT_EQ(avi.reader.GetMediaStreamReader(0).FindKeyFrame(4), 0U);
}

TEST(AviReaderStreams, AFrameThatReachesOverTheFileTakesNoMemory) {
    const std::string entry = "00dc" + Number32(0) + Number32(4) + Number32(0xFFFFFFF0);
    OpenAvi avi(List("RIFF", "AVI ",
                     List("strl", Avi::StreamHeader("vids", 0, 1)) + List("movi", "") +
                         Chunk("idx1", entry)));
    const MediaStreamReader video = avi.reader.GetMediaStreamReader(0);
    EXPECT_EQ(video.GetFrameSize(0), 0xFFFFFFF0U);
    EXPECT_EQ(video.ReadFrameToNewBuffer(0), nullptr);
}

TEST(AviReaderStreams, AFrameWithoutBytesIsABufferWithoutBytes) {
    const std::string entry = "00dc" + Number32(0) + Number32(1'000'000) + Number32(0);
    OpenAvi avi(List("RIFF", "AVI ",
                     List("strl", Avi::StreamHeader("vids", 0, 1)) + List("movi", "") +
                         Chunk("idx1", entry)));
    const auto buffer = avi.reader.GetMediaStreamReader(0).ReadFrameToNewBuffer(0);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->size, 0U);
}

TEST(AviReaderStreams, SeveralStreamsOfAnOldIndexShowAllChunks) {
    const std::string entries = "00dc" + Number32(0x10) + Number32(4) + Number32(3) + "01wb" +
                                Number32(0x10) + Number32(16) + Number32(2);
    OpenAvi avi(List("RIFF", "AVI ",
                     List("strl", Avi::StreamHeader("vids", 0, 1)) +
                         List("strl", Avi::StreamHeader("auds", 0, 1)) +
                         List("movi", Chunk("00dc", "abc") + Chunk("01wb", "de")) +
                         Chunk("idx1", entries)));
    for (const std::size_t stream : {0, 1}) {
        const MediaStreamReader reader = avi.reader.GetMediaStreamReader(stream);
        ASSERT_EQ(reader.GetFrameCount(), 2U);
        std::string bytes(5, '?');
        EXPECT_EQ(reader.ReadBytes(0, 5, bytes.data()), 5U);
        EXPECT_EQ(bytes, "abcde");
    }
}

// One stream with this header and format, and an index of 1000 bytes in all.
double DurationOf(const std::string& header, const std::string& format) {
    const std::string entry = "01wb" + Number32(0) + Number32(4) + Number32(500);
    OpenAvi avi(
        List("RIFF", "AVI ",
             List("strl", header + format) + List("movi", "") + Chunk("idx1", entry + entry)));
    return avi.reader.GetMediaStreamReader(0).GetDurationSeconds();
}

TEST(AviReaderDuration, FollowsTheKindOfStream) {
    const std::string sound = Avi::StreamHeader("auds", 0, 0);
    EXPECT_DOUBLE_EQ(DurationOf(Avi::StreamHeader("vids", 0, 0, 30'000, 1001), ""),
                     2 / (30'000.0 / 1001));
    EXPECT_DOUBLE_EQ(DurationOf(sound, Avi::AudioFormat({1, 2, 100, 7, 3, 16, 0})), 3.33);
    EXPECT_DOUBLE_EQ(DurationOf(sound, Avi::AudioFormat({85, 2, 100, 300, 3, 16, 0})),
                     1000.0 / 300);
    EXPECT_EQ(DurationOf(Avi::StreamHeader("txts", 0, 0), ""), 0.0);
}

TEST(AviReaderDuration, RatesOfZeroDivideByIt) {
    const std::string sound = Avi::StreamHeader("auds", 0, 0);
    EXPECT_TRUE(std::isinf(DurationOf(Avi::StreamHeader("vids", 0, 0, 0, 1), "")));
    EXPECT_TRUE(std::isnan(DurationOf(Avi::StreamHeader("vids", 0, 0, 0, 0), "")));
    EXPECT_TRUE(std::isinf(DurationOf(sound, Avi::AudioFormat({85, 2, 100, 0, 3, 16, 0}))));
    EXPECT_EQ(DurationOf(sound, Avi::AudioFormat({1, 2, 100, 7, 0, 16, 0})), 0.0);
}

} // namespace
