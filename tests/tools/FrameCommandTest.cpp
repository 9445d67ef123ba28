#include "tools/zanthe/FrameCommand.h"

#include <filesystem>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/CommandError.h"

using Program::CommandError;
using Program::FrameRequest;
using Program::NumberedName;
using Program::WriteFrames;
using Zanthe::MediaTime;

namespace {

ScriptedVideo Video() {
    return ScriptedVideo({0, 10'000'000, 20'000'000}, 30'000'000);
}

FrameRequest Request(std::vector<MediaTime> times) {
    FrameRequest request;
    request.file = "clip.mp4";
    request.times = std::move(times);
    return request;
}

std::ptrdiff_t FilesIn(const std::filesystem::path& folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

} // namespace

TEST(NumberedName, ASinglePictureHasTheNameGiven) {
    EXPECT_EQ(NumberedName("a/out.png", 0, 1), "a/out.png");
}

TEST(NumberedName, TheNumberStandsBeforeTheExtension) {
    EXPECT_EQ(NumberedName("out.png", 0, 2), "out-1.png");
    EXPECT_EQ(NumberedName("a.b/out", 1, 2), "a.b/out-2");
    EXPECT_EQ(NumberedName("out.tar.png", 0, 12), "out.tar-01.png");
    EXPECT_EQ(NumberedName("/x/out.png", 11, 12), "/x/out-12.png");
    EXPECT_EQ(NumberedName(".png", 0, 2), ".png-1");
}

TEST(WriteFrames, WritesThePictureShown) {
    TemporaryFolder folder;
    ScriptedVideo video = Video();
    FrameRequest request = Request({MediaTime(3, 2)});
    request.png = folder / "out.png";
    std::ostringstream out;
    WriteFrames(video, request, out);
    const PngPicture picture = ReadPng(request.png);
    EXPECT_EQ(picture.width, 16);
    EXPECT_EQ(picture.height, 8);
    EXPECT_EQ(picture.bits[0], 2) << "of the second picture";
    EXPECT_EQ(picture.bits[3], 255);
    EXPECT_EQ(out.str(), request.png + ": 16 x 8, asked for 3/2 s, shown from 0:00:01.000 for "
                                       "1000 ms\n");
}

TEST(WriteFrames, WritesBarePixels) {
    TemporaryFolder folder;
    ScriptedVideo video = Video();
    FrameRequest request = Request({MediaTime(0), MediaTime(2)});
    request.raw = folder / "out.bgra";
    std::ostringstream out;
    WriteFrames(video, request, out);
    const std::string bytes = ReadWholeFile(folder / "out-2.bgra");
    ASSERT_EQ(bytes.size(), 16U * 8 * 4);
    EXPECT_EQ(bytes.substr(0, 4), std::string("\3\0\0\xFF", 4));
    EXPECT_EQ(FilesIn(folder.Path()), 2);
}

TEST(WriteFrames, TurnsUnlessTold) {
    TemporaryFolder folder;
    ScriptedVideo video = Video();
    video.facts.rotation = 90;
    video.facts.aspectNumerator = 2;
    FrameRequest request = Request({MediaTime(0)});
    request.png = folder / "out.png";
    std::ostringstream out;
    WriteFrames(video, request, out);
    EXPECT_EQ(ReadPng(request.png).width, 8);
    EXPECT_EQ(ReadPng(request.png).height, 32);
    request.asStored = true;
    WriteFrames(video, request, out);
    EXPECT_EQ(ReadPng(request.png).width, 16);
    EXPECT_EQ(ReadPng(request.png).height, 8);
}

TEST(WriteFrames, TellsAllAsJson) {
    TemporaryFolder folder;
    ScriptedVideo video = Video();
    video.facts.duration = 30'000'000;
    video.facts.rotation = 180;
    FrameRequest request = Request({MediaTime(1001, 30000)});
    request.png = folder / "out.png";
    request.json = true;
    std::ostringstream out;
    WriteFrames(video, request, out);
    const auto json = nlohmann::json::parse(out.str());
    EXPECT_EQ(json["command"], "frame");
    EXPECT_EQ(json["file"], "clip.mp4");
    EXPECT_EQ(json["video"]["rotation"], 180);
    EXPECT_EQ(json["video"]["duration_100ns"], 30'000'000);
    const auto& frame = json["frames"][0];
    EXPECT_EQ(frame["asked"], "1001/30000");
    EXPECT_EQ(frame["time_100ns"], 0);
    EXPECT_EQ(frame["duration_100ns"], 9'999'999);
    EXPECT_EQ(frame["matrix"], nullptr);
    EXPECT_EQ(frame["memory"], "system");
    EXPECT_EQ(frame["operations"], (std::vector<std::string>{"looked", "found"}));
    EXPECT_EQ(frame["output"], request.png);
}

TEST(WriteFrames, AllFilesOrNone) {
    TemporaryFolder folder;
    ScriptedVideo video = Video();
    FrameRequest request = Request({MediaTime(0), MediaTime(1), MediaTime(3)});
    request.png = folder / "out.png";
    std::ostringstream out;
    try {
        WriteFrames(video, request, out);
        FAIL() << "there is no picture at 3 s";
    } catch (const CommandError& error) {
        EXPECT_STREQ(error.what(),
                     "clip.mp4: has no picture at 3 s: its last picture ends at 0:00:03.000");
    }
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(FilesIn(folder.Path()), 0);
}

TEST(WriteFrames, ARefusedTimeIsEchoedAsItWasTyped) {
    ScriptedVideo video = Video();
    video.facts.duration = 25'000'000;
    const auto refusal = [&](const char* typed) -> std::string {
        FrameRequest request = Request({MediaTime(59, 20)});
        request.typed = {typed};
        request.png = "-";
        std::ostringstream out;
        try {
            WriteFrames(video, request, out);
            return "written";
        } catch (const CommandError& error) {
            return error.what();
        }
    };
    const std::string end = ": the header's duration ends the stream at 0:00:02.500, 500 ms before "
                            "its last picture's end: nothing is shown behind that";
    EXPECT_EQ(refusal("2.95"), "clip.mp4: has no picture at 2.95 s" + end);
    EXPECT_EQ(refusal("0:00:02.95"), "clip.mp4: has no picture at 0:00:02.95" + end);
}

TEST(WriteFrames, TheInputIsNoOutput) {
    TemporaryFolder folder;
    ScriptedVideo video = Video();
    FrameRequest request = Request({MediaTime(0)});
    request.file = folder.Write("clip.mp4", "precious");
    request.png = request.file;
    std::ostringstream out;
    EXPECT_THROW(WriteFrames(video, request, out), CommandError);
    EXPECT_EQ(ReadWholeFile(request.file), "precious");
}

TEST(WriteFrames, SeveralPicturesDoNotGoToStandardOutput) {
    ScriptedVideo video = Video();
    FrameRequest request = Request({MediaTime(0), MediaTime(1)});
    request.raw = "-";
    std::ostringstream out;
    EXPECT_THROW(WriteFrames(video, request, out), CommandError);
}
