#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

std::string Tone() {
    return MadeMedia("tone-44100-stereo-cbr128.mp3");
}

// Whether it has begun to keep the sound, in a file without a name: the sign that it is at work.
bool HoldsDeletedFile(pid_t process) {
    std::error_code gone;
    const auto folder = std::filesystem::path("/proc") / std::to_string(process) / "fd";
    for (const auto& entry : std::filesystem::directory_iterator(folder, gone)) {
        if (std::filesystem::read_symlink(entry, gone).string().ends_with(" (deleted)")) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(ProgramVerify, ASoundIsTheSameInEveryOrder) {
    const ProgramEnd end = RunProgram({"verify", Tone(), "--seed", "1"});
    EXPECT_EQ(end.status, 0) << end.out << end.err;
    EXPECT_EQ(end.err, "");
    EXPECT_THAT(end.out, HasSubstr(" at 44100 Hz, stereo; seed 1\n"));
    EXPECT_THAT(end.out, HasSubstr("  random              200 spans "));
}

TEST(ProgramVerify, ASoundAtAnotherRateIsTheSameInEveryOrder) {
    const ProgramEnd end =
        RunProgram({"verify", "--audio", Tone(), "--rate", "48000", "--seeks", "40"});
    EXPECT_EQ(end.status, 0) << end.out << end.err;
}

TEST(ProgramVerify, SoundOfEveryKindIsTheSameInEveryOrder) {
    for (const char* file :
         {"sound/pcm-48000-24.wav", "sound/aac-44100.m4a", "sound/aac-film.mp4",
          "sound/aac-film.mov", "sound/alac-44100.m4a", "sound/mp3-film.mp4",
          "sound/wma1-32000.wma", "sound/wma2-film.wmv", "sound/ac3-film.mts",
          "sound/aac-film.m2ts", "sound-exact/aac-doubled.m4a", "sound-exact/sound-late.mp4",
          "sound-exact/sound-longer.mp4", "sound-exact/edit-inside.m4a"}) {
        const ProgramEnd end =
            RunProgram({"verify", "--audio", MadeMedia(file), "--rate", "16001", "--seeks", "10"});
        EXPECT_EQ(end.status, 0) << file << '\n' << end.out << end.err;
        EXPECT_EQ(end.err, "") << file;
    }
}

TEST(ProgramVerify, TellsWhatItComparedAsJson) {
    const ProgramEnd end =
        RunProgram({"verify", Tone(), "--seed", "18446744073709551615", "--seeks", "30", "--json"});
    EXPECT_EQ(end.status, 0) << end.err;
    const auto json = nlohmann::json::parse(end.out);
    EXPECT_EQ(json["file"], Tone());
    EXPECT_EQ(json["seed"], 18446744073709551615U);
    EXPECT_EQ(json["audio"]["compared"][1]["spans"], 30);
    EXPECT_EQ(json["differences"], 0);
    EXPECT_GT(json["audio"]["frames_compared"], json["audio"]["frames"]);
    EXPECT_EQ(json["video"], nullptr);
    EXPECT_NE(json["video_absent"], nullptr);
}

TEST(ProgramVerify, ASeedIsChosenAndPrintedWhenNoneIsGiven) {
    const auto seed = [] {
        return nlohmann::json::parse(
                   RunProgram({"verify", Tone(), "--seeks", "0", "--json"}).out)["seed"]
            .get<std::uint64_t>();
    };
    EXPECT_NE(seed(), seed());
}

TEST(ProgramVerify, RefusesWhatAudioRefuses) {
    TemporaryFolder folder;
    const ProgramEnd missing = RunProgram({"verify", folder / "clip.mp3", "--json"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "zanthe: " + (folder / "clip.mp3") + ": no such file\n");
    const std::string movie = folder.Write("clip.mp4", "x");
    const ProgramEnd unread = RunProgram({"verify", movie});
    EXPECT_EQ(unread.status, 1);
    EXPECT_EQ(unread.out, "");
    EXPECT_THAT(unread.err, StartsWith("zanthe: " + movie + ": no reader for its sound: "));
    EXPECT_THAT(unread.err, HasSubstr("; no reader for its pictures: "));
}

TEST(ProgramVerify, InterruptedItEndsSilently) {
    ProgramRun run({"verify", Tone(), "--seeks", "1000000000"});
    for (int i = 0; i < 12000 && !HoldsDeletedFile(run.Process()); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    run.Signal(SIGINT);
    EXPECT_EQ(run.Wait(), 130);
    EXPECT_EQ(run.Out(), "");
    EXPECT_EQ(run.Err(), "");
}
