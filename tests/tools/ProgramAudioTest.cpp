#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"
#include "zanthe/audio/WavUtl.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::StartsWith;

namespace {

std::string Tone() {
    return MadeMedia("tone-44100-stereo-cbr128.mp3");
}

std::ptrdiff_t FilesIn(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

std::vector<std::vector<float>> ReadThroughTheLibrary(const std::string& path, int rate,
                                                      std::int64_t start, unsigned int frames) {
    std::vector<std::vector<float>> planes(2, std::vector<float>(frames));
    std::vector<float*> pointers{planes[0].data(), planes[1].data()};
    const auto reader = Zanthe::FFMPEGAudioReader::Create(path, -1, rate);
    const unsigned int count = reader->FillAudioBuffer(start, frames, pointers);
    planes[0].resize(count);
    planes[1].resize(count);
    return planes;
}

// Status 1, nothing on stdout, the one line on stderr, and no file in the output's folder.
void ExpectRefused(const std::vector<std::string>& arguments, const std::string& line) {
    TemporaryFolder folder;
    std::vector<std::string> all{"audio"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    if (std::find(all.begin(), all.end(), "-o") == all.end()) {
        all.insert(all.end(), {"-o", folder / "out.wav"});
    }
    const ProgramEnd end = RunProgram(all);
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(end.err, "zanthe: " + line + "\n");
    EXPECT_EQ(FilesIn(folder.Path()), 0);
}

} // namespace

TEST(ProgramAudio, WritesTheWholeSound) {
    TemporaryFolder folder;
    const std::string out = folder / "out.wav";
    const ProgramEnd end = RunProgram({"audio", Tone(), "--float", "-o", out});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(end.err, "");
    const auto whole = ReadThroughTheLibrary(Tone(), 44100, 0, 44100 * 60);
    EXPECT_EQ(Zanthe::WavUtl::ReadWav(out), whole);
    EXPECT_THAT(end.out, StartsWith(out + ": " + std::to_string(whole[0].size()) + " frames ("));
    EXPECT_THAT(end.out, EndsWith(" from frame 0 at 44100 Hz, stereo, 32 bit float\n"));
    EXPECT_EQ(FilesIn(folder.Path()), 1);
}

TEST(ProgramAudio, WritesThePartAskedForAtTheRateAskedFor) {
    TemporaryFolder folder;
    const std::string out = folder / "out.wav";
    const ProgramEnd end = RunProgram({"audio", Tone(), "--start", "50001", "--frames", "1001",
                                       "--rate", "48000", "--float", "-o", out});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(Zanthe::WavUtl::ReadWav(out), ReadThroughTheLibrary(Tone(), 48000, 50001, 1001));
}

TEST(ProgramAudio, ANumberWithALeadingZeroIsDecimal) {
    TemporaryFolder folder;
    const std::string out = folder / "out.wav";
    EXPECT_EQ(RunProgram({"audio", Tone(), "--frames", "010", "-o", out}).status, 0);
    EXPECT_EQ(fs::file_size(out), 44U + 10 * 4);
}

TEST(ProgramAudio, WritesSixteenBitByDefault) {
    TemporaryFolder folder;
    const std::string out = folder / "out.wav";
    EXPECT_EQ(RunProgram({"audio", Tone(), "--frames", "12345", "-o", out}).status, 0);
    EXPECT_EQ(fs::file_size(out), 44U + 12345 * 4);
}

TEST(ProgramAudio, TellsWhatItDidAsJson) {
    TemporaryFolder folder;
    const std::string out = folder / "out.wav";
    const ProgramEnd end = RunProgram({"audio", Tone(), "--start", "7", "--frames", "22050",
                                       "--rate", "22050", "-o", out, "--json"});
    EXPECT_EQ(end.status, 0) << end.err;
    const auto json = nlohmann::json::parse(end.out);
    EXPECT_EQ(json["command"], "audio");
    EXPECT_EQ(json["file"], Tone());
    EXPECT_EQ(json["rate"], 22050);
    EXPECT_EQ(json["channels"], 2);
    EXPECT_EQ(json["format"], "pcm16");
    EXPECT_EQ(json["start"], 7);
    EXPECT_EQ(json["frames"], 22050);
    EXPECT_EQ(json["seconds"], 1.0);
    EXPECT_EQ(json["output"], out);
}

TEST(ProgramAudio, TheExtensionsCaseDoesNotMatter) {
    TemporaryFolder folder;
    const std::string in = folder.Write("TONE.Mp3", ReadWholeFile(Tone()));
    EXPECT_EQ(RunProgram({"audio", in, "--frames", "10", "-o", folder / "out.wav"}).status, 0);
}

TEST(ProgramAudio, ANameMayHoldAnything) {
    TemporaryFolder folder;
    const std::string in = folder.Write("a: \"b\"\n\xFF%s?.mp3", ReadWholeFile(Tone()));
    const ProgramEnd end =
        RunProgram({"audio", in, "--frames", "10", "-o", folder / "\xFE\n.wav", "--json"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_TRUE(nlohmann::json::accept(end.out)) << end.out;
    EXPECT_EQ(fs::file_size(folder / "\xFE\n.wav"), 44U + 40);
}

TEST(ProgramAudio, TheInputIsNoOutputByWhateverName) {
    TemporaryFolder folder;
    const std::string in = folder.Write("tone.mp3", ReadWholeFile(Tone()));
    fs::create_symlink(in, folder / "link.wav");
    fs::create_hard_link(in, folder / "second.wav");
    for (const std::string& out :
         {in, folder / "./tone.mp3", folder / "link.wav", folder / "second.wav"}) {
        const ProgramEnd end = RunProgram({"audio", in, "--frames", "10", "-o", out});
        EXPECT_EQ(end.status, 1);
        EXPECT_EQ(end.err, "zanthe: " + out + ": is the input file itself\n");
    }
    EXPECT_EQ(ReadWholeFile(in), ReadWholeFile(Tone()));
    EXPECT_EQ(FilesIn(folder.Path()), 3);
}

TEST(ProgramAudio, RefusesAMissingFile) {
    ExpectRefused({"/nowhere/clip.mp3"}, "/nowhere/clip.mp3: no such file");
    ExpectRefused({"/nowhere/clip.mp4"}, "/nowhere/clip.mp4: no such file");
}

TEST(ProgramAudio, RefusesAFolder) {
    TemporaryFolder folder;
    fs::create_directory(folder / "clip.mp3");
    ExpectRefused({folder / "clip.mp3"}, (folder / "clip.mp3") + ": is a folder");
}

TEST(ProgramAudio, RefusesAnEmptyFile) {
    TemporaryFolder folder;
    const std::string in = folder.Write("clip.mp3", "");
    ExpectRefused({in}, in + ": is empty");
}

TEST(ProgramAudio, RefusesTextThatIsNamedLikeSound) {
    TemporaryFolder folder;
    const std::string in = folder.Write("clip.mp3", "This is no sound, whatever its name says.\n");
    ExpectRefused({in}, in + ": PacketReader() - m_formatContext->openInput failed");
}

TEST(ProgramAudio, SaysWhatStandsInTheWay) {
    const std::string avi = MadeMedia("rec-sound.avi");
    ExpectRefused({avi}, avi + ": no reader for its sound: Failed to create DSAudioChain; by its "
                               "name the file goes to DirectShow, which this build does not have; "
                               "its contents are avi");
    TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("mp4-plain.mp4"));
    const std::string cut = folder.Write("cut.mp4", whole.substr(0, whole.find("moov") - 4));
    ExpectRefused({cut}, cut + ": no reader for its sound: Failed to create MediaFoundation "
                               "resource; what is in the file cannot be read");
}

TEST(ProgramAudio, RefusesAKindOfFileThatHasNoReader) {
    TemporaryFolder folder;
    for (const char* name : {"clip.avi", "clip", "mp3", "clip.mp3.txt"}) {
        const std::string in = folder.Write(name, "x");
        ExpectRefused({in}, in + ": no reader for its sound: Failed to create DSAudioChain; by its "
                                 "name the file goes to DirectShow, which this build does not "
                                 "have; its contents are of no known kind");
    }
    for (const char* name : {"clip.mp4", "clip.WAV"}) {
        const std::string in = folder.Write(name, "x");
        ExpectRefused({in}, in + ": no reader for its sound: "
                                 "Failed to create MediaFoundation resource; what is in the file "
                                 "cannot be read");
    }
}

namespace {

std::uint32_t RateIn(const std::string& wav) {
    std::uint32_t rate = 0;
    std::memcpy(&rate, ReadWholeFile(wav).data() + 24, sizeof(rate));
    return rate;
}

} // namespace

TEST(ProgramAudio, ReadsEveryKindOfFileThatMediaFoundationTakes) {
    TemporaryFolder folder;
    for (const char* name : {"aac-44100.m4a", "aac-film.m2ts", "aac-film.mov", "aac-film.mp4",
                             "ac3-film.mts", "pcm-44100.wav", "wma2-44100.wma", "wma2-film.wmv"}) {
        for (const char* rate : {"44100", "16001"}) {
            const std::string out = folder / "out.wav";
            const ProgramEnd end =
                RunProgram({"audio", MadeMedia(std::string("sound/") + name), "--start", "1000",
                            "--frames", "5000", "--rate", rate, "-o", out});
            EXPECT_EQ(end.status, 0) << end.err;
            EXPECT_EQ(std::to_string(RateIn(out)), rate) << name;
            EXPECT_EQ(fs::file_size(out), 44U + 5000 * 4) << name;
        }
    }
}

TEST(ProgramAudio, ACopyOfTheTrackGivesTheSameSoundAndGoes) {
    TemporaryFolder folder;
    TemporaryFolder copies;
    const std::string film = MadeMedia("sound/aac-film.mp4");
    setenv("TMPDIR", copies.Path().c_str(), 1);
    copies.Write("recontainer31132011991-deadbeef.m4a", "what a killed run left");
    RunProgram({"audio", film, "-o", folder / "direct.wav"});
    EXPECT_EQ(FilesIn(copies.Path()), 1);
    const ProgramEnd end =
        RunProgram({"audio", film, "--recontainer", "-o", folder / "copied.wav"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(ReadWholeFile(folder / "copied.wav"), ReadWholeFile(folder / "direct.wav"));
    EXPECT_EQ(FilesIn(copies.Path()), 0);
    const std::string damaged = folder.Write("a.mp4", ReadWholeFile(film).substr(0, 5000));
    EXPECT_EQ(RunProgram({"audio", damaged, "--recontainer", "-o", folder / "no.wav"}).status, 1);
    EXPECT_EQ(FilesIn(copies.Path()), 0);
    unsetenv("TMPDIR");
}

TEST(ProgramAudio, RefusesARecordingWithoutSound) {
    TemporaryFolder folder;
    const std::string in = folder.Write("clip.brec", "x");
    ExpectRefused({in}, in + ": holds no sound");
}

TEST(ProgramAudio, TheLineStaysOneWhateverTheName) {
    ExpectRefused({"/nowhere/a\nb.mp3"}, "/nowhere/a\\x0ab.mp3: no such file");
}

TEST(ProgramAudio, RefusesAnOutputThatCannotBe) {
    TemporaryFolder folder;
    const std::string nowhere = folder / "nowhere/out.wav";
    ExpectRefused({Tone(), "-o", nowhere}, nowhere + ": cannot be written: no such folder");
    ExpectRefused({Tone(), "-o", folder.Path()},
                  folder.Path().string() + ": cannot be written: is a folder");
    ExpectRefused({Tone(), "-o", "/dev/null"},
                  "/dev/null: cannot be written: is not a regular file");
    EXPECT_EQ(FilesIn(folder.Path()), 0);
}

TEST(ProgramAudio, WritesToStandardOutput) {
    TemporaryFolder folder;
    RunProgram({"audio", Tone(), "--frames", "1000", "-o", folder / "out.wav"});
    for (const char* name : {"-", "/dev/stdout"}) {
        const ProgramEnd end = RunProgram({"audio", Tone(), "--frames", "1000", "-o", name});
        EXPECT_EQ(end.status, 0) << end.err;
        EXPECT_EQ(end.out, ReadWholeFile(folder / "out.wav"));
        EXPECT_THAT(end.err,
                    EndsWith(": 1000 frames (0.023 s) from frame 0 at 44100 Hz, stereo, 16 "
                             "bit\n"));
    }
}

TEST(ProgramAudio, WhenNobodyReadsItsOutputItEndsSilently) {
    TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    setenv("TMPDIR", folder.Path().c_str(), 1);
    // Read and write at once, so that the program may open it without waiting.
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const int filler = open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    const std::string block(4096, 'x');
    while (write(filler, block.data(), block.size()) > 0) {
    }
    close(filler);
    ProgramRun run({"audio", Tone(), "-o", "-"}, pipe);
    const auto temporaryFiles = [&] {
        const auto isOurs = [](const fs::directory_entry& entry) {
            return entry.path().filename().string().starts_with(".zanthe-");
        };
        return std::count_if(fs::directory_iterator(folder.Path()), {}, isOurs);
    };
    while (temporaryFiles() == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    close(reader);
    EXPECT_EQ(run.Wait(), 128 + SIGPIPE);
    unsetenv("TMPDIR");
    EXPECT_EQ(run.Err(), "");
    EXPECT_EQ(temporaryFiles(), 0);
}

TEST(ProgramAudio, RefusesAStartBehindTheSound) {
    ExpectRefused({Tone(), "--start", "99999999"}, Tone() + ": has no sound at frame 99999999");
    ExpectRefused({Tone(), "--start", "400000000000"},
                  Tone() + ": has no sound at frame 400000000000");
}

TEST(ProgramAudio, SaysThatTheDiskIsFull) {
    TemporaryFolder folder;

    // Files of this process and those it starts end here, as on a full disk.
    struct rlimit before {};

    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit small = before;
    small.rlim_cur = 100000;
    std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const ProgramEnd end = RunProgram({"audio", Tone(), "-o", folder / "out.wav"});
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.err, "zanthe: " + (folder / "out.wav") + ": could not be written whole\n");
    EXPECT_EQ(FilesIn(folder.Path()), 0);
}

namespace {

// Hours of sound: the tone's frames again and again, without the first one and its table of
// contents.
std::string WriteLongSound(const TemporaryFolder& folder) {
    const std::string tone = ReadWholeFile(MadeMedia("tone-44100-stereo-cbr-noxing.mp3"));
    std::string path = folder / "long.mp3";
    std::ofstream stream(path, std::ios::binary);
    for (int i = 0; i < 600; ++i) {
        stream << tone;
    }
    return path;
}

void ExpectNothingLeftAfter(int signal, int status) {
    TemporaryFolder folder;
    TemporaryFolder results;
    ProgramRun run(
        {"audio", WriteLongSound(folder), "--rate", "192000", "-o", results / "out.wav"});
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (FilesIn(results.Path()) == 0 && std::chrono::steady_clock::now() < giveUp) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ASSERT_EQ(FilesIn(results.Path()), 1) << run.Err();
    ASSERT_FALSE(fs::exists(results / "out.wav")) << "done before it could be interrupted";
    run.Signal(signal);
    EXPECT_EQ(run.Wait(), status);
    EXPECT_EQ(run.Out(), "");
    EXPECT_EQ(run.Err(), "");
    EXPECT_EQ(FilesIn(results.Path()), 0);
}

} // namespace

TEST(ProgramAudio, InterruptedItLeavesNothing) {
    ExpectNothingLeftAfter(SIGINT, 130);
}

TEST(ProgramAudio, TerminatedItLeavesNothing) {
    ExpectNothingLeftAfter(SIGTERM, 143);
}
