#include "zanthe/analysis/FileClassification.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/dshow/Uuids.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/analysis/IdentifierNames.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace Zanthe {
namespace {

using Matrix = std::array<double, 4>;

constexpr ClassifiedBackend MediaFoundation{true, true};
constexpr ClassifiedBackend DirectShow{false, false};
constexpr ClassifiedBackend OnlyNewer{true, false};

FileClassification Made(const std::string& name) {
    return ClassifyFile(MadeMedia(name));
}

TEST(ClassifyFile, AnMp4GoesToMediaFoundationWithItsTracks) {
    const FileClassification file = Made("mp4-plain.mp4");
    EXPECT_EQ(file.subtype, "MEDIASUBTYPE_None");
    EXPECT_EQ(file.subtypeSource, "nothing");
    EXPECT_EQ(file.sourceFilter, "file source");
    EXPECT_EQ(file.sourceFilterId, "{E436EBB5-524F-11CE-9F53-0020AF0BA770}");
    EXPECT_EQ(file.preferredFilters.size(), 3U);
    EXPECT_EQ(file.audio, MediaFoundation);
    EXPECT_EQ(file.videoSamples, OnlyNewer);
    EXPECT_EQ(file.detection, OnlyNewer);
    EXPECT_EQ(file.mp4Problem, "");
    EXPECT_THAT(file.streams, ElementsAre("video avc1", "audio mp4a"));
    ASSERT_EQ(file.tracks.size(), 2U);
    EXPECT_EQ(file.tracks[0].kind, "video");
    EXPECT_EQ(file.tracks[0].codec, "avc1");
    EXPECT_EQ(file.tracks[0].displayName, "H.264 ( QuickTime )");
    EXPECT_EQ(file.tracks[0].width, 64);
    EXPECT_EQ(file.tracks[0].height, 48);
    EXPECT_EQ(file.tracks[0].codedWidth, 64);
    EXPECT_EQ(file.tracks[0].codedHeight, 48);
    EXPECT_EQ(file.tracks[0].volume, 0);
    EXPECT_EQ(file.tracks[1].kind, "audio");
    EXPECT_EQ(file.tracks[1].codec, "mp4a");
    EXPECT_EQ(file.tracks[1].displayName, std::nullopt);
    EXPECT_EQ(file.tracks[1].volume, 1);
    EXPECT_TRUE(file.aacInMp4);
    EXPECT_EQ(file.orientationWidth, 64);
    EXPECT_EQ(file.orientationHeight, 48);
    EXPECT_EQ(file.rotation, 0);
}

TEST(ClassifyFile, RoutesAreThoseOfThisSystem) {
    const FileClassification file = Made("mp4-plain.mp4");
    EXPECT_EQ(file.audioRoute, "Media Foundation");
    EXPECT_EQ(file.videoRoute, file.system62 ? "Media Foundation" : "DirectShow");
}

TEST(ClassifyFile, TellsRotations) {
    EXPECT_EQ(Made("mp4-rotate90.mp4").rotation, 90);
    EXPECT_EQ(Made("mp4-rotate180.mp4").rotation, 180);
    const FileClassification file = Made("mp4-rotate270.mp4");
    EXPECT_EQ(file.rotation, 270);
    EXPECT_EQ(file.orientation, file.tracks.at(0).matrix);
    EXPECT_NE(file.orientation, (Matrix{1, 0, 0, 1}));
}

TEST(ClassifyFile, TellsThePixelAspect) {
    const FileClassification file = Made("mp4-pasp-4-3.mp4");
    ASSERT_EQ(file.tracks.size(), 1U);
    EXPECT_EQ(file.tracks[0].parWidth, 4);
    EXPECT_EQ(file.tracks[0].parHeight, 3);
    EXPECT_EQ(file.tracks[0].codedWidth, 64);
    EXPECT_EQ(file.tracks[0].width, 85);
}

TEST(ClassifyFile, AQuickTimeFileWithoutFtypIsTold) {
    const FileClassification file = Made("mp4-no-ftyp.mov");
    EXPECT_EQ(file.mp4Problem, "the file cannot be opened, or its first box is not an ftyp");
    EXPECT_THAT(file.tracks, IsEmpty());
    EXPECT_EQ(file.audio, MediaFoundation);
}

TEST(ClassifyFile, ATruncatedMp4KeepsTheTracksBeforeTheDamage) {
    const TemporaryFolder folder;
    const std::string bytes = ReadWholeFile(MadeMedia("mp4-moov-first.mp4"));
    const std::size_t secondHandler = bytes.find("soun");
    ASSERT_NE(secondHandler, std::string::npos);
    const FileClassification file =
        ClassifyFile(folder.Write("cut.mp4", bytes.substr(0, secondHandler)));
    EXPECT_EQ(file.mp4Problem, "its boxes cannot be walked to the end");
    ASSERT_EQ(file.tracks.size(), 2U);
    EXPECT_EQ(file.tracks[0].codec, "avc1");
    EXPECT_EQ(file.tracks[1].kind, "other");
    EXPECT_THAT(file.streams, IsEmpty());
}

TEST(ClassifyFile, APngQuickTimeFileIsToldAndIsDetectedAlikeEverywhere) {
    const FileClassification file = Made("mp4-png.mov");
    EXPECT_TRUE(file.pngMov);
    EXPECT_EQ(file.detection, MediaFoundation);
    EXPECT_EQ(file.videoSamples, OnlyNewer);
    EXPECT_THAT(file.streams, ElementsAre("video png "));
    EXPECT_FALSE(Made("classify/h264.mov").pngMov);
}

TEST(ClassifyFile, AnMp3IsToldByItsFirstBytesOrItsName) {
    const FileClassification bare = Made("classify/tone-bare.mp3");
    EXPECT_EQ(bare.subtype, "MEDIASUBTYPE_MPEG1Audio");
    EXPECT_EQ(bare.subtypeSource, "signature");
    EXPECT_EQ(bare.audioRoute, "FFmpeg");
    EXPECT_EQ(bare.audio, MediaFoundation);
    const FileClassification tagged = Made("classify/tone-id3.mp3");
    EXPECT_EQ(tagged.subtype, "MEDIASUBTYPE_MPEG1Audio");
    EXPECT_EQ(tagged.subtypeSource, "extension");
}

TEST(ClassifyFile, AnAviGoesToDirectShow) {
    const FileClassification file = Made("classify/picture.avi");
    EXPECT_EQ(file.subtype, "MEDIASUBTYPE_Avi");
    EXPECT_EQ(file.audio, DirectShow);
    EXPECT_EQ(file.videoSamples, DirectShow);
    EXPECT_EQ(file.detection, DirectShow);
    EXPECT_EQ(file.audioRoute, "DirectShow");
    EXPECT_EQ(file.videoRoute, "DirectShow");
    EXPECT_NE(file.mp4Problem, "");
}

TEST(ClassifyFile, AGifGoesToItsDecoder) {
    const TemporaryFolder folder;
    const FileClassification file = ClassifyFile(folder.Write("a.GIF", "GIF89a"));
    EXPECT_EQ(file.videoRoute, "GIF decoder");
    EXPECT_EQ(file.sourceFilter, "image source");
    EXPECT_EQ(file.subtype, "MEDIASUBTYPE_None");
}

TEST(ClassifyFile, ARecordingGoesToItsOwnReaders) {
    const FileClassification file = Made("classify/recording.brec");
    EXPECT_EQ(file.parsed.kind, "no member");
    EXPECT_EQ(file.parsed.member, "");
    EXPECT_EQ(file.audioRoute, "recording");
    EXPECT_EQ(file.videoRoute, "recording decoder");
    EXPECT_EQ(file.audio, DirectShow);
    EXPECT_EQ(file.tracks.size(), 5U);
}

TEST(ClassifyFile, AMemberIsTakenFromItsPath) {
    const std::string container = MadeMedia("classify/recording.brec");
    const FileClassification file = ClassifyFile(container + "!video2.mp4");
    EXPECT_EQ(file.path, container + "!video2.mp4");
    EXPECT_EQ(file.parsed, (ClassifiedPath{container, "video2.mp4", "numbered video", 2, 0, 1}));
    EXPECT_EQ(file.tracks.size(), 5U);
    EXPECT_EQ(file.videoRoute, "none: no decoder for it");
    EXPECT_EQ(ContainerPathOf(file.path), container);
}

TEST(ClassifyFile, AMemberOfALegacyRecordingIsTakenFromItsPath) {
    const FileClassification file = ClassifyFile("/x/a.orirec!Screen_Stream.avi");
    EXPECT_EQ(file.parsed,
              (ClassifiedPath{"/x/a.orirec", "Screen_Stream.avi", "screen video", 0, 100, 0}));
    EXPECT_EQ(file.sourceFilter, "recording source");
    EXPECT_EQ(file.videoRoute, "legacy recording decoder");
    EXPECT_EQ(ContainerPathOf(file.path), "/x/a.orirec");
}

TEST(ClassifyFile, WhatCannotBeReadGetsTheAnswersOfItsName) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "folder.mov");
    for (const std::string& path :
         {folder / "none.mov", folder / "folder.mov", folder.Write("empty.mov", ""), std::string(),
          std::string("mov"), folder.Write("\xFF.mov", "\xFF\xFF\xFF\xFF")}) {
        const FileClassification file = ClassifyFile(path);
        EXPECT_EQ(file.path, path);
        EXPECT_NE(file.mp4Problem, "") << path;
        EXPECT_THAT(file.tracks, IsEmpty()) << path;
        EXPECT_EQ(file.rotation, 0) << path;
        EXPECT_FALSE(file.pngMov) << path;
    }
}

TEST(ClassifyFile, ACodecKeepsItsZeros) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("mp4-jpeg.mov"));
    const std::size_t codec = bytes.find("jpeg", bytes.find("stsd"));
    ASSERT_NE(codec, std::string::npos);
    bytes.replace(codec, 4, std::string("ms\0\x11", 4));
    const FileClassification file = ClassifyFile(folder.Write("ms.mov", bytes));
    ASSERT_EQ(file.tracks.size(), 1U);
    EXPECT_EQ(file.tracks[0].codec, std::string("ms\0\x11", 4));
    EXPECT_EQ(file.tracks[0].displayName, std::nullopt);
}

TEST(IdentifierNames, SubtypesGoByTheirNameElseByTheirNumber) {
    EXPECT_EQ(SubtypeName(MEDIASUBTYPE_MPEG1VideoCD), "MEDIASUBTYPE_MPEG1VideoCD");
    EXPECT_EQ(SubtypeName(MEDIASUBTYPE_PCM), "{00000001-0000-0010-8000-00AA00389B71}");
}

} // namespace
} // namespace Zanthe
