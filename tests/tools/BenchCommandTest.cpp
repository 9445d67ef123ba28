#include "tools/zanthe/BenchCommand.h"

#include <sstream>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

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

} // namespace

TEST(Bench, PrintsARowAKind) {
    std::ostringstream out;
    Bench(Open, Request(), out);
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
    Bench(Open, request, out);
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
    EXPECT_THROW(Bench(open, Request(), out), Program::CommandError);
    EXPECT_EQ(out.str(), "");
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
