#include "platform/av/VideoStream.h"

#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "platform/av/PictureCache.h"
#include "tests/platform/av/ReadingOrders.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace av {
namespace {

constexpr std::size_t kDefaultBudget = std::size_t{512} << 20;

std::unique_ptr<VideoStream> OpenMade(const char* name) {
    auto stream = VideoStream::Open(MadeMedia(name), {});
    if (stream == nullptr) {
        throw std::runtime_error(std::string("cannot open ") + name);
    }
    return stream;
}

PicturePtr ReadAt(VideoStream& stream, std::int64_t time) {
    PicturePtr picture;
    EXPECT_TRUE(stream.Seek(time));
    EXPECT_EQ(stream.Read(picture), ReadResult::Picture) << time;
    return picture;
}

std::int64_t Decoded(const VideoStream& stream) {
    return stream.Counters().framesDecoded;
}

// The time in the middle of picture `number` of a clip of 24 pictures a second that starts at 0.
std::int64_t Middle(int number) {
    return (2 * number + 1) * 10'000'000LL / 48;
}

void ExpectSameInAllOrders(const std::filesystem::path& file, int reads, std::size_t most) {
    const OrderReport report = CompareOrders(file.string(), reads, 20240229, most);
    for (const std::string& difference : report.differences) {
        ADD_FAILURE() << file.filename() << ": " << difference;
    }
}

class RealVideo : public testing::TestWithParam<const char*> {};

TEST_P(RealVideo, ReadsTheSameInAllOrders) {
    const auto files = RealMedia(GetParam());
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    for (const auto& file : files) {
        ExpectSameInAllOrders(file, 4, 150);
    }
}

INSTANTIATE_TEST_SUITE_P(Folders, RealVideo,
                         testing::Values("mp4", "avi", "asf", "mpeg", "h264es", "other"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(VideoStream, ReadsTheSameInAllOrders) {
    const auto folder = std::filesystem::path(MadeMedia("h264/plain.mp4")).parent_path();
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_regular_file() && entry.path().filename().string().front() != '.') {
            ExpectSameInAllOrders(entry.path(), 6, 120);
            ++files;
        }
    }
    EXPECT_GT(files, 50);
}

TEST(VideoStream, ReadsTheSameWithoutACache) {
    SetPictureCacheBudget(0);
    for (const char* name :
         {"h264/b-pyramid.mp4", "h264/open-groups.ts", "h264/mpeg4-bframes.avi"}) {
        ExpectSameInAllOrders(MadeMedia(name), 6, 100);
    }
    SetPictureCacheBudget(kDefaultBudget);
}

TEST(VideoStream, PicturesAreTimedByTheFile) {
    const auto stream = OpenMade("h264/plain.mp4");
    const auto seen = ReadAll(*stream);
    ASSERT_EQ(seen.size(), 96U);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const auto number = static_cast<std::int64_t>(i);
        EXPECT_EQ(seen[i].start, number * 10'000'000 / 24);
        EXPECT_EQ(seen[i].end, (number + 1) * 10'000'000 / 24);
    }
}

TEST(VideoStream, EndsBehindTheLastPicture) {
    const auto stream = OpenMade("h264/plain.mp4");
    PicturePtr picture;
    for (const std::int64_t time :
         std::vector<std::int64_t>{40'000'000, 900'000'000'000, INT64_MAX}) {
        stream->Seek(time);
        EXPECT_EQ(stream->Read(picture), ReadResult::End) << time;
        EXPECT_EQ(stream->Read(picture), ReadResult::End) << time;
    }
    EXPECT_EQ(ReadAt(*stream, 39'999'999)->End(), 40'000'000);
    EXPECT_EQ(stream->Read(picture), ReadResult::End);
    EXPECT_EQ(ReadAt(*stream, INT64_MIN)->Start(), 0);
    EXPECT_EQ(ReadAt(*stream, -1)->Start(), 0);
}

TEST(VideoStream, ARepeatCostsNothing) {
    const auto stream = OpenMade("h264/plain.mp4");
    const PicturePtr first = ReadAt(*stream, Middle(50));
    const WorkCounters before = stream->Counters();
    EXPECT_EQ(ReadAt(*stream, Middle(50)), first);
    EXPECT_EQ(Decoded(*stream), before.framesDecoded);
    EXPECT_EQ(stream->Counters().packetsRead, before.packetsRead);
    EXPECT_EQ(stream->Counters().seeks, before.seeks);
}

TEST(VideoStream, TheNextPictureCostsOne) {
    const auto stream = OpenMade("h264/plain.mp4");
    ReadAt(*stream, Middle(30));
    const std::int64_t seeks = stream->Counters().seeks;
    for (int number = 31; number < 80; ++number) {
        const std::int64_t before = Decoded(*stream);
        ReadAt(*stream, Middle(number));
        EXPECT_LE(Decoded(*stream) - before, 1) << number;
    }
    EXPECT_EQ(stream->Counters().seeks, seeks);
}

TEST(VideoStream, AStepBackWithinTheCacheDecodesNothing) {
    const auto stream = OpenMade("h264/long-group.mp4");
    ReadAt(*stream, Middle(90));
    ReadAt(*stream, Middle(89));
    const std::int64_t before = Decoded(*stream);
    for (int number = 88; number >= 0; --number) {
        EXPECT_EQ(ReadAt(*stream, Middle(number))->Start(), number * 10'000'000LL / 24);
    }
    EXPECT_EQ(Decoded(*stream), before);
}

// Groups of 24 in which every fourth picture is referred to: up to the 22nd picture of a group the
// decoder is given the six or seven of those, the target, and what it needs to be a picture ahead.
TEST(VideoStream, ASeekDecodesNoUnreferencedPictureBeforeItsTarget) {
    const auto stream = OpenMade("h264/bframes-3.mp4");
    EXPECT_EQ(ReadAt(*stream, Middle(48 + 21))->Start(), 69 * 10'000'000LL / 24);
    EXPECT_LE(Decoded(*stream), 7 + 3);
}

TEST(VideoStream, AHopToALaterGroupSkipsWhatLiesBetween) {
    const auto stream = OpenMade("h264/short-groups.mp4");
    ReadAt(*stream, Middle(0));
    const std::int64_t before = Decoded(*stream);
    ReadAt(*stream, Middle(81));
    EXPECT_LE(Decoded(*stream) - before, 6);
}

TEST(VideoStream, ASmallCacheHoldsTheNearestPictures) {
    const auto stream = OpenMade("h264/long-group.mp4");
    const std::size_t size = SizeInMemory(*ReadAt(*stream, Middle(95)));
    SetPictureCacheBudget(size * 16);
    const std::int64_t before = Decoded(*stream);
    for (int number = 94; number >= 0; --number) {
        EXPECT_EQ(ReadAt(*stream, Middle(number))->Start(), number * 10'000'000LL / 24);
    }
    // A window of 14 pictures at a time: seven passes over half of the group on average.
    EXPECT_LE(Decoded(*stream) - before, 95 * 8 / 2 + 95);
    SetPictureCacheBudget(kDefaultBudget);
}

TEST(VideoStream, StreamsOfOneFileDoNotMixTheirPictures) {
    const auto one = VideoStream::Open(MadeMedia("h264/two-videos.mp4"), {0, nullptr});
    const auto other = VideoStream::Open(MadeMedia("h264/two-videos.mp4"), {1, nullptr});
    ASSERT_NE(one, nullptr);
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(ReadAt(*one, 0)->Width(), 192);
    EXPECT_EQ(ReadAt(*other, 0)->Width(), 320);
    EXPECT_EQ(ReadAt(*one, 0)->Width(), 192);
}

TEST(VideoStream, PicturesKeepTheirOwnSize) {
    for (const char* name : {"h264/size-change.mp4", "h264/size-change.ts"}) {
        const auto stream = OpenMade(name);
        const auto seen = ReadAll(*stream);
        ASSERT_GT(seen.size(), 60U) << name;
        EXPECT_EQ(ReadAt(*stream, seen.front().start)->Width(), 192) << name;
        EXPECT_EQ(ReadAt(*stream, seen.back().start)->Width(), 256) << name;
    }
}

TEST(VideoStream, TellsWhatTheFileSays) {
    const VideoFacts facts = OpenMade("h264/plain.mp4")->Facts();
    EXPECT_EQ(facts.codec, AV_CODEC_ID_H264);
    EXPECT_EQ(facts.tag, static_cast<std::uint32_t>(MKTAG('a', 'v', 'c', '1')));
    EXPECT_EQ(facts.width, 192);
    EXPECT_EQ(facts.height, 144);
    EXPECT_EQ(av_cmp_q(facts.frameRate, {24, 1}), 0);
    EXPECT_EQ(av_cmp_q(facts.pixelAspect, {1, 1}), 0);
    EXPECT_EQ(facts.rotation, 0);
    ASSERT_GT(facts.sequenceHeader.size(), 8U);
    EXPECT_EQ(facts.sequenceHeader[3], 1); // 00 00 00 01, then a sequence parameter set
    EXPECT_EQ(facts.sequenceHeader[4] & 31, 7);
}

TEST(VideoStream, TellsTheRotation) {
    EXPECT_EQ(OpenMade("h264/rotated-90.mp4")->Facts().rotation, 90);
    EXPECT_EQ(OpenMade("h264/rotated-180.mp4")->Facts().rotation, 180);
    EXPECT_EQ(OpenMade("h264/rotated-270.mp4")->Facts().rotation, 270);
    EXPECT_EQ(OpenMade("h264/mirrored.mp4")->Facts().rotation, 0);
}

TEST(VideoStream, NothingWhereThereIsNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(VideoStream::Open(folder / "none.mp4", {}), nullptr);
    EXPECT_EQ(VideoStream::Open(folder.Write("text.mp4", "only words"), {}), nullptr);
    EXPECT_EQ(VideoStream::Open(MadeMedia("h264/plain.mp4"), {1, nullptr}), nullptr);
    EXPECT_EQ(VideoStream::Open(MadeMedia("h264/plain.mp4"), {-1, nullptr}), nullptr);
    EXPECT_EQ(VideoStream::Open(MadeMedia("tone-44100-stereo-id3-cover.mp3"), {}), nullptr);
    EXPECT_EQ(VideoStream::Open(MadeMedia("h264/cover.mp4"), {1, nullptr}), nullptr);
}

TEST(VideoStream, CutFilesEnd) {
    const TemporaryFolder folder;
    for (const char* name : {"h264/index-first.mp4", "h264/in-transport.ts", "h264/in-avi.avi"}) {
        const std::string whole = ReadWholeFile(MadeMedia(name));
        for (std::size_t size = whole.size() / 7; size < whole.size(); size += whole.size() / 7) {
            const std::string path = folder.Write("cut", whole.substr(0, size));
            const auto stream = VideoStream::Open(path, {});
            EXPECT_TRUE(stream == nullptr || ReadAll(*stream, 200).size() <= 97) << name << size;
        }
    }
}

// Whatever comes out, something does, in bounded time, and never twice the same way back.
TEST(VideoStream, DamagedFilesDoNoHarm) {
    const auto files = RealMedia("damaged");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    for (const auto& file : files) {
        const auto stream = VideoStream::Open(file.string(), {});
        if (stream == nullptr) {
            continue;
        }
        const auto seen = ReadAll(*stream, 60);
        std::mt19937 random(7);
        for (int i = 0; i < 6 && !seen.empty(); ++i) {
            const SeenPicture& picture = seen[random() % seen.size()];
            EXPECT_LT(picture.start, picture.end) << file;
            PicturePtr again;
            stream->Seek(picture.start);
            static_cast<void>(stream->Read(again));
        }
    }
}

} // namespace
} // namespace av
