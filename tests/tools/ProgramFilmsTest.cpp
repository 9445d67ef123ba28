// The commands on films whose readers tell no times, and on ones that take long.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/GifBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"

namespace fs = std::filesystem;
using ::testing::HasSubstr;

namespace {

nlohmann::json RunForJson(const std::vector<std::string>& arguments) {
    const ProgramEnd end = RunProgram(arguments);
    EXPECT_EQ(end.status, 0) << end.err;
    return nlohmann::json::parse(end.out);
}

// Pictures of other colours; the delays are in hundredths of a second.
std::string Gif(const std::vector<int>& delays) {
    GifBytes gif(16, 8);
    for (std::size_t i = 0; i < delays.size(); ++i) {
        gif.Control(delays[i], 1).Frame(0, 0, 16, 8, static_cast<int>(i % 8));
    }
    return gif.Bytes();
}

std::vector<std::int64_t> TimesOfSheet(const nlohmann::json& sheet) {
    std::vector<std::int64_t> times;
    for (const auto& picture : sheet["pictures"]) {
        EXPECT_EQ(picture["shown"], true);
        times.push_back(picture["time_100ns"]);
    }
    return times;
}

// Minutes of work in one piece: each of the frames covers a large screen.
std::string LongGif() {
    GifBytes gif(5000, 5000);
    for (int i = 0; i < 3000; ++i) {
        gif.Control(2, 1).Frame(0, 0, 5000, 5000, std::vector<int>{i % 8});
    }
    return gif.Bytes();
}

bool IsAtWork(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().filename().string().starts_with(".zanthe-")) {
            return true;
        }
    }
    return false;
}

// Asks for a picture that takes long, in a folder of its own, and waits for the work to begin.
class ProgramLong : public testing::Test {
protected:
    ProgramLong()
        : m_run({"frame", m_source.Write("long.gif", LongGif()), "--at", "59", "-o",
                 m_folder / "out.png"}) {
        while (!IsAtWork(m_folder.Path())) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    TemporaryFolder m_source;
    TemporaryFolder m_folder;
    ProgramRun m_run;
};

} // namespace

TEST(ProgramFilms, AGifIsAsLongAsItsDelays) {
    TemporaryFolder folder;
    // The third stays for longer than any search for an end would wait.
    const std::string path = folder.Write("a.gif", Gif({20, 0, 2000, 5}));
    const auto found = RunForJson({"verify", path, "--video", "--json"});
    EXPECT_EQ(found["video"]["pictures"], 4);
    EXPECT_EQ(found["video"]["seconds"], 20.35);
    EXPECT_EQ(found["differences"], 0);
    EXPECT_EQ(TimesOfSheet(RunForJson({"sheet", path, "--json", "-o", folder / "out.png"})),
              (std::vector<std::int64_t>{0, 2'000'000, 3'000'000, 203'000'000}));
    EXPECT_EQ(RunForJson({"frame", path, "--at", "20.31", "--json", "-o",
                          folder / "out.png"})["frames"][0]["time_100ns"],
              203'000'000);
    EXPECT_EQ(RunForJson({"frame", path, "--at", "100", "--json", "-o",
                          folder / "out.png"})["frames"][0]["time_100ns"],
              203'000'000)
        << "the last one stays";
}

TEST(ProgramFilms, AGifOfOnePictureIsAsLongAsThat) {
    TemporaryFolder folder;
    const std::string path = folder.Write("a.gif", Gif({7}));
    EXPECT_THAT(RunProgram({"verify", path, "--video"}).out, HasSubstr(": 1 picture (0.070 s) of"));
    EXPECT_EQ(RunForJson({"sheet", path, "--json", "-o", folder / "out.png"})["pictures"].size(),
              1U);
}

TEST(ProgramFilms, ASheetOfManyPicturesTellsWhenTheyBegin) {
    TemporaryFolder folder;
    const std::string path = folder.Write("a.gif", Gif(std::vector<int>(40, 10)));
    const auto times = TimesOfSheet(RunForJson(
        {"sheet", path, "--columns", "2", "--rows", "2", "--json", "-o", folder / "out.png"}));
    EXPECT_EQ(times, (std::vector<std::int64_t>{5'000'000, 15'000'000, 25'000'000, 35'000'000}));
}

TEST(ProgramFilms, ASheetShowsEachPngImageOnce) {
    TemporaryFolder folder;
    const auto sheet =
        RunForJson({"sheet", MadeMedia("rec-png-rgba.mov"), "--json", "-o", folder / "out.png"});
    EXPECT_EQ(TimesOfSheet(sheet),
              (std::vector<std::int64_t>{0, 1'000'000, 2'000'000, 3'000'000, 4'000'000, 5'000'000,
                                         6'000'000, 7'000'000}));
    EXPECT_EQ(sheet["columns"], 4);
    EXPECT_EQ(sheet["rows"], 2);
}

TEST(ProgramFilms, ASheetTellsWhenPngImagesAndFilmsOfRecordingsBegin) {
    TemporaryFolder folder;
    const auto times =
        TimesOfSheet(RunForJson({"sheet", MadeMedia("rec-png-rgba.mov"), "--columns", "2", "--rows",
                                 "2", "--json", "-o", folder / "out.png"}));
    EXPECT_EQ(times, (std::vector<std::int64_t>{1'000'000, 3'000'000, 5'000'000, 7'000'000}));
}

TEST(ProgramFilms, TheEndIsExact) {
    TemporaryFolder folder;
    const std::string path = MadeMedia("rec-png-rgba.mov");
    EXPECT_EQ(RunProgram({"frame", path, "--at", "0.8", "-o", folder / "out.png"}).err,
              "zanthe: " + path +
                  ": has no picture at 0.8 s: its last picture ends at "
                  "0:00:00.800\n");
    EXPECT_EQ(RunForJson({"verify", path, "--video", "--json"})["video"]["last_picture_end_100ns"],
              8'000'000);
}

TEST_F(ProgramLong, ASecondSignalEndsItAtOnce) {
    m_run.Signal(SIGINT);
    m_run.Signal(SIGTERM);
    const auto begin = std::chrono::steady_clock::now();
    const int status = m_run.Wait();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
    EXPECT_THAT(status, testing::AnyOf(128 + SIGINT, 128 + SIGTERM)); // whichever came last
    EXPECT_TRUE(fs::is_empty(m_folder.Path()));
}

TEST_F(ProgramLong, ASignalEndsItAfterAWhile) {
    m_run.Signal(SIGTERM);
    EXPECT_EQ(m_run.Wait(), 128 + SIGTERM);
    EXPECT_TRUE(fs::is_empty(m_folder.Path()));
}
