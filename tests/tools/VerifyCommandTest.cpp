#include "tools/zanthe/VerifyCommand.h"

#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/tools/ScriptedSound.h"
#include "tools/zanthe/CommandError.h"

using Program::VerifyRequest;
using Program::VerifySound;

namespace {

VerifyRequest Request() {
    VerifyRequest request;
    request.file = "in.mp3";
    request.seeks = 20;
    request.rate = 8000;
    return request;
}

} // namespace

TEST(VerifySound, AnHonestReaderPasses) {
    ScriptedSound sound(100003);
    std::ostringstream out;
    VerifySound(sound, Request(), out);
    EXPECT_EQ(out.str().find("in.mp3: 100003 frames (12.500 s) at 8000 Hz, stereo; seed "), 0U);
}

TEST(VerifySound, ALyingReaderIsReportedAndRefused) {
    ScriptedSound sound(100003);
    sound.script = [&](std::size_t index, const auto& read, auto& channels) {
        return sound.Honest(read, channels) - (index == 5 ? 1 : 0);
    };
    std::ostringstream out;
    try {
        VerifySound(sound, Request(), out);
        FAIL() << "passed";
    } catch (const Program::CommandError& error) {
        const std::string text = error.what();
        EXPECT_EQ(text.find("in.mp3: 1 of "), 0U) << text;
        EXPECT_NE(text.find(" reads are not as they should be"), std::string::npos) << text;
    }
    EXPECT_NE(out.str().find("\nfirst difference: random read 2 of "), std::string::npos)
        << out.str();
}

TEST(VerifySound, TheSeedIsTheOneAskedFor) {
    ScriptedSound sound(1000);
    VerifyRequest request = Request();
    request.seed = 18446744073709551615U;
    request.json = true;
    std::ostringstream out;
    VerifySound(sound, request, out);
    EXPECT_EQ(nlohmann::json::parse(out.str())["seed"], 18446744073709551615U);
}

TEST(VerifySound, AFileWithoutSoundIsRefused) {
    ScriptedSound sound(0);
    std::ostringstream out;
    EXPECT_THROW(VerifySound(sound, Request(), out), Program::CommandError);
    EXPECT_EQ(out.str(), "");
}
