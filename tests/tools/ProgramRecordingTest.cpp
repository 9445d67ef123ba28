// The commands on recordings: the screen stream of a legacy one, tracks of a ".brec" file, PNG
// images in QuickTime.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/AviFile.h"
#include "tests/support/CompoundFile.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

struct Recording {
    const char* name;
    int width;
    int height;
    int pictures; // ten a second
    const char* track;
    const char* stream; // the same as ffmpeg counts it
    const char* reader;
};

class ProgramRecording : public testing::TestWithParam<Recording> {
protected:
    ProgramRecording() {
        const std::string name = GetParam().name;
        m_source = MadeMedia(name);
        m_path = m_source;
        if (name.ends_with(".avi")) {
            WriteCompoundFile(m_folder / "a.orirec",
                              {{"Screen_Stream.avi", ReadWholeFile(m_source)}});
            m_path = m_folder / "a.orirec!Screen_Stream.avi";
        }
    }

    nlohmann::json Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin() + 1, {m_path, "--stream", GetParam().track, "--json"});
        const ProgramEnd end = RunProgram(arguments);
        EXPECT_EQ(end.status, 0) << end.out << end.err;
        return nlohmann::json::parse(end.out);
    }

    TemporaryFolder m_folder;
    std::string m_source;
    std::string m_path;
};

TEST_P(ProgramRecording, EveryPictureIsThatOfALinearReading) {
    const auto json = Run({"verify", "--video", "--seed", "1"});
    EXPECT_EQ(json["differences"], 0) << json.dump();
    EXPECT_EQ(json["video"]["pictures"], GetParam().pictures);
    EXPECT_EQ(json["video"]["seconds"], GetParam().pictures / 10.0);
}

TEST_P(ProgramRecording, FramesAreThoseOfFfmpeg) {
    const std::string out = m_folder / "out.png";
    const auto json = Run({"frame", "--at", "0,0.35,0.7,3/4", "-o", out});
    EXPECT_EQ(json["video"]["reader"], GetParam().reader);
    EXPECT_EQ(json["video"]["stored_width"], GetParam().width);
    const auto expected =
        FfmpegPictures(m_source, GetParam().width, GetParam().height, GetParam().stream);
    const int shown[] = {0, 3, 7, 7};
    for (std::size_t i = 0; i < 4; ++i) {
        const PngPicture png = ReadPng(m_folder / ("out-" + std::to_string(i + 1) + ".png"));
        EXPECT_GT(Psnr({png.width, png.height, png.bits},
                       expected.at(static_cast<std::size_t>(shown[i]))),
                  38.0)
            << i;
    }
}

TEST_P(ProgramRecording, BehindTheEndThereIsNoPicture) {
    const std::string out = m_folder / "none.png";
    const ProgramEnd end =
        RunProgram({"frame", m_path, "--stream", GetParam().track, "--at", "4", "-o", out});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, StartsWith("zanthe: " + m_path +
                                    ": has no picture at 4 s: its last picture ends at 0:00:0"));
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_P(ProgramRecording, ASheetShowsItsLength) {
    const auto json = Run({"sheet", "--columns", "2", "--rows", "2", "-o", m_folder / "sheet.png"});
    ASSERT_EQ(json["pictures"].size(), 4U);
    for (const auto& picture : json["pictures"]) {
        EXPECT_EQ(picture["shown"], true);
    }
    // The middles of four quarters.
    const double last = json["pictures"][3]["asked_100ns"];
    EXPECT_NEAR(last, GetParam().pictures * 1e6 * 7 / 8, 2e5);
}

TEST_P(ProgramRecording, IsMeasured) {
    const auto json = Run({"bench", "--openings", "1", "--sequential", "5", "--random", "5",
                           "--backward", "3", "--scrubs", "4"});
    ASSERT_EQ(json["results"].size(), 5U);
    const int readings[] = {1, 5, 5, 3, 4};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(json["results"][i]["readings"], readings[i]) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ProgramRecording,
    testing::Values(
        Recording{"rec-cinepak.avi", 64, 48, 40, "0", "0:v:0", "legacy recording decoder"},
        Recording{"rec-mjpeg.avi", 62, 46, 40, "0", "0:v:0", "legacy recording decoder"},
        Recording{"rec-tracks.brec", 64, 48, 40, "0", "0:v:0", "recording decoder"},
        Recording{"rec-tracks.brec", 46, 34, 40, "2", "0:v:1", "recording decoder"},
        Recording{"rec-tracks.brec", 64, 48, 40, "4", "0:v:2", "recording decoder"},
        Recording{"rec-png-rgba.mov", 61, 45, 8, "0", "0:v:0", "PNG QuickTime decoder"},
        Recording{"rec-png-third.mov", 80, 60, 8, "3", "0:v:2", "PNG QuickTime decoder"}),
    [](const auto& row) {
        std::string name = std::string(row.param.name).substr(4) + row.param.track;
        std::erase_if(name, [](char each) { return std::isalnum(each) == 0; });
        return name;
    });

// What comes is what the header tells, whatever rate is asked for.
TEST(ProgramRecordings, SoundIsWrittenAtItsOwnRate) {
    TemporaryFolder folder;
    const std::string path = MadeMedia("rec-sounds.brec");
    const auto json = nlohmann::json::parse(
        RunProgram({"audio", path, "--rate", "48000", "--json", "-o", folder / "out.wav"}).out);
    EXPECT_EQ(json["rate"], 44100);
    EXPECT_EQ(json["frames"], 132300);
    EXPECT_EQ(json["seconds"], 3.0);
    const std::string wav = ReadWholeFile(folder / "out.wav");
    std::uint32_t rate = 0;
    std::memcpy(&rate, wav.data() + 24, sizeof rate);
    EXPECT_EQ(rate, 44100U);
    const std::string samples =
        OutputOf("ffmpeg -nostdin -v error -i '" + path + "' -map 0:0 -f s16le -");
    EXPECT_TRUE(wav.ends_with(samples)); // they are the recording's own
}

TEST(ProgramRecordings, SoundIsTheSameInEveryOrder) {
    for (const char* name : {"rec-sounds.brec", "rec-tracks.brec", "rec-late-sound.brec"}) {
        const ProgramEnd end = RunProgram({"verify", MadeMedia(name), "--audio", "--rate", "48000",
                                           "--seeks", "50", "--seed", "3"});
        EXPECT_EQ(end.status, 0) << end.out << end.err;
        EXPECT_THAT(end.out, HasSubstr(" at 44100 Hz, stereo; seed 3\n"));
    }
}

// The first track is of pictures.
TEST(ProgramRecordings, WithoutATrackTheFirstSoundIsTaken) {
    TemporaryFolder folder;
    const std::string path = MadeMedia("rec-tracks.brec");
    ASSERT_EQ(RunProgram({"audio", path, "-o", folder / "first.wav"}).status, 0);
    ASSERT_EQ(RunProgram({"audio", path, "--track", "1", "-o", folder / "1.wav"}).status, 0);
    ASSERT_EQ(RunProgram({"audio", path, "--track", "3", "-o", folder / "3.wav"}).status, 0);
    EXPECT_EQ(ReadWholeFile(folder / "first.wav"), ReadWholeFile(folder / "1.wav"));
    EXPECT_NE(ReadWholeFile(folder / "first.wav"), ReadWholeFile(folder / "3.wav"));
}

TEST(ProgramRecordings, TheAlphaOfAPngImageIsKept) {
    TemporaryFolder folder;
    const std::string path = MadeMedia("rec-png-rgba.mov");
    ASSERT_EQ(RunProgram({"frame", path, "--at", "0.35", "-o", folder / "out.png"}).status, 0);
    const PngPicture png = ReadPng(folder / "out.png");
    EXPECT_EQ(png.bits, FfmpegPictures(path, 61, 45).at(3).bits);
}

TEST(ProgramRecordings, APngImageWithoutAlphaIsRefused) {
    TemporaryFolder folder;
    const std::string path = MadeMedia("rec-png-rgb24.mov");
    for (const char* command : {"frame", "verify"}) {
        std::vector<std::string> arguments{command, path};
        if (std::string(command) == "frame") {
            arguments.insert(arguments.end(), {"--at", "0", "-o", folder / "out.png"});
        } else {
            arguments.emplace_back("--video");
        }
        const ProgramEnd end = RunProgram(arguments);
        EXPECT_EQ(end.status, 1);
        EXPECT_THAT(end.err, HasSubstr("PNGMOVVideoDecoder: Unexpected pixel format\n"));
    }
}

TEST(ProgramRecordings, WhatIsNoRecordingIsToldInOneLine) {
    TemporaryFolder folder;
    for (const char* name : {"a.brec", "b.orirec!Screen_Stream.avi"}) {
        const std::string file =
            folder.Write(std::string(name).substr(0, std::string(name).find('!')), "x");
        const ProgramEnd end =
            RunProgram({"frame", folder / name, "--at", "0", "-o", folder / "out.png"});
        EXPECT_EQ(end.status, 1) << end.out;
        EXPECT_EQ(end.err.find('\n'), end.err.size() - 1) << end.err;
    }
}

// Every picture but the first changes one pixel of the one before.
TEST(ProgramRecordings, OneKeyFrameFarBehindIsVerified) {
    std::vector<Avi::Frame> frames;
    for (int i = 0; i < 60; ++i) {
        const std::string shade(3, static_cast<char>(0x20 + i));
        const std::string row = '\4' + shade;
        const std::string whole = row + std::string("\0\0", 2) + row;
        const std::string spot = std::string("\0\2", 2) + static_cast<char>(i % 4) + "\1\1" + shade;
        frames.push_back({(i == 0 ? whole : spot) + std::string("\0\1", 2), i == 0});
    }
    TemporaryFolder folder;
    WriteCompoundFile(
        folder / "a.orirec",
        {{"Screen_Stream.avi", Avi::OneVideo({AVI20::Read::FourCc("mrle"), BI_RLE8, 4, 2, 24},
                                             frames, Avi::IndexKind::OpenDml)}});
    const ProgramEnd end = RunProgram(
        {"verify", "--video", folder / "a.orirec!Screen_Stream.avi", "--json", "--seed", "7"});
    EXPECT_EQ(end.status, 0) << end.out << end.err;
    EXPECT_EQ(nlohmann::json::parse(end.out)["video"]["pictures"], 60);
}

} // namespace
