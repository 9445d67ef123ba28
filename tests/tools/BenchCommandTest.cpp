#include "tools/zanthe/BenchCommand.h"

#include <sstream>
#include <vector>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/tools/ScriptedSound.h"
#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/CommandError.h"

using Program::Bench;
using Program::BenchRequest;
using ::testing::HasSubstr;

namespace {

BenchRequest Request() {
    BenchRequest request;
    request.file = "clip.mp4";
    request.plan = {.openings = 2, .sequential = 10, .random = 5, .backward = 5, .scrubs = 5};
    return request;
}

std::unique_ptr<Program::IVideo> Open() {
    return std::make_unique<ScriptedVideo>(EvenStarts(100), 33'366'666);
}

boost::shared_ptr<Zanthe::IAudioReader> NoSound() {
    throw Program::CommandError("clip.mp4", "no reader for its sound");
}

boost::shared_ptr<Zanthe::IAudioReader> OpenSound() {
    return boost::make_shared<ScriptedSound>(3 * 44100);
}

} // namespace

TEST(Bench, PrintsARowAKind) {
    std::ostringstream out;
    Bench({Open, NoSound}, Request(), out);
    for (const char* part : {"clip.mp4: 16 x 8, script; seed 1\n", "median ms",
                             "  open to first picture        2", "  sequential                  10",
                             "  random ", "  backward ", "  to and fro ", "  peak memory "}) {
        EXPECT_THAT(out.str(), HasSubstr(part));
    }
}

TEST(Bench, PrintsTheSameAsJson) {
    BenchRequest request = Request();
    request.json = true;
    std::ostringstream out;
    Bench({Open, NoSound}, request, out);
    const auto json = nlohmann::json::parse(out.str());
    EXPECT_EQ(json["command"], "bench");
    ASSERT_EQ(json["results"].size(), 5U);
    EXPECT_EQ(json["results"][1]["kind"], "sequential");
    EXPECT_EQ(json["results"][1]["readings"], 10);
    EXPECT_LE(json["results"][1]["median_ms"], json["results"][1]["p95_ms"]);
    EXPECT_EQ(json["results"][1]["work"]["pictures_decoded"], 0) << "a script decodes nothing";
    EXPECT_GT(json["peak_memory_bytes"], 1 << 20);
}

TEST(Bench, AFileWithoutPicturesIsRefused) {
    std::ostringstream out;
    const auto open = [] {
        return std::make_unique<ScriptedVideo>(std::vector<std::int64_t>{}, 0);
    };
    EXPECT_THROW(Bench({open, NoSound}, Request(), out), Program::CommandError);
    EXPECT_EQ(out.str(), "");
}

TEST(Bench, SoundHasRowsOfItsOwn) {
    std::ostringstream out;
    Bench({Open, OpenSound}, Request(), out);
    for (const char* part :
         {"clip.mp4: 16 x 8, script; seed 1\n", "  sound at 44100 Hz, a second a reading\n",
          "times real time", "  open to first sound          5", "  to and fro "}) {
        EXPECT_THAT(out.str(), HasSubstr(part));
    }
}

TEST(Bench, AFileOfSoundAloneHasItsRows) {
    BenchRequest request = Request();
    const auto none = []() -> std::unique_ptr<Program::IVideo> {
        throw Program::CommandError("clip.mp4", "no reader for its pictures");
    };
    std::ostringstream text;
    Bench({none, OpenSound}, request, text);
    EXPECT_THAT(text.str(), HasSubstr("clip.mp4: seed 1\n  sound at"));
    request.json = true;
    std::ostringstream out;
    Bench({none, OpenSound}, request, out);
    const auto json = nlohmann::json::parse(out.str());
    EXPECT_TRUE(json["video"].is_null());
    EXPECT_EQ(json["results"].size(), 0U);
    EXPECT_EQ(json["audio_rate"], 44100);
    ASSERT_EQ(json["audio_results"].size(), 4U);
    EXPECT_EQ(json["audio_results"][0]["kind"], "open to first sound");
    EXPECT_GT(json["audio_results"][1]["times_real_time"], 0);
}

TEST(PeakMemory, CountsWhatWasHeldAtOnce) {
    const std::int64_t before = Program::PeakMemory();
    {
        std::vector<char> held(std::size_t{256} << 20);
        for (std::size_t i = 0; i < held.size(); i += 4096) {
            held[i] = 1;
        }
    }
    EXPECT_GE(Program::PeakMemory() - before, std::int64_t{100} << 20);
}
