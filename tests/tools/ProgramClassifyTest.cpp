#include <filesystem>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

std::string TextOf(const std::string& path) {
    const ProgramEnd end = RunProgram({"classify", path});
    EXPECT_EQ(end.status, 0) << path;
    EXPECT_EQ(end.err, "");
    return end.out;
}

nlohmann::json JsonOf(const std::string& path) {
    const ProgramEnd end = RunProgram({"classify", path, "--json"});
    EXPECT_EQ(end.status, 0) << path;
    EXPECT_EQ(end.err, "");
    EXPECT_EQ(end.out.find('\n'), end.out.size() - 1);
    return nlohmann::json::parse(end.out);
}

void ExpectRefused(const std::string& path, const std::string& line) {
    const ProgramEnd end = RunProgram({"classify", path});
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(end.err, "zanthe: " + line + "\n");
}

} // namespace

TEST(ProgramClassify, TellsEveryAnswerInColumns) {
    const std::string text = TextOf(MadeMedia("mp4-rotate90.mp4"));
    for (const char* line :
         {"\ncontents          MP4 or QuickTime\n", "\nsubtype           MEDIASUBTYPE_None\n",
          "\nsource filter     file source {E436EBB5-524F-11CE-9F53-0020AF0BA770}\n",
          "\nbackend           6.2 or later      below 6.2\n",
          "\n  audio           Media Foundation  Media Foundation\n",
          "\n  video samples   Media Foundation  DirectShow\n",
          "\n  detection       Media Foundation  DirectShow\n",
          "\naudio route       Media Foundation\n", "\nMP4               yes\n",
          "\n  track 1         video avc1 \"H.264 ( QuickTime )\", display size 64x48, coded "
          "64x48, pixel aspect 1:1, matrix [0 -1; 1 0]\n",
          "\ninside            video h264, 64x48, 10 pictures a second\n",
          "\ninside            audio aac, 8000 Hz, 1 channel\n",
          "\nduration          0:00:00.400\n", "\nstreams           video avc1, audio mp4a\n",
          "\norientation       [0 -1; 1 0], turn by 90 degrees clockwise, display size 48x64\n"}) {
        EXPECT_THAT(text, HasSubstr(line));
    }
}

TEST(ProgramClassify, TellsEveryAnswerAsJson) {
    const auto json = JsonOf(MadeMedia("mp4-pasp-4-3.mp4"));
    EXPECT_EQ(json["command"], "classify");
    EXPECT_EQ(json["file"], MadeMedia("mp4-pasp-4-3.mp4"));
    EXPECT_EQ(json["path"]["kind"], "no member");
    EXPECT_EQ(json["subtype"]["name"], "MEDIASUBTYPE_None");
    EXPECT_EQ(json["source_filter"]["name"], "file source");
    EXPECT_EQ(json["video_samples"]["6.2_or_later"], "Media Foundation");
    EXPECT_EQ(json["video_samples"]["below_6.2"], "DirectShow");
    EXPECT_EQ(json["audio"]["6.2_or_later"], "Media Foundation");
    EXPECT_EQ(json["audio"]["below_6.2"], "Media Foundation");
    EXPECT_EQ(json["detection"]["below_6.2"], "DirectShow");
    EXPECT_EQ(json["system"], "6.2_or_later");
    EXPECT_EQ(json["preferred_filters"],
              nlohmann::json({"mc_demux_mp4_ds.ax", "mc_dec_aac_ds.ax", "mc_dec_avc_ds.ax"}));
    EXPECT_EQ(json["mp4"]["parsed"], true);
    EXPECT_EQ(json["mp4"]["problem"], nullptr);
    EXPECT_EQ(json["mp4"]["tracks"].size(), 1U);
    EXPECT_EQ(json["mp4"]["tracks"][0]["display_name"], "H.264 ( QuickTime )");
    EXPECT_EQ(json["mp4"]["tracks"][0]["pixel_aspect"], nlohmann::json({4, 3}));
    EXPECT_EQ(json["mp4"]["orientation"]["matrix"], nlohmann::json({1.0, 0.0, 0.0, 1.0}));
    EXPECT_EQ(json["mp4"]["orientation"]["rotation"], 0);
}

TEST(ProgramClassify, TellsTheRoutesOfSoundAndPictures) {
    const std::string recording = MadeMedia("rec-sounds.brec");
    EXPECT_THAT(TextOf(recording), AllOf(HasSubstr("\naudio route       recording\n"),
                                         HasSubstr("\nvideo route       recording decoder, but the "
                                                   "file has no pictures\n")));
    const auto json = JsonOf(MadeMedia("tone-44100-stereo-vbr.mp3"));
    EXPECT_EQ(json["audio_route"],
              nlohmann::json({{"backend", "FFmpeg"}, {"built", true}, {"obstacle", nullptr}}));
    EXPECT_EQ(json["video_route"], nlohmann::json({{"backend", "Media Foundation"},
                                                   {"built", true},
                                                   {"obstacle", "the file has no pictures"}}));
    EXPECT_EQ(json["inside"],
              nlohmann::json::parse(
                  R"([{"kind": "audio", "codec": "mp3", "sample_rate": 44100, "channels": 2}])"));
    EXPECT_GT(json["duration_100ns"], 0);
    const std::string avi = MadeMedia("rec-sound.avi");
    EXPECT_THAT(TextOf(avi),
                AllOf(HasSubstr("\naudio route       DirectShow (not in this build)\n"),
                      HasSubstr("\nvideo route       DirectShow (not in this build)\n")));
    EXPECT_EQ(JsonOf(avi)["video_route"],
              nlohmann::json({{"backend", "DirectShow"}, {"built", false}, {"obstacle", nullptr}}));
    const std::string picture = MadeMedia("images/gray.png");
    EXPECT_THAT(TextOf(picture), HasSubstr("\nimage route       image loader\n"));
    EXPECT_EQ(JsonOf(picture)["image_route"], "image loader");
    EXPECT_EQ(JsonOf(picture)["duration_100ns"], nullptr);
    EXPECT_EQ(JsonOf(avi)["image_route"], nullptr);
}

TEST(ProgramClassify, TellsAacAndPngOfMp4Files) {
    const std::string aac = MadeMedia("audio-select/aac.mp4");
    EXPECT_THAT(TextOf(aac), AllOf(HasSubstr("\nPNG QuickTime     no\n"),
                                   HasSubstr("\nAAC in MP4        yes (by the code mp4a)\n")));
    EXPECT_EQ(JsonOf(aac)["mp4"]["aac"], true);
    EXPECT_EQ(JsonOf(aac)["mp4"]["png_quicktime"], false);
    const std::string png = MadeMedia("classify/png.mov");
    EXPECT_THAT(TextOf(png), AllOf(HasSubstr("\nPNG QuickTime     yes\n"),
                                   HasSubstr("\nAAC in MP4        no\n")));
    EXPECT_EQ(JsonOf(png)["mp4"]["aac"], false);
    EXPECT_EQ(JsonOf(png)["mp4"]["png_quicktime"], true);
}

TEST(ProgramClassify, WhatIsNoMp4IsNoFailure) {
    EXPECT_THAT(TextOf(MadeMedia("classify/tone.wav")), HasSubstr("\nMP4               no\n"));
    const auto json = JsonOf(MadeMedia("mp4-no-ftyp.mov"));
    EXPECT_EQ(json["mp4"]["parsed"], false);
    EXPECT_THAT(json["mp4"]["problem"].get<std::string>(), HasSubstr("ftyp"));
}

TEST(ProgramClassify, AMemberIsReadFromItsRecording) {
    const std::string path = MadeMedia("classify/recording.brec") + "!audio4.mp4";
    EXPECT_THAT(TextOf(path), HasSubstr("\nmember            audio4.mp4 (numbered audio, stream 4, "
                                        "ordinal 1, code 0)\n"));
    EXPECT_EQ(JsonOf(path)["path"]["container"], MadeMedia("classify/recording.brec"));
}

TEST(ProgramClassify, AMemberOfAMissingRecordingIsRefused) {
    const TemporaryFolder folder;
    const std::string path = folder / "a.orirec!Screen_Stream.avi";
    const std::string container = folder / "a.orirec";
    ExpectRefused(path,
                  path + ": names a stream inside a recording: " + container + ": no such file");
    folder.Write("a.orirec!Screen_Stream.avi", "x");
    ExpectRefused(path, path +
                            ": names a stream inside a recording, although a file of that whole "
                            "name is there: " +
                            container + ": no such file");
}

TEST(ProgramClassify, WhatCannotBeReadIsRefused) {
    const TemporaryFolder folder;
    ExpectRefused(folder / "none.mp4", (folder / "none.mp4") + ": no such file");
    ExpectRefused(folder.Path().string(), folder.Path().string() + ": is a folder");
    ExpectRefused(folder.Write("empty.mp4", ""), (folder / "empty.mp4") + ": is empty");
}

TEST(ProgramClassify, ANameWithALineBreakStaysOnItsLine) {
    const TemporaryFolder folder;
    EXPECT_THAT(TextOf(folder.Write("a\nb.mp4", "x")), HasSubstr("/a\\x0ab.mp4\n"));
}

TEST(ProgramClassify, ThePathThatIsEmptyIsRefused) {
    ExpectRefused("", "\"\": names no file");
    ExpectRefused("/proc/cpuinfo", "/proc/cpuinfo: has contents but no size");
}

TEST(ProgramClassify, LinesThatWouldSayNothingAreLeftOut) {
    const std::string text = TextOf(MadeMedia("classify/tone.wav"));
    for (const char* name : {"\nmember", "\nstreams", "\nAAC", "\norientation", "\ncontainer",
                             "\npreferred", "\nremark", "\nPNG"}) {
        EXPECT_THAT(text, Not(HasSubstr(name)));
    }
}

TEST(ProgramClassify, AnOrientationThatCannotBeReadIsUnknown) {
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("a.mp4", ReadWholeFile(MadeMedia("mp4-rotate90.mp4")) + "\r\n");
    EXPECT_THAT(
        TextOf(path),
        AllOf(HasSubstr("\norientation       unknown: its boxes cannot be walked to the end\n"),
              HasSubstr("\nremark            the walk over the boxes stops at byte ")));
    EXPECT_EQ(JsonOf(path)["mp4"]["orientation"], nullptr);
    EXPECT_EQ(JsonOf(path)["remarks"].size(), 1U);
}

TEST(ProgramClassify, ACodecOfAnyBytesStaysReadable) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("mp4-jpeg.mov"));
    bytes.replace(bytes.find("jpeg", bytes.find("stsd")), 4, "\xC2\x9B,\\");
    const std::string path = folder.Write("odd.mov", bytes);
    EXPECT_THAT(TextOf(path), HasSubstr("\nstreams           video \"\\xc2\\x9b,\\x5c\"\n"));
    EXPECT_EQ(JsonOf(path)["mp4"]["streams"][0]["codec"], "\\xc2\\x9b,\\x5c");
    EXPECT_EQ(JsonOf(path)["mp4"]["streams"][0]["kind"], "video");
}
