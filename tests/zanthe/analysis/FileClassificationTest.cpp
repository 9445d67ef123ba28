#include "zanthe/analysis/FileClassification.h"

#include <exception>
#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/dshow/Uuids.h"
#include "tests/support/CompoundFile.h"
#include "tests/support/GifBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"
#include "zanthe/analysis/IdentifierNames.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/core/DecoderFactory.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

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
    EXPECT_THAT(file.streams,
                ElementsAre(ClassifiedStream{"video", "avc1"}, ClassifiedStream{"audio", "mp4a"}));
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
    EXPECT_EQ(file.orientation, (ClassifiedOrientation{{1, 0, 0, 1}, 64, 48, 0, true}));
    EXPECT_EQ(file.contents, "MP4 or QuickTime");
    EXPECT_THAT(file.remarks, IsEmpty());
}

TEST(ClassifyFile, RoutesAreThoseOfThisSystem) {
    const FileClassification file = Made("mp4-plain.mp4");
    EXPECT_EQ(file.audioRoute.backend, "Media Foundation");
    EXPECT_EQ(file.videoRoute.backend, file.system62 ? "Media Foundation" : "DirectShow");
}

TEST(ClassifyFile, TellsWhatThisBuildHas) {
    EXPECT_EQ(ClassifyFile("a.mp3").audioRoute, (ClassifiedRoute{"FFmpeg", true}));
    EXPECT_EQ(ClassifyFile("a.mp4").audioRoute, (ClassifiedRoute{"Media Foundation", true}));
    EXPECT_EQ(ClassifyFile("a.avi").audioRoute, (ClassifiedRoute{"DirectShow", false}));
    EXPECT_EQ(ClassifyFile("a.brec").audioRoute, (ClassifiedRoute{"recording", true}));
    EXPECT_EQ(ClassifyFile("a.mp4").videoRoute, (ClassifiedRoute{"Media Foundation", true}));
    EXPECT_EQ(ClassifyFile("a.gif").videoRoute, (ClassifiedRoute{"GIF decoder", true}));
    EXPECT_EQ(ClassifyFile("a.orirec!Screen_Stream.avi").videoRoute,
              (ClassifiedRoute{"legacy recording decoder", true}));
    EXPECT_EQ(ClassifyFile("a.avi").videoRoute, (ClassifiedRoute{"DirectShow", false}));
    EXPECT_EQ(ClassifyFile("a.brec").videoRoute, (ClassifiedRoute{"recording decoder", true}));
    EXPECT_EQ(Made("classify/png.mov").videoRoute,
              (ClassifiedRoute{"PNG QuickTime decoder", true}));
}

bool OpensItsSound(const std::string& path) {
    try {
        return AudioMediaReaderFactory(path, 0, 44100).Create_AudioMediaReader(false) != nullptr;
    } catch (const std::exception&) {
        return false;
    }
}

bool OpensItsPictures(const std::string& path) {
    const std::unique_ptr<DecoderFactory> factory(DecoderFactory::Create());
    try {
        const std::unique_ptr<VideoSampleReader> reader(
            factory->CreateVideoSampleReader(path, 0, false));
        return reader != nullptr && reader->outputWidth() > 0;
    } catch (const char*) { // as backends on filter graphs fail
        return false;
    }
}

// A whole file for each route; the factories open it where the route is told to be there.
TEST(ClassifyFile, WhatIsToldToBeInThisBuildOpens) {
    for (const char* name : {"tone-44100-stereo-vbr.mp3", "rec-sounds.brec", "audio-select/aac.mp4",
                             "classify/tone.wav", "rec-sound.avi"}) {
        const std::string path = MadeMedia(name);
        EXPECT_EQ(ClassifyFile(path).audioRoute.isBuilt, OpensItsSound(path)) << name;
    }
    const TemporaryFolder folder;
    const std::string gif = folder.Write("a.gif", GifBytes(4, 2).Frame(0, 0, 4, 2, 1).Bytes());
    const std::string legacy = folder / "a.orirec";
    WriteCompoundFile(legacy, {{"Screen_Stream.avi", ReadWholeFile(MadeMedia("rec-mjpeg.avi"))}});
    for (const std::string& path :
         {MadeMedia("mp4-plain.mp4"), MadeMedia("mp4-plain.mov"), MadeMedia("classify/png.mov"),
          MadeMedia("rec-tracks.brec"), MadeMedia("rec-mjpeg.avi"), gif,
          legacy + "!Screen_Stream.avi"}) {
        EXPECT_EQ(ClassifyFile(path).videoRoute.isBuilt, OpensItsPictures(path)) << path;
    }
}

TEST(ClassifyFile, TheRouteIsThatOfTheStreamAskedFor) {
    const std::string path = MadeMedia("rec-png-third.mov");
    EXPECT_EQ(ClassifyFile(path).videoRoute.backend, "Media Foundation");
    EXPECT_EQ(ClassifyFile(path, 2).videoRoute.backend, "PNG QuickTime decoder");
    EXPECT_EQ(ClassifyFile(path, -1).videoRoute.backend, "PNG QuickTime decoder");
}

TEST(ClassifyFile, TellsRotations) {
    EXPECT_EQ(Made("mp4-rotate90.mp4").orientation.value().rotation, 90);
    EXPECT_EQ(Made("mp4-rotate180.mp4").orientation.value().rotation, 180);
    const FileClassification file = Made("mp4-rotate270.mp4");
    ASSERT_TRUE(file.orientation);
    EXPECT_EQ(file.orientation->rotation, 270);
    EXPECT_TRUE(file.orientation->isPlainTurn);
    EXPECT_EQ(file.orientation->matrix, file.tracks.at(0).matrix);
    EXPECT_NE(file.orientation->matrix, (Matrix{1, 0, 0, 1}));
}

TEST(ClassifyFile, TellsThePixelAspect) {
    const FileClassification file = Made("mp4-pasp-4-3.mp4");
    ASSERT_EQ(file.tracks.size(), 1U);
    EXPECT_EQ(file.tracks[0].pixelAspect, (std::array<std::int32_t, 2>{4, 3}));
    EXPECT_EQ(file.tracks[0].codedWidth, 64);
    EXPECT_EQ(file.tracks[0].width, 85);
}

TEST(ClassifyFile, AQuickTimeFileWithoutFtypIsTold) {
    const FileClassification file = Made("mp4-no-ftyp.mov");
    EXPECT_EQ(file.mp4Problem, "its first box is \"free\", not an ftyp");
    EXPECT_EQ(file.orientation, std::nullopt);
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
    EXPECT_THAT(file.streams, ElementsAre(ClassifiedStream{"video", "png "}));
    EXPECT_FALSE(Made("classify/h264.mov").pngMov);
}

TEST(ClassifyFile, AnMp3IsToldByItsFirstBytesOrItsName) {
    const FileClassification bare = Made("classify/tone-bare.mp3");
    EXPECT_EQ(bare.subtype, "MEDIASUBTYPE_MPEG1Audio");
    EXPECT_EQ(bare.subtypeSource, "signature");
    EXPECT_EQ(bare.audioRoute.backend, "FFmpeg");
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
    EXPECT_EQ(file.audioRoute.backend, "DirectShow");
    EXPECT_EQ(file.videoRoute.backend, "DirectShow");
    EXPECT_NE(file.mp4Problem, "");
}

TEST(ClassifyFile, AGifGoesToItsDecoder) {
    const TemporaryFolder folder;
    const FileClassification file = ClassifyFile(folder.Write("a.GIF", "GIF89a"));
    EXPECT_EQ(file.videoRoute.backend, "GIF decoder");
    EXPECT_EQ(file.sourceFilter, "image source");
    EXPECT_EQ(file.subtype, "MEDIASUBTYPE_None");
}

TEST(ClassifyFile, ARecordingGoesToItsOwnReaders) {
    const FileClassification file = Made("classify/recording.brec");
    EXPECT_EQ(file.parsed.kind, "no member");
    EXPECT_EQ(file.parsed.member, "");
    EXPECT_EQ(file.audioRoute.backend, "recording");
    EXPECT_EQ(file.videoRoute.backend, "recording decoder");
    EXPECT_EQ(file.audio, DirectShow);
    EXPECT_EQ(file.tracks.size(), 5U);
}

// The bytes of a file that is made up here.
FileClassification Written(const TemporaryFolder& folder, const std::string& name,
                           const std::string& bytes) {
    return ClassifyFile(folder.Write(name, bytes));
}

std::string VideoTrack(const boxes::Elements& matrix, const std::string& description) {
    boxes::TrackHeader header;
    header.matrix = matrix;
    header.width = 64 << 16;
    header.height = 48 << 16;
    return boxes::Track(boxes::TrackHeaderBox(header), "vide", description);
}

const std::string Avc1 = boxes::SampleDescriptionBox(1, boxes::VisualEntry("avc1", 64, 48));

TEST(ClassifyFile, AMirroredPictureIsNoPlainTurn) {
    const TemporaryFolder folder;
    const boxes::Elements mirrored{-boxes::One, 0, 0, 0, boxes::One, 0, 0, 0, boxes::LastOne};
    const auto file = Written(folder, "a.mp4", boxes::Movie(VideoTrack(mirrored, Avc1)));
    ASSERT_TRUE(file.orientation);
    EXPECT_EQ(file.orientation->rotation, 0);
    EXPECT_FALSE(file.orientation->isPlainTurn);
    const boxes::Elements doubled{2 * boxes::One, 0, 0, 0, 2 * boxes::One, 0, 0, 0, boxes::LastOne};
    EXPECT_TRUE(Written(folder, "b.mp4", boxes::Movie(VideoTrack(doubled, Avc1)))
                    .orientation.value()
                    .isPlainTurn);
}

TEST(ClassifyFile, StrayBytesBehindTheLastBoxAreTold) {
    const TemporaryFolder folder;
    const std::string movie = boxes::Movie(VideoTrack(boxes::Clockwise90, Avc1));
    const auto file = Written(folder, "a.mp4", movie + "\r\n");
    EXPECT_EQ(file.mp4Problem, "its boxes cannot be walked to the end");
    EXPECT_EQ(file.orientation, std::nullopt);
    EXPECT_EQ(file.tracks.size(), 1U);
    EXPECT_THAT(file.remarks,
                Contains("the walk over the boxes stops at byte " + std::to_string(movie.size()) +
                         ", 2 bytes before the end of the file: no box begins there"));
}

TEST(ClassifyFile, BytesThatAreNoBoxAreNotTakenForACut) {
    const TemporaryFolder folder;
    const std::string movie = boxes::Movie(VideoTrack(boxes::Upright, Avc1));
    const auto file = Written(folder, "a.mp4", movie + "junk\xA3\x9F#!");
    EXPECT_EQ(file.mp4Problem, "");
    EXPECT_THAT(file.remarks, ElementsAre("8 bytes behind the last box, from byte " +
                                          std::to_string(movie.size()) + " on, are no box"));
}

TEST(ClassifyFile, BoxesWithoutEndAreNoDamage) {
    const TemporaryFolder folder;
    std::string many = boxes::Movie(VideoTrack(boxes::Upright, Avc1));
    for (int i = 0; i < 1'100'000; ++i) {
        many += boxes::Header("free", 8);
    }
    EXPECT_THAT(Written(folder, "a.mp4", many).remarks,
                Contains(testing::EndsWith(": there are more of them than are read of one file")));
}

TEST(ClassifyFile, AFileThatIsCutShortIsTold) {
    const TemporaryFolder folder;
    const auto file = Written(folder, "a.mp4",
                              boxes::FileType() + boxes::Header("mdat", 1000) + boxes::Zeros(92));
    EXPECT_EQ(file.mp4Problem, "");
    EXPECT_THAT(file.remarks,
                IsSupersetOf({"the \"mdat\" box at byte 20 ends 900 bytes behind the end of the "
                              "file: the file is cut short",
                              "there is no moov box to walk: the file is probably cut short"}));
}

TEST(ClassifyFile, TheFirstBoxIsToldWhereItIsNoFtyp) {
    const TemporaryFolder folder;
    EXPECT_EQ(Written(folder, "a.mov", boxes::Box("wide", "")).mp4Problem,
              "its first box is \"wide\", not an ftyp");
    EXPECT_EQ(Written(folder, "b.mov", boxes::Zeros(8)).mp4Problem, "its first box is not an ftyp");
    EXPECT_EQ(Written(folder, "c.mov", "abc").mp4Problem, "the file is shorter than a box");
    EXPECT_EQ(ClassifyFile(folder / "none.mov").mp4Problem, "the file cannot be opened");
}

TEST(ClassifyFile, APixelAspectIsToldOfAvc1Alone) {
    const TemporaryFolder folder;
    const std::string hevc = boxes::SampleDescriptionBox(1, boxes::VisualEntry("hvc1", 64, 48));
    const auto file =
        Written(folder, "a.mp4",
                boxes::Movie(VideoTrack(boxes::Upright, hevc) + VideoTrack(boxes::Upright, Avc1)));
    ASSERT_EQ(file.tracks.size(), 2U);
    EXPECT_EQ(file.tracks[0].pixelAspect, std::nullopt);
    EXPECT_EQ(file.tracks[1].pixelAspect, (std::array<std::int32_t, 2>{1, 1}));
    EXPECT_THAT(file.remarks, Contains("several tracks have the number 1"));
}

TEST(ClassifyFile, ACodecFromBehindTheDescriptionsIsDoubtful) {
    const TemporaryFolder folder;
    const std::string two = boxes::SampleDescriptionBox(2, boxes::VisualEntry("avc1", 64, 48) +
                                                               boxes::VisualEntry("avc1", 32, 24));
    const auto file = Written(
        folder, "a.mp4",
        boxes::Movie(VideoTrack(boxes::Upright, two + boxes::Box("stts", boxes::Zeros(8)))));
    ASSERT_EQ(file.tracks.size(), 1U);
    EXPECT_EQ(file.tracks[0].codec, "stts");
    EXPECT_TRUE(file.tracks[0].codecDoubtful);
    EXPECT_THAT(file.remarks,
                Contains("track 1 has several sample descriptions, the first of them \"avc1\": "
                         "\"stts\" is what stands behind them, and no codec"));
}

TEST(ClassifyFile, AnEncryptedTrackIsTold) {
    const TemporaryFolder folder;
    const std::string entry = boxes::SampleDescriptionBox(1, boxes::VisualEntry("encv", 64, 48));
    const auto file = Written(folder, "a.mp4", boxes::Movie(VideoTrack(boxes::Upright, entry)));
    EXPECT_THAT(file.remarks, Contains("track 1 is encrypted"));
    EXPECT_FALSE(file.tracks.at(0).codecDoubtful);
}

TEST(ClassifyFile, ANameThatItsContentsContradictIsTold) {
    const TemporaryFolder folder;
    const std::string mp3 = ReadWholeFile(MadeMedia("classify/tone-bare.mp3"));
    EXPECT_THAT(Written(folder, "a.mp4", mp3).remarks,
                Contains("the name says .mp4, the contents say mp3"));
    EXPECT_THAT(Written(folder, "a.MP3", mp3).remarks, IsEmpty());
    EXPECT_THAT(Written(folder, "a.gif", "no picture").remarks,
                Contains("the name says .gif, the contents are of no known kind"));
    EXPECT_THAT(Written(folder, "a.txt", "no picture").remarks, IsEmpty());
    const std::string movie = ReadWholeFile(MadeMedia("mp4-plain.mp4"));
    EXPECT_THAT(Written(folder, "noext", movie).remarks,
                Contains("the library goes by the name, which sends this file to DirectShow: "
                         "called .mp4 it would go to Media Foundation"));
    EXPECT_THAT(Written(folder, "a.m4a", movie).remarks, IsEmpty());
    EXPECT_THAT(Written(folder, "a.png", ReadWholeFile(MadeMedia("images/gray.png"))).remarks,
                IsEmpty());
}

TEST(ClassifyFile, ATurnThatTheNameKeepsFromBeingHeededIsTold) {
    const TemporaryFolder folder;
    const std::string turned = ReadWholeFile(MadeMedia("mp4-rotate90.mp4"));
    const std::string remark =
        "a track of pictures has a turn, which is heeded in files called .mp4 or .mov alone";
    EXPECT_THAT(Written(folder, "a.m4a", turned).remarks, Contains(remark));
    EXPECT_THAT(Written(folder, "a.mov", turned).remarks, IsEmpty());
    const std::string upright = ReadWholeFile(MadeMedia("mp4-plain.mp4"));
    EXPECT_THAT(Written(folder, "b.m4a", upright).remarks, IsEmpty());
}

TEST(ClassifyFile, WhyAFileDoesNotCountAsAacIsTold) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("audio-select/aac.mp4"));
    EXPECT_THAT(Written(folder, "a.mp4", bytes).remarks, IsEmpty());
    bytes.replace(16, 4, "qt  ");
    EXPECT_THAT(Written(folder, "b.mp4", bytes).remarks,
                Contains("the first track of sound is mp4a, but the first compatible brand is "
                         "\"qt  \": the file does not count as AAC in MP4"));
}

TEST(ClassifyFile, MembersThatAreNotThereAreTold) {
    const std::string container = MadeMedia("classify/recording.brec");
    const auto remarksOn = [&](const std::string& member) {
        return ClassifyFile(container + "!" + member).remarks;
    };
    EXPECT_THAT(remarksOn("video3.mp4"), IsEmpty());
    EXPECT_THAT(remarksOn("audio4.mp4"), IsEmpty());
    EXPECT_THAT(remarksOn("video4.mp4"),
                ElementsAre("track 4, counted from 0, is audio, not video"));
    EXPECT_THAT(remarksOn("audio0.mp4"),
                ElementsAre("track 0, counted from 0, is video, not audio"));
    const std::string missing = "the recording has no such track: it has 5, counted from 0";
    EXPECT_THAT(remarksOn("video5.mp4"), ElementsAre(missing));
    EXPECT_THAT(remarksOn("video23.mp4"),
                ElementsAre("only the first digit of a member's number counts: this is number 2"));
    EXPECT_THAT(remarksOn("video-1.mp4"),
                ElementsAre("the member's number is no digit and counts as -3", missing));
    const std::string plain = MadeMedia("mp4-plain.mp4");
    EXPECT_THAT(ClassifyFile(plain + "!video0.mp4").remarks,
                Contains("the path names a member, but " + plain + " is no recording"));
}

// 10,000 tracks and no more, and few words about them.
TEST(ClassifyFile, TracksWithoutEndAreCutOff) {
    const TemporaryFolder folder;
    std::string tracks;
    for (int i = 0; i < 200'000; ++i) {
        tracks += boxes::Box("tkhd", "");
    }
    const auto file = Written(folder, "a.mp4", boxes::FileType() + tracks + boxes::Zeros(200));
    EXPECT_EQ(file.tracks.size(), 10'000U);
    EXPECT_NE(file.mp4Problem, "");
    EXPECT_LE(file.remarks.size(), 21U);
    EXPECT_THAT(file.remarks,
                Contains("there are more tracks than the 10000 that are read of one file"));
}

TEST(ClassifyFile, AMemberIsTakenFromItsPath) {
    const std::string container = MadeMedia("classify/recording.brec");
    const FileClassification file = ClassifyFile(container + "!video2.mp4");
    EXPECT_EQ(file.path, container + "!video2.mp4");
    EXPECT_EQ(file.parsed, (ClassifiedPath{container, "video2.mp4", "numbered video", 2, 0, 1}));
    EXPECT_EQ(file.tracks.size(), 5U);
    EXPECT_EQ(file.videoRoute.backend, "none: no decoder for it");
    EXPECT_EQ(ContainerPathOf(file.path), container);
}

TEST(ClassifyFile, AMemberOfALegacyRecordingIsTakenFromItsPath) {
    const FileClassification file = ClassifyFile("/x/a.orirec!Screen_Stream.avi");
    EXPECT_EQ(file.parsed,
              (ClassifiedPath{"/x/a.orirec", "Screen_Stream.avi", "screen video", 0, 100, 0}));
    EXPECT_EQ(file.sourceFilter, "recording source");
    EXPECT_EQ(file.videoRoute.backend, "legacy recording decoder");
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
        EXPECT_EQ(file.orientation, std::nullopt) << path;
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
