#include "tools/zanthe/VerifyReport.h"

#include <bit>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using Program::Difference;
using Program::ReadKind;
using Program::VerifyReport;

namespace {

VerifyReport Report() {
    VerifyReport report{.file = "clip.mp3", .rate = 44100, .seed = 12345, .audio = {}};
    report.audio.frames = 66150;
    report.audio.tallies = {{ReadKind::Linear, 2, 66150, 0},
                            {ReadKind::Random, 200, 5000000, 0},
                            {ReadKind::Backward, 101, 66150, 0},
                            {ReadKind::AcrossEnd, 16, 12345, 0},
                            {ReadKind::BehindEnd, 16, 0, 0}};
    return report;
}

Difference WrongSample() {
    return {.what = Difference::What::Sample,
            .span = {.kind = ReadKind::Random, .index = 3, .start = 1000, .count = 51},
            .frame = 1050,
            .channel = 1,
            .expected = 0.5F,
            .answered = -0.25F};
}

VerifyReport WithDifference(const Difference& difference) {
    VerifyReport report = Report();
    report.audio.tallies[1].differences = 2;
    report.audio.first = difference;
    return report;
}

std::string Lines(const VerifyReport& report) {
    std::ostringstream out;
    PrintLines(report, out);
    return out.str();
}

Program::Json Parsed(const VerifyReport& report) {
    return JsonOf(report);
}

} // namespace

TEST(VerifyReport, SaysWhatWasCompared) {
    EXPECT_EQ(Lines(Report()), "clip.mp3: 66150 frames (1.500 s) at 44100 Hz, stereo; seed 12345\n"
                               "  linear                2 spans        66150 frames  equal\n"
                               "  random              200 spans      5000000 frames  equal\n"
                               "  backward            101 spans        66150 frames  equal\n"
                               "  across the end       16 spans        12345 frames  equal\n"
                               "  behind the end       16 spans            0 frames  equal\n");
}

TEST(VerifyReport, SaysWhereTheFirstDifferenceIs) {
    const std::string text = Lines(WithDifference(WrongSample()));
    EXPECT_NE(text.find("5000000 frames  2 spans differ\n"), std::string::npos);
    EXPECT_NE(
        text.find("\nfirst difference: random read 3 of 51 frames at 1000: frame 1050 channel "
                  "1 is -0.25 (0xbe800000), expected 0.5 (0x3f000000)\n"),
        std::string::npos);
}

TEST(VerifyReport, DescribesAWrongCount) {
    EXPECT_EQ(Program::Describe({.what = Difference::What::Count,
                                 .span = {.kind = ReadKind::AcrossEnd, .start = 10, .count = 20},
                                 .expectedCount = 5,
                                 .answeredCount = 6}),
              "across the end read 0 of 20 frames at 10: answered 6 frames, expected 5");
}

TEST(VerifyReport, DescribesATouchedFrame) {
    EXPECT_EQ(
        Program::Describe({.what = Difference::What::Touched,
                           .span = {.kind = ReadKind::Linear, .start = 10, .count = 20},
                           .answeredCount = 5,
                           .frame = 16,
                           .channel = 0,
                           .answered = 1}),
        "linear read 0 of 20 frames at 10: wrote 1 (0x3f800000) at frame 16 channel 0, behind "
        "the 5 frames it answered");
}

TEST(VerifyReport, DescribesAFailureOnOneLine) {
    EXPECT_EQ(Program::Describe({.what = Difference::What::Failure,
                                 .span = {.kind = ReadKind::Backward, .start = 10, .count = 20},
                                 .failure = "no\nmore"}),
              "backward read 0 of 20 frames at 10: failed: no\\x0amore");
}

TEST(VerifyReport, TheJsonHoldsTheSame) {
    const auto json = Parsed(Report());
    EXPECT_EQ(json["rate"], 44100);
    EXPECT_EQ(json["channels"], 2);
    EXPECT_EQ(json["frames"], 66150);
    EXPECT_EQ(json["seconds"], 1.5);
    EXPECT_EQ(json["spans"], 335);
    EXPECT_EQ(json["frames_compared"], 5000000 + 66150 + 12345);
    EXPECT_EQ(json["differences"], 0);
    EXPECT_TRUE(json["first_difference"].is_null());
    ASSERT_EQ(json["compared"].size(), 5U);
    EXPECT_EQ(json["compared"][1]["kind"], "random");
    EXPECT_EQ(json["compared"][1]["spans"], 200);
    EXPECT_EQ(json["compared"][1]["frames"], 5000000);
}

TEST(VerifyReport, TheJsonHoldsTheFirstDifference) {
    const auto json = Parsed(WithDifference(WrongSample()));
    EXPECT_EQ(json["differences"], 2);
    const auto& first = json["first_difference"];
    EXPECT_EQ(first["what"], "sample");
    EXPECT_EQ(first["kind"], "random");
    EXPECT_EQ(first["span"], 3);
    EXPECT_EQ(first["frame"], 1050);
    EXPECT_EQ(first["channel"], 1);
    EXPECT_EQ(first["expected"], 0.5);
    EXPECT_EQ(first["answered"], -0.25);
    EXPECT_EQ(first["answered_bits"], "0xbe800000");
}

TEST(VerifyReport, NotANumberIsToldByItsBits) {
    Difference difference = WrongSample();
    difference.answered = std::bit_cast<float>(0x7FC00001U);
    const auto first =
        nlohmann::json::parse(Parsed(WithDifference(difference)).dump())["first_difference"];
    EXPECT_TRUE(first["answered"].is_null());
    EXPECT_EQ(first["answered_bits"], "0x7fc00001");
}
