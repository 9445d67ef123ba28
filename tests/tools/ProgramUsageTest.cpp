#include <gmock/gmock.h>

#include "tests/tools/ProgramRun.h"

using ::testing::HasSubstr;

namespace {

void ExpectUsageError(const std::vector<std::string>& arguments, const std::string& text) {
    const ProgramEnd end = RunProgram(arguments);
    EXPECT_EQ(end.status, 2) << ::testing::PrintToString(arguments);
    EXPECT_EQ(end.out, "");
    EXPECT_THAT(end.err, HasSubstr(text));
}

} // namespace

TEST(ProgramUsage, TellsItsVersion) {
    const ProgramEnd end = RunProgram({"--version"});
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out, "zanthe " ZANTHE_VERSION "\n");
    EXPECT_EQ(end.err, "");
}

TEST(ProgramUsage, HelpsAboutItself) {
    const ProgramEnd end = RunProgram({"--help"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.out, HasSubstr("audio"));
    EXPECT_THAT(end.out, HasSubstr("classify"));
    EXPECT_THAT(end.out, HasSubstr("verify"));
    EXPECT_THAT(end.out, HasSubstr("Exit status: 0 done"));
}

TEST(ProgramUsage, HelpsAboutAudioWithUnitsAndDefaults) {
    const ProgramEnd end = RunProgram({"audio", "--help"});
    EXPECT_EQ(end.status, 0);
    for (const char* part :
         {"FILE", "--start", "--frames", "--rate", "--track", "--float", "-o,--output", "--json",
          "=44100", "in Hz", "default: to its end", "1000 to 768000"}) {
        EXPECT_THAT(end.out, HasSubstr(part));
    }
}

TEST(ProgramUsage, HelpsAboutVerifyWithUnitsAndDefaults) {
    const ProgramEnd end = RunProgram({"verify", "--help"});
    EXPECT_EQ(end.status, 0);
    for (const char* part :
         {"FILE", "--audio", "--seeks", "--seed", "--rate", "--json", "=200", "=44100", "in Hz"}) {
        EXPECT_THAT(end.out, HasSubstr(part));
    }
}

TEST(ProgramUsage, WrongUsageEndsWithTwo) {
    ExpectUsageError({}, "subcommand");
    ExpectUsageError({"paint"}, "paint");
    ExpectUsageError({"--nonsense"}, "--nonsense");
    ExpectUsageError({"audio"}, "FILE");
    ExpectUsageError({"audio", "a.mp3"}, "--output");
    ExpectUsageError({"audio", "a.mp3", "b.mp3", "-o", "out.wav"}, "b.mp3");
    ExpectUsageError({"classify"}, "FILE");
    ExpectUsageError({"verify"}, "FILE");
    ExpectUsageError({"verify", "a.mp3", "--nonsense"}, "--nonsense");
}

TEST(ProgramUsage, ARateIsAWholeNumberOfHertzWithinBounds) {
    for (const char* rate : {"0", "768001", "-1", "44.1", "x", "", "99999999999999999999"}) {
        ExpectUsageError({"audio", "a.mp3", "-o", "out.wav", "--rate", rate}, "--rate");
        ExpectUsageError({"verify", "a.mp3", "--rate", rate}, "--rate");
    }
}

TEST(ProgramUsage, PositionsAreWholeNumbersFromZero) {
    for (const char* option : {"--start", "--frames", "--track"}) {
        for (const char* number : {"-1", "1.5", "x", "99999999999999999999"}) {
            ExpectUsageError({"audio", "a.mp3", "-o", "out.wav", option, number}, option);
        }
    }
    ExpectUsageError({"verify", "a.mp3", "--seeks", "-1"}, "--seeks");
    ExpectUsageError({"verify", "a.mp3", "--seed", "-1"}, "--seed");
}
