// The commands on files with several tracks, or without the one that is asked for.
#include <cstdint>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/CompoundFile.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"

using ::testing::HasSubstr;

namespace {

std::string Chunk(const std::string& name, const std::string& bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    return name + std::string(reinterpret_cast<const char*>(&size), sizeof size) + bytes;
}

// A film that no reader walks through.
std::string ListsInLists() {
    std::string film;
    for (int i = 0; i < 100; ++i) {
        film = Chunk("LIST", "hdrl" + film);
    }
    return Chunk("RIFF", "AVI " + film);
}

class ProgramTracks : public testing::Test {
protected:
    // Runs ffmpeg and answers the path of the file that it made in our folder.
    std::string Made(const std::string& arguments, const std::string& name) {
        std::string path = m_folder / name;
        OutputOf("ffmpeg -nostdin -v error " + arguments + " '" + path + "' 2>&1");
        return path;
    }

    // Two tracks of pictures, 64 by 48 and 120 by 48.
    std::string TwoSizes(const std::string& codec, const std::string& name) {
        return Made(
            "-f lavfi -i testsrc=s=64x48:r=10:d=0.5 -f lavfi -i testsrc=s=120x48:r=10:d=0.5 "
            "-map 0 -map 1 " +
                codec,
            name);
    }

    std::string SizeOfFrame(const std::string& path, const std::string& stream = "0") {
        const std::string out = m_folder / "out.png";
        const ProgramEnd end =
            RunProgram({"frame", path, "--stream", stream, "--at", "0", "-o", out});
        if (end.status != 0) {
            return end.err;
        }
        const PngPicture png = ReadPng(out);
        return std::to_string(png.width) + 'x' + std::to_string(png.height);
    }

    // What a command says when it refuses, without the program's and the file's name.
    std::string RefusalOf(std::vector<std::string> arguments) {
        const std::string start = "zanthe: " + arguments[1] + ": ";
        const ProgramEnd end = RunProgram(arguments);
        EXPECT_EQ(end.status, 1) << end.out;
        EXPECT_EQ(end.err.substr(0, start.size()), start);
        EXPECT_EQ(end.err.find('\n'), end.err.size() - 1) << end.err;
        return end.err.substr(std::min(start.size(), end.err.size()));
    }

    std::string FrameRefusal(const std::string& path) {
        return RefusalOf({"frame", path, "--at", "0", "-o", m_folder / "none.png"});
    }

    TemporaryFolder m_folder;
};

} // namespace

TEST_F(ProgramTracks, APictureHasTheShapeOfItsOwnTrack) {
    const std::string h264 = TwoSizes("-c:v libx264 -pix_fmt yuv420p", "two.mp4");
    EXPECT_EQ(SizeOfFrame(h264), "64x48");
    const std::string png = TwoSizes("-c:v png -pix_fmt rgba", "two.mov");
    EXPECT_EQ(SizeOfFrame(png, "0"), "64x48");
    EXPECT_EQ(SizeOfFrame(png, "1"), "120x48");
}

TEST_F(ProgramTracks, APictureIsTurnedAsItsOwnTrackSays) {
    const std::string plain =
        Made("-f lavfi -i testsrc=s=64x48:r=10:d=0.5 -c:v libx264 -pix_fmt yuv420p", "plain.mp4");
    const std::string turned = MadeMedia("mp4-rotate90.mp4");
    const auto both = [&](const std::string& first, const std::string& second,
                          const std::string& name) {
        return Made("-i '" + first + "' -i '" + second + "' -map 0:v -map 1:v -c copy", name);
    };
    EXPECT_EQ(SizeOfFrame(both(plain, turned, "a.mp4")), "64x48");
    EXPECT_EQ(SizeOfFrame(both(turned, plain, "b.mp4")), "48x64");
}

TEST_F(ProgramTracks, TheFirstTrackOfPicturesIsTakenWhereSoundComesFirst) {
    for (const char* form :
         {"-c:v libx264 -pix_fmt yuv420p -f mp4 a.brec", "-c:v png -pix_fmt rgba b.mov"}) {
        const std::string words = form;
        const std::size_t at = words.rfind(' ');
        const std::string path =
            Made("-f lavfi -i sine=d=1 -f lavfi -i testsrc=s=64x48:r=10:d=1 -map 0 -map 1 " +
                     words.substr(0, at),
                 words.substr(at + 1));
        const auto json =
            nlohmann::json::parse(RunProgram({"verify", path, "--video", "--json"}).out);
        EXPECT_EQ(json["video"]["pictures"], 10) << path;
        const ProgramEnd frame =
            RunProgram({"frame", path, "--at", "0", "--json", "-o", m_folder / "out.png"});
        EXPECT_EQ(nlohmann::json::parse(frame.out)["stream"], 1) << path;
        EXPECT_EQ(RunProgram({"sheet", path, "-o", m_folder / "out.png"}).status, 0);
        EXPECT_EQ(RefusalOf({"verify", path, "--stream", "0", "--video"}),
                  "stream 0 is sound; pictures are in stream 1\n");
    }
}

TEST_F(ProgramTracks, ATrackOfAnotherKindIsNamedAsWhatItIs) {
    const std::string path = MadeMedia("rec-tracks.brec");
    const auto picture = [&](const char* command, const char* stream) {
        std::vector<std::string> arguments{command, path, "--stream", stream};
        if (std::string(command) == "verify") {
            arguments.emplace_back("--video");
        } else {
            arguments.insert(arguments.end(), {"-o", m_folder / "none.png"});
        }
        if (std::string(command) == "frame") {
            arguments.insert(arguments.end(), {"--at", "0"});
        }
        return RefusalOf(arguments);
    };
    for (const char* command : {"frame", "sheet", "verify"}) {
        EXPECT_EQ(picture(command, "1"), "stream 1 is sound; pictures are in streams 0, 2, 4\n");
        EXPECT_EQ(picture(command, "9"), "has no stream 9: it has 5 tracks, counted from 0; "
                                         "pictures are in streams 0, 2, 4\n");
    }
    const auto sound = [&](const char* track) {
        return RefusalOf({"audio", path, "--track", track, "-o", m_folder / "none.wav"});
    };
    EXPECT_EQ(sound("0"), "track 0 is pictures; sound is in tracks 1, 3\n");
    EXPECT_EQ(sound("9"),
              "has no track 9: it has 5 tracks, counted from 0; sound is in tracks 1, 3\n");
}

TEST_F(ProgramTracks, ATrackOfPngImagesThatIsNoneIsRefused) {
    const std::string path = MadeMedia("rec-png-third.mov");
    const auto refusal = [&](const char* stream) {
        return RefusalOf(
            {"frame", path, "--stream", stream, "--at", "0", "-o", m_folder / "none.png"});
    };
    EXPECT_EQ(refusal("0"), "stream 0 is sound; pictures are in streams 1, 2, 3\n");
    EXPECT_EQ(refusal("7"), "has no stream 7: it has 4 tracks, counted from 0; pictures are in "
                            "streams 1, 2, 3\n");
    EXPECT_THAT(FrameRefusal(path), HasSubstr("; PNG images are in streams 2, 3\n"));
}

TEST_F(ProgramTracks, WhatIsNoRecordingIsSaidToBeWhatItIs) {
    const std::string whole = ReadWholeFile(MadeMedia("rec-tracks.brec"));
    EXPECT_EQ(FrameRefusal(m_folder.Write("cut.brec", whole.substr(0, 60'000)))
                  .find("no reader for its pictures: the recording is damaged; "),
              0U);
    const std::string picture =
        Made("-f lavfi -i testsrc=s=64x48:d=0.1 -frames:v 1 -f image2", "a.png");
    EXPECT_EQ(FrameRefusal(m_folder.Write("pic.brec", ReadWholeFile(picture))),
              "no reader for its pictures: it is no recording on MP4; the name says .brec, the "
              "contents say png picture\n");
    EXPECT_EQ(FrameRefusal(Made("-f lavfi -i sine=d=1 -c:a aac -f mp4", "sound.brec")),
              "has no pictures\n");
    std::string counts = ReadWholeFile(MadeMedia("rec-hevc.brec"));
    counts.replace(counts.find("stsz") + 12, 4, "\x7f\xff\xff\xff", 4);
    EXPECT_THAT(FrameRefusal(m_folder.Write("counts.brec", counts)),
                testing::AnyOf(HasSubstr("is damaged"), HasSubstr("none of its pictures can be")));
}

TEST_F(ProgramTracks, ALegacyRecordingIsToBeNamedByItsMember) {
    const std::string path = m_folder / "a.orirec";
    const std::string film = ReadWholeFile(MadeMedia("rec-cinepak.avi"));
    WriteCompoundFile(path, {{"Screen_Stream.avi", film}});
    EXPECT_EQ(FrameRefusal(path), "no reader for its pictures: it is a legacy recording: name its "
                                  "member, " +
                                      path + "!Screen_Stream.avi\n");
    EXPECT_THAT(RunProgram({"classify", path}).out,
                HasSubstr("\ncontents          compound file\n"));
    EXPECT_EQ(nlohmann::json::parse(RunProgram({"classify", path, "--json"}).out)["contents"],
              "compound file");
    WriteCompoundFile(path, {{"Screen_Stream.avi", ListsInLists()}});
    EXPECT_EQ(FrameRefusal(path + "!Screen_Stream.avi"),
              "no reader for its pictures: the film in it is damaged, or none\n");
}

TEST_F(ProgramTracks, AMemberOfARecordingOnMp4IsNotOpened) {
    EXPECT_THAT(FrameRefusal(MadeMedia("rec-tracks.brec") + "!video0.mp4"),
                HasSubstr("name the recording itself, and one of its tracks by --stream\n"));
}

TEST_F(ProgramTracks, AStillPictureIsPointedToItsCommand) {
    const std::string picture =
        Made("-f lavfi -i testsrc=s=64x48:d=0.1 -frames:v 1 -f image2", "a.png");
    EXPECT_THAT(FrameRefusal(picture),
                HasSubstr("its contents are png picture, which zanthe image reads\n"));
}

TEST_F(ProgramTracks, AFileWithoutSoundHasNone) {
    for (const char* name : {"mp4-plain.mp4", "rec-hevc.brec", "rec-png-rgba.mov"}) {
        const std::string path = Made("-i '" + MadeMedia(name) + "' -map 0:v -c copy -f mov", name);
        EXPECT_EQ(RefusalOf({"audio", path, "-o", m_folder / "none.wav"}), "has no sound\n");
    }
}
