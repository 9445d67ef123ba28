#include "zanthe/analysis/ClassificationInside.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/GifBytes.h"
#include "tests/support/PdfBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace Zanthe {
namespace {

FileClassification Made(const std::string& name) {
    return ClassifyFile(MadeMedia(name));
}

ClassifiedContent Video(const std::string& codec, int width, int height, double rate) {
    ClassifiedContent content;
    content.kind = "video";
    content.codec = codec;
    content.width = width;
    content.height = height;
    content.frameRate = rate;
    return content;
}

ClassifiedContent Sound(const std::string& codec, int rate, int channels) {
    ClassifiedContent content;
    content.kind = "audio";
    content.codec = codec;
    content.sampleRate = rate;
    content.channels = channels;
    return content;
}

TEST(ClassifyInside, StreamsAreThoseThatDecodersFind) {
    const FileClassification movie = Made("mp4-plain.mp4");
    EXPECT_THAT(movie.inside, ElementsAre(Video("h264", 64, 48, 10), Sound("aac", 8000, 1)));
    EXPECT_EQ(movie.duration, 4'000'000);
    EXPECT_THAT(Made("classify/tone.wav").inside, ElementsAre(Sound("pcm_s16le", 44100, 1)));
    // An AVI file has no track that the walker of MP4 files would see.
    EXPECT_EQ(Made("rec-sound.avi").inside.size(), 2U);
    // A cover is no stream.
    EXPECT_THAT(Made("tone-44100-stereo-id3-cover.mp3").inside,
                ElementsAre(Sound("mp3", 44100, 2)));
}

TEST(ClassifyInside, StillPicturesAndWhatIsNoneHaveNoStreams) {
    const TemporaryFolder folder;
    for (const std::string& path :
         {MadeMedia("images/gray.png"), folder.Write("a.mp4", "no film"), folder / "none.mp4"}) {
        const FileClassification file = ClassifyFile(path);
        EXPECT_THAT(file.inside, IsEmpty()) << path;
        EXPECT_EQ(file.duration, 0) << path;
    }
}

TEST(ClassifyInside, WhatABackendCannotServeIsAnObstacle) {
    const FileClassification whole = Made("mp4-plain.mp4");
    EXPECT_EQ(whole.audioRoute.obstacle, "");
    EXPECT_EQ(whole.videoRoute.obstacle, "");
    const FileClassification silent = Made("pictures-only.mp4");
    EXPECT_EQ(silent.audioRoute.obstacle, "the file has no sound");
    EXPECT_EQ(silent.videoRoute.obstacle, "");
    EXPECT_EQ(Made("classify/tone.wav").videoRoute.obstacle, "the file has no pictures");
    EXPECT_EQ(Made("tone-44100-stereo-id3-cover.mp3").videoRoute.obstacle,
              "the file has no pictures");
    EXPECT_EQ(Made("mp4-jpeg.mov").videoRoute.obstacle,
              "its video is mjpeg, neither H.264, HEVC nor MPEG-4 part 2");
    EXPECT_EQ(Made("rec-sounds.brec").videoRoute.obstacle, "the file has no pictures");
    EXPECT_EQ(Made("rec-sounds.brec").audioRoute.obstacle, "");
}

TEST(ClassifyInside, NothingDecodesWhatIsEncrypted) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("mp4-plain.mp4"));
    bytes.replace(bytes.rfind("avc1"), 4, "encv");
    EXPECT_EQ(ClassifyFile(folder.Write("a.mp4", bytes)).videoRoute.obstacle,
              "its video is encrypted");
    EXPECT_EQ(ClassifyFile(folder.Write("a.mp4", bytes)).audioRoute.obstacle, "");
    bytes.replace(bytes.rfind("mp4a"), 4, "enca");
    EXPECT_EQ(ClassifyFile(folder.Write("b.mp4", bytes)).audioRoute.obstacle,
              "its sound is encrypted");
}

// Its boxes say what it is, and nothing behind them what is in it.
TEST(ClassifyInside, AFilmWithoutItsHeadersCannotBeRead) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("mp4-plain.mp4"));
    const std::size_t headers = whole.find("moov");
    ASSERT_NE(headers, std::string::npos);
    const auto file = ClassifyFile(folder.Write("a.mp4", whole.substr(0, headers - 4)));
    EXPECT_EQ(file.contents, "MP4 or QuickTime");
    EXPECT_EQ(ClassifyFile(folder.Write("a.mp3", "no sound")).audioRoute.obstacle,
              "what is in the file cannot be read");
    EXPECT_EQ(ClassifyFile(folder / "none.mp3").audioRoute.obstacle, "");
    EXPECT_EQ(file.audioRoute.obstacle, "what is in the file cannot be read");
    EXPECT_EQ(file.videoRoute.obstacle, "what is in the file cannot be read");
}

TEST(ClassifyInside, OwnDecodersHaveObstaclesOfTheirOwn) {
    const TemporaryFolder folder;
    const std::string film = ReadWholeFile(MadeMedia("mp4-plain.mp4"));
    EXPECT_EQ(ClassifyFile(folder.Write("film.gif", film)).videoRoute.obstacle,
              "the file is no GIF");
    const std::string gif = GifBytes(4, 2).Frame(0, 0, 4, 2, 1).Bytes();
    EXPECT_EQ(ClassifyFile(folder.Write("picture.gif", gif)).videoRoute.obstacle, "");
    EXPECT_EQ(Made("mp4-png.mov").videoRoute.obstacle, "");
}

TEST(ClassifyInside, APictureHasItsLoader) {
    const TemporaryFolder folder;
    for (const char* name : {"images/gray.png", "images/photo.avif", "images/bgra.bmp",
                             "images/gray.tiff", "images/odd.jpg", "images/lossy.webp"}) {
        EXPECT_EQ(Made(name).imageRoute, "image loader") << name;
    }
    const std::string gif = GifBytes(4, 2).Frame(0, 0, 4, 2, 1).Bytes();
    EXPECT_EQ(ClassifyFile(folder.Write("a.txt", gif)).imageRoute, "image loader");
    const FileClassification document = ClassifyFile(folder.Write("a.mp4", PdfOfOnePage("")));
    EXPECT_EQ(document.imageRoute, "PDF loader");
    EXPECT_EQ(document.contents, "pdf");
    EXPECT_EQ(Made("mp4-plain.mp4").imageRoute, "");
    EXPECT_EQ(ClassifyFile(folder.Write("b.png", "no picture")).imageRoute, "");
    EXPECT_EQ(ClassifyFile(folder / "none.png").imageRoute, "");
}

} // namespace
} // namespace Zanthe
