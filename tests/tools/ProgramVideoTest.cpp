#include <filesystem>
#include <iterator>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

// Four pictures of a tenth of a second, 64 by 48.
std::string Clip() {
    return MadeMedia("mp4-plain.mp4");
}

std::ptrdiff_t FilesIn(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

nlohmann::json Parsed(const ProgramEnd& end) {
    EXPECT_EQ(end.status, 0) << end.err;
    return nlohmann::json::parse(end.out);
}

} // namespace

TEST(ProgramFrame, WritesThePicturesAsked) {
    TemporaryFolder folder;
    const auto json = Parsed(RunProgram(
        {"frame", Clip(), "--at", "0,1/10,0:00:00.25", "-o", folder / "out.png", "--json"}));
    EXPECT_EQ(FilesIn(folder.Path()), 3);
    EXPECT_EQ(json["frames"][1]["time_100ns"], 1'000'000);
    EXPECT_EQ(json["frames"][1]["duration_100ns"], 999'999);
    EXPECT_EQ(json["frames"][2]["time_100ns"], 2'000'000);
    EXPECT_EQ(json["frames"][2]["memory"], "system");
    EXPECT_FALSE(json["frames"][2]["operations"].empty());
    const PngPicture first = ReadPng(folder / "out-1.png");
    const PngPicture third = ReadPng(folder / "out-3.png");
    EXPECT_EQ(first.width, 64);
    EXPECT_EQ(first.height, 48);
    EXPECT_NE(first.bits, third.bits);
}

TEST(ProgramFrame, TheBarePixelsAreThoseOfThePng) {
    TemporaryFolder folder;
    for (const char* format : {"0", "1", "2"}) {
        EXPECT_EQ(RunProgram({"frame", Clip(), "--at", "0.1", "--format", format, "-o",
                              folder / "out.png"})
                      .status,
                  0);
        const ProgramEnd raw =
            RunProgram({"frame", Clip(), "--at", "0.1", "--format", format, "--raw", "-"});
        const PngPicture picture = ReadPng(folder / "out.png");
        EXPECT_EQ(raw.out, std::string(picture.bits.begin(), picture.bits.end())) << format;
    }
}

TEST(ProgramFrame, ATurnedPictureIsWrittenUpright) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    for (const char* turn : {"90", "180", "270"}) {
        const std::string clip = MadeMedia("mp4-rotate" + std::string(turn) + ".mp4");
        const auto json = Parsed(RunProgram({"frame", clip, "--at", "0", "-o", out, "--json"}));
        EXPECT_EQ(std::to_string(json["video"]["rotation"].get<int>()), turn);
        EXPECT_EQ(ReadPng(out).width, std::string(turn) == "180" ? 64 : 48);
        RunProgram({"frame", clip, "--at", "0", "--as-stored", "-o", out});
        EXPECT_EQ(ReadPng(out).width, 64);
    }
}

TEST(ProgramFrame, PixelsThatAreNotSquareAreStretched) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    EXPECT_EQ(RunProgram({"frame", MadeMedia("mp4-pasp-4-3.mp4"), "--at", "0", "-o", out}).status,
              0);
    EXPECT_EQ(ReadPng(out).width, 85);
    EXPECT_EQ(ReadPng(out).height, 48);
}

TEST(ProgramFrame, ATimeWithoutAPictureLeavesNoFile) {
    TemporaryFolder folder;
    const ProgramEnd end =
        RunProgram({"frame", Clip(), "--at", "0,3600", "-o", folder / "out.png"});
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.err, "zanthe: " + Clip() +
                           ": has no picture at 3600 s: its last picture ends at 0:00:00.400\n");
    EXPECT_EQ(FilesIn(folder.Path()), 0);
}

TEST(ProgramFrame, TimesMayBeGivenOneByOne) {
    TemporaryFolder folder;
    const auto json = Parsed(RunProgram(
        {"frame", Clip(), "--at", "0", "--at", "0.1,0.2", "-o", folder / "out.png", "--json"}));
    EXPECT_EQ(json["frames"].size(), 3U);
}

TEST(ProgramFrame, SeveralPicturesOnStandardOutputAreWrongUsage) {
    EXPECT_EQ(RunProgram({"frame", Clip(), "--at", "0,0.1", "-o", "-"}).status, 2);
}

TEST(ProgramFrame, ANamelessOutputIsNamed) {
    const ProgramEnd end = RunProgram({"sheet", Clip(), "-o", ""});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, StartsWith("zanthe: \"\": "));
}

TEST(ProgramFrame, ANameThatIsNoPngsIsRemarkedOn) {
    TemporaryFolder folder;
    const std::string out = folder / "out.jpg";
    const ProgramEnd end = RunProgram({"frame", Clip(), "--at", "0", "-o", out});
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.err, "zanthe: " + out + ": holds PNG all the same\n");
    EXPECT_EQ(ReadPng(out).width, 64);
    EXPECT_EQ(RunProgram({"frame", Clip(), "--at", "0", "-o", folder / "out.PNG"}).err, "");
}

TEST(ProgramFrame, AnotherStreamThanTheReadersIsRemarkedOn) {
    TemporaryFolder folder;
    const ProgramEnd end = RunProgram(
        {"frame", Clip(), "--at", "0", "--stream", "5", "-o", folder / "out.png", "--json"});
    EXPECT_EQ(Parsed(end)["stream"], 0);
    EXPECT_THAT(end.err, HasSubstr("stream 0 is read, not 5\n"));
}

TEST(ProgramFrame, ATurnThatIsLostToStrayBytesIsRemarkedOn) {
    TemporaryFolder folder;
    const std::string clip = folder.Write("clip.mov", ReadWholeFile(MadeMedia("mp4-rotate90.mp4")) +
                                                          std::string(2, '\0'));
    const ProgramEnd end =
        RunProgram({"frame", clip, "--at", "0", "-o", folder / "out.png", "--json"});
    const auto json = Parsed(end);
    EXPECT_EQ(json["video"]["rotation"], 0);
    ASSERT_EQ(json["video"]["remarks"].size(), 1U);
    EXPECT_EQ(end.err,
              "zanthe: " + clip + ": " + json["video"]["remarks"][0].get<std::string>() + '\n');
    EXPECT_THAT(end.err, HasSubstr("cannot be walked to the end"));
}

TEST(ProgramFrame, AWrongNameIsRemarkedOnWhenItIsRefused) {
    TemporaryFolder folder;
    const std::string clip = folder.Write("clip.avi", ReadWholeFile(Clip()));
    const ProgramEnd end = RunProgram({"frame", clip, "--at", "0", "-o", folder / "out.png"});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("the name says .avi, the contents say MP4 or QuickTime"));
}

TEST(ProgramFrame, RefusesAFileWithoutPictures) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    for (const std::string& file : {MadeMedia("mp4-audio-only.mp4"), folder.Write("a.mp4", "x"),
                                    folder.Write("a.avi", "x")}) {
        const ProgramEnd end = RunProgram({"frame", file, "--at", "0", "-o", out});
        EXPECT_EQ(end.status, 1);
        EXPECT_THAT(end.err, StartsWith("zanthe: " + file + ": no reader for its pictures: "));
        EXPECT_EQ(end.err.find('\n'), end.err.size() - 1);
        EXPECT_FALSE(fs::exists(out));
    }
}

TEST(ProgramSheet, WritesASheet) {
    TemporaryFolder folder;
    const std::string out = folder / "sheet.png";
    const auto json =
        Parsed(RunProgram({"sheet", Clip(), "--columns", "2", "--rows", "1", "-o", out, "--json"}));
    const PngPicture sheet = ReadPng(out);
    EXPECT_EQ(json["width"], sheet.width);
    EXPECT_EQ(json["height"], sheet.height);
    EXPECT_EQ(json["pictures"].size(), 2U);
    for (const auto& picture : json["pictures"]) {
        EXPECT_EQ(picture["shown"], true);
        EXPECT_LE(picture["time_100ns"], picture["asked_100ns"]);
    }
}

TEST(ProgramVerify, PicturesAreTheSameInEveryOrder) {
    for (const char* name : {"mp4-plain.mp4", "mp4-rotate90.mp4", "mp4-mpeg4.mp4",
                             "mp4-odd-size-444.mp4", "mp4-hevc-pasp-2-1.mp4"}) {
        const auto json =
            Parsed(RunProgram({"verify", "--video", MadeMedia(name), "--seed", "1", "--json"}));
        EXPECT_EQ(json["differences"], 0) << json.dump();
        EXPECT_EQ(json["video"]["pictures"], 4) << name;
        EXPECT_EQ(json["audio"], nullptr);
    }
}

TEST(ProgramBench, MeasuresAndCounts) {
    const auto json = Parsed(RunProgram({"bench", Clip(), "--openings", "2", "--json"}));
    ASSERT_EQ(json["results"].size(), 5U);
    const auto& opening = json["results"][0];
    EXPECT_EQ(opening["readings"], 2);
    // Of so short a clip all packets are read when it is opened.
    EXPECT_GE(opening["work"]["packets_read"], 2);
    EXPECT_GE(opening["work"]["pictures_decoded"], 2);
    const auto& sequential = json["results"][1];
    EXPECT_EQ(sequential["readings"], 4);
    EXPECT_GE(sequential["work"]["pictures_converted"], 3);
    EXPECT_GT(json["peak_memory_bytes"], 1 << 20);
}

TEST(ProgramBench, RefusesAFileWithoutPicturesAndSound) {
    TemporaryFolder folder;
    const ProgramEnd end = RunProgram({"bench", folder.Write("a.mp4", "x")});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr(": no reader for its pictures: "));
}

TEST(ProgramBench, SoundAloneIsMeasured) {
    const ProgramEnd end = RunProgram({"bench", MadeMedia("mp4-audio-only.mp4")});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_THAT(end.out, HasSubstr("a second a reading"));
}
