#include "tools/zanthe/OpenVideo.h"

#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ScriptedReader.h"
#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/LockedPixels.h"
#include "tools/zanthe/VideoVerifier.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"

using Program::IVideo;
using Program::VideoFacts;
using Program::VideoOver;
using Zanthe::MediaTime;

namespace {

// A second of ten pictures; picture i is filled with i.
class TenPictures : public Zanthe::VideoDecoder {
public:
    int outputWidth() const override { return 4; }

    int outputHeight() const override { return 3; }

    bool readFrame(MediaTime time, unsigned char* buffer, double& actualTime) override {
        const auto index = boost::rational_cast<std::int64_t>(time * 10);
        if (index < 0 || index > 9) {
            return false;
        }
        std::fill_n(buffer, 4 * 3 * 4, static_cast<unsigned char>(index));
        actualTime = static_cast<double>(index) / 10;
        return true;
    }
};

std::unique_ptr<IVideo> OverDecoder() {
    return VideoOver(
        std::make_unique<Zanthe::VideoDecoderToVideoSampleReader>(std::make_unique<TenPictures>()),
        {.reader = "GIF decoder"});
}

std::unique_ptr<IVideo> OverReader(ScriptedReader::Script script, bool needsFlag = false) {
    return VideoOver(std::make_unique<ScriptedReader>(std::move(script), needsFlag), {});
}

std::string RefusalOf(const std::string& path) {
    try {
        Program::OpenVideo(path, {});
        return "opened";
    } catch (const Program::CommandError& error) {
        return error.what();
    }
}

} // namespace

TEST(DecoderVideo, TellsWhereThereIsNoPicture) {
    const auto video = OverDecoder();
    EXPECT_EQ(video->Facts().width, 4);
    EXPECT_EQ(video->Facts().height, 3);
    EXPECT_EQ(video->Facts().reader, "GIF decoder");
    EXPECT_FALSE(video->Facts().tellsTimes);
    const auto picture = video->At(MediaTime(55, 100));
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->start, 5'000'000);
    EXPECT_EQ(Program::LockedPixels(*picture->sample).Row(2)[15], 5);
    EXPECT_FALSE(video->At(MediaTime(1)));
    EXPECT_TRUE(video->At(MediaTime(0)));
}

// Shows nothing before its fifth tenth, and says so by its time alone, as recordings do.
class TellsByItsTime : public TenPictures {
public:
    bool readFrame(MediaTime time, unsigned char* buffer, double& actualTime) override {
        double shown = -1.0;
        if (time >= MediaTime(1, 2)) {
            TenPictures::readFrame(time, buffer, shown);
        }
        actualTime = shown;
        return true;
    }
};

// Shows pictures and tells no time.
class TellsNoTime : public TenPictures {
public:
    bool readFrame(MediaTime time, unsigned char* buffer, double&) override {
        double untold = -1.0;
        return TenPictures::readFrame(time, buffer, untold);
    }
};

template <typename Decoder>
std::unique_ptr<IVideo> Over() {
    return VideoOver(
        std::make_unique<Zanthe::VideoDecoderToVideoSampleReader>(std::make_unique<Decoder>()), {});
}

TEST(DecoderVideo, ATimeBelowZeroIsNoPicture) {
    const auto video = Over<TellsByItsTime>();
    EXPECT_FALSE(video->At(MediaTime(0)));
    EXPECT_FALSE(video->At(MediaTime(0)));
    EXPECT_TRUE(video->At(MediaTime(1, 2)));
    EXPECT_FALSE(video->At(MediaTime(2)));
    EXPECT_FALSE(video->At(MediaTime(0)));
    EXPECT_TRUE(video->At(MediaTime(7, 10)));
}

TEST(DecoderVideo, ATimeThatIsNeverToldIsNone) {
    const auto video = Over<TellsNoTime>();
    const auto picture = video->At(MediaTime(0));
    ASSERT_TRUE(picture);
    EXPECT_FALSE(picture->start);
    EXPECT_FALSE(video->At(MediaTime(1)));
    EXPECT_TRUE(video->At(MediaTime(1, 2)));
}

TEST(DecoderVideo, IsVerifiedLikeAnyOther) {
    const auto video = OverDecoder();
    const auto found = Program::VideoVerifier(*video, {.seeks = 50, .seed = 1}).Run();
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.pictures, 10);
    EXPECT_EQ(found.duration, 10'000'000);
}

TEST(SampleReaderVideo, AFlippedSampleComesUpright) {
    const auto video = OverReader([](const auto&, auto) {
        return new RowSample({.width = 4, .height = 3, .pitch = 16, .rows = 3, .flipped = true});
    });
    const auto picture = video->At(MediaTime(0));
    ASSERT_TRUE(picture);
    EXPECT_FALSE(picture->start);
    EXPECT_EQ(Program::LockedPixels(*picture->sample).Row(0)[0], 2);
}

TEST(SampleReaderVideo, NoSampleIsNoPicture) {
    EXPECT_FALSE(OverReader([](const auto&, auto) { return nullptr; })->At(MediaTime(0)));
}

TEST(SampleReaderVideo, GivesTheFlagWhereItIsNeeded) {
    for (const bool needed : {false, true}) {
        auto given = Zanthe::VideoSampleReaderFlags::None;
        const auto script = [&](const auto&, auto flags) -> Zanthe::VideoSample* {
            given = flags;
            return nullptr;
        };
        OverReader(script, needed)->At(MediaTime(0));
        EXPECT_EQ(given, needed ? Zanthe::VideoSampleReaderFlags::QuickAnswer
                                : Zanthe::VideoSampleReaderFlags::None);
    }
}

TEST(SampleReaderVideo, ABareTextIsAnError) {
    const auto video = OverReader([](const auto&, auto) -> Zanthe::VideoSample* {
        throw "Could not get the MediaControl interface from the FilterGraph";
    });
    try {
        video->At(MediaTime(0));
        FAIL() << "nothing thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Could not get the MediaControl interface from the FilterGraph");
    }
}

TEST(OpenVideo, SaysInOneLineWhyNot) {
    TemporaryFolder folder;
    const std::string missing = folder / "clip.mp4";
    EXPECT_EQ(RefusalOf(missing), missing + ": no such file");
    // A member of a recording: the recording must be there.
    EXPECT_EQ(RefusalOf((folder / "a.brec") + "!video0.mp4"),
              (folder / "a.brec") + ": no such file");
    const std::string empty = folder.Write("empty.mp4", "");
    EXPECT_EQ(RefusalOf(empty), empty + ": is empty");
    for (const char* name : {"clip.avi", "clip.gif", "clip.mp4", "clip.txt", "clip.mov"}) {
        const std::string path = folder.Write(name, "x");
        EXPECT_EQ(RefusalOf(path).find(path + ": no reader for its pictures: "), 0U)
            << RefusalOf(path);
    }
}
