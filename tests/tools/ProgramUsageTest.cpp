#include <gmock/gmock.h>

#include "tests/tools/ProgramRun.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

void ExpectUsageError(const std::vector<std::string>& arguments, const std::string& text) {
    const ProgramEnd end = RunProgram(arguments);
    EXPECT_EQ(end.status, 2) << ::testing::PrintToString(arguments);
    EXPECT_EQ(end.out, "");
    EXPECT_THAT(end.err, HasSubstr(text));
    EXPECT_THAT(end.err, StartsWith("zanthe: "));
    EXPECT_EQ(end.err.find('\n'), end.err.size() - 1) << "one line: " << end.err;
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
    for (const char* command : {"audio", "bench", "classify", "frame", "sheet", "verify"}) {
        EXPECT_THAT(end.out, HasSubstr(std::string("\n  ") + command + " "));
    }
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
    for (const char* part : {"FILE", "--audio", "--video", "--seeks", "--seed", "--rate",
                             "--stream", "--format", "--json", "=200", "=44100", "in Hz"}) {
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
    ExpectUsageError({"classify", "a.mp3", "--json=false"}, "json");
    ExpectUsageError({"verify", "a.mp3", "--audio=0"}, "audio");
}

TEST(ProgramUsage, WhatIsNotKnownIsNamedBeforeWhatIsMissing) {
    ExpectUsageError({"frame", "--bogus"}, "no such option: --bogus (see zanthe frame --help)");
    ExpectUsageError({"--bogus"}, "no such option: --bogus (see zanthe --help)");
    ExpectUsageError({"paint"}, "no such command: paint (see zanthe --help)");
    ExpectUsageError({"sheet", "a.mp4", "b.mp4"}, "one argument too many: b.mp4");
    ExpectUsageError({"frame", "a.mp4"}, "--at is required (see zanthe frame --help)");
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

TEST(ProgramUsage, HelpsAboutTheVideoCommands) {
    const ProgramEnd frame = RunProgram({"frame", "--help"});
    for (const char* part : {"--at TIME[,TIME...]", "1001/30000", "OUT-1.png", "--raw",
                             "--as-stored", "--stream", "--format", "--json"}) {
        EXPECT_THAT(frame.out, HasSubstr(part));
    }
    const ProgramEnd sheet = RunProgram({"sheet", "--help"});
    for (const char* part : {"--columns N=4", "--rows N=4", "-o,--output", "1 to 20"}) {
        EXPECT_THAT(sheet.out, HasSubstr(part));
    }
    const ProgramEnd bench = RunProgram({"bench", "--help"});
    for (const char* part :
         {"--openings N=5", "--sequential N=300", "--random N=50", "--backward", "--scrubs"}) {
        EXPECT_THAT(bench.out, HasSubstr(part));
    }
}

TEST(ProgramUsage, FrameWantsTimesAndOneOutput) {
    ExpectUsageError({"frame", "a.mp4", "-o", "out.png"}, "--at");
    ExpectUsageError({"frame", "a.mp4", "--at", "1"}, "--raw");
    ExpectUsageError({"frame", "a.mp4", "--at", "1", "-o", "a", "--raw", "b"}, "--raw");
    for (const char* time : {"x", "1:60", "1/0", "", "1,,2", "1,", "99999999999999999999"}) {
        ExpectUsageError({"frame", "a.mp4", "-o", "out.png", "--at", time}, "--at");
    }
    ExpectUsageError({"frame", "a.mp4", "-o", "out.png", "--at", "-1"}, "-1");
    ExpectUsageError({"frame", "a.mp4", "-o", "out.png", "--at", "1", "--format", "3"}, "--format");
    ExpectUsageError({"sheet", "a.mp4", "-o", "out.png", "--columns", "21"}, "--columns");
    ExpectUsageError({"bench", "a.mp4", "--random", "0"}, "--random");
}

TEST(ProgramUsage, AnErrorsTextStaysOnOneLine) {
    ExpectUsageError({"frame", "a.mp4", "-o", "out.png", "--at", "1\n2"}, "\\x0a");
}

TEST(ProgramUsage, HelpThatCannotBeWrittenIsAnError) {
    const ProgramEnd end = RunProgram({"--help"}, "/dev/full");
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.err, "zanthe: standard output: cannot be written\n");
    EXPECT_EQ(RunProgram({"--version"}, "/dev/full").status, 1);
}
