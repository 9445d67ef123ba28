#include "tools/zanthe/VerifyCommand.h"

#include <sstream>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/tools/ScriptedSound.h"
#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/CommandError.h"

using Program::CommandError;
using Program::Verify;
using Program::VerifyRequest;
using Program::VerifySources;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

VerifyRequest Request() {
    VerifyRequest request;
    request.file = "in.mp4";
    request.seeks = 20;
    request.rate = 8000;
    return request;
}

boost::shared_ptr<ScriptedSound> Sound() {
    return boost::make_shared<ScriptedSound>(100003);
}

Program::OpenedSound Opened() {
    return {Sound(), 8000};
}

std::unique_ptr<ScriptedVideo> Video() {
    return std::make_unique<ScriptedVideo>(EvenStarts(100), 33'366'666);
}

VerifySources Both() {
    return {.sound = Opened, .video = Video};
}

VerifySources SoundAlone() {
    return {.sound = Opened, .video = []() -> std::unique_ptr<Program::IVideo> {
                throw CommandError("in.mp4", "no reader for its pictures: none");
            }};
}

VerifySources VideoAlone() {
    return {.sound = []() -> Program::OpenedSound {
                throw CommandError("in.mp4", "no reader for its sound: none");
            },
            .video = Video};
}

std::string Text(const VerifySources& sources, const VerifyRequest& request) {
    std::ostringstream out;
    Verify(sources, request, out);
    return out.str();
}

std::string RefusalOf(const VerifySources& sources, const VerifyRequest& request) {
    std::ostringstream out;
    try {
        Verify(sources, request, out);
        return "passed";
    } catch (const CommandError& error) {
        EXPECT_EQ(out.str(), "");
        return error.what();
    }
}

} // namespace

TEST(Verify, HonestReadersPass) {
    const std::string text = Text(Both(), Request());
    EXPECT_THAT(text, StartsWith("in.mp4: 100003 frames (12.500 s) at 8000 Hz, stereo; seed "));
    EXPECT_THAT(text, HasSubstr("\nin.mp4: 100 pictures (3.337 s) of 16 x 8, script; seed "));
    EXPECT_THAT(text, HasSubstr("\n  to and fro          144 reads  equal\n"));
}

TEST(Verify, WhatTheFileLacksIsSaid) {
    EXPECT_THAT(Text(SoundAlone(), Request()),
                HasSubstr("\nin.mp4: no reader for its pictures: none\n"));
    EXPECT_THAT(Text(VideoAlone(), Request()),
                StartsWith("in.mp4: no reader for its sound: none\nin.mp4: 100 pictures "));
}

TEST(Verify, WhatIsAskedForMustBeThere) {
    VerifyRequest request = Request();
    request.video = true;
    EXPECT_EQ(RefusalOf(SoundAlone(), request), "in.mp4: no reader for its pictures: none");
    request.audio = true;
    EXPECT_EQ(RefusalOf(VideoAlone(), request), "in.mp4: no reader for its sound: none");
}

TEST(Verify, OnlyWhatIsAskedForIsRead) {
    VerifyRequest request = Request();
    request.video = true;
    EXPECT_THAT(Text(Both(), request), StartsWith("in.mp4: 100 pictures "));
    request = Request();
    request.audio = true;
    EXPECT_THAT(Text(Both(), request), ::testing::Not(HasSubstr("pictures")));
}

TEST(Verify, AFileWithNeitherIsRefused) {
    const VerifySources neither{.sound = SoundAlone().sound, .video = SoundAlone().video};
    VerifySources empty;
    empty.sound = [] { return Program::OpenedSound{boost::make_shared<ScriptedSound>(0), 8000}; };
    empty.video = [] { return std::make_unique<ScriptedVideo>(std::vector<std::int64_t>{}, 0); };
    EXPECT_EQ(RefusalOf(empty, Request()), "in.mp4: holds no sound; holds no pictures");
    empty.video = neither.video;
    EXPECT_EQ(RefusalOf(empty, Request()),
              "in.mp4: holds no sound; no reader for its pictures: none");
}

TEST(Verify, TheRateToldIsThatOfTheSound) {
    VerifySources sources = SoundAlone();
    sources.sound = [] { return Program::OpenedSound{Sound(), 44100}; };
    EXPECT_THAT(Text(sources, Request()), HasSubstr(" at 44100 Hz, stereo; seed "));
}

TEST(Verify, ALyingSoundIsReportedAndRefused) {
    VerifySources sources = Both();
    sources.sound = [] {
        auto sound = Sound();
        ScriptedSound* raw = sound.get();
        sound->script = [raw](std::size_t index, const auto& read, auto& channels) {
            return raw->Honest(read, channels) - (index == 5 ? 1 : 0);
        };
        return Program::OpenedSound{sound, 8000};
    };
    std::ostringstream out;
    try {
        Verify(sources, Request(), out);
        FAIL() << "passed";
    } catch (const CommandError& error) {
        const std::string text = error.what();
        EXPECT_THAT(text, StartsWith("in.mp4: 1 of "));
        EXPECT_THAT(text, HasSubstr(" reads are not as they should be"));
    }
    EXPECT_THAT(out.str(), HasSubstr("\nfirst difference: random read 2 of "));
}

TEST(Verify, ALyingVideoIsReportedAndRefused) {
    VerifySources sources = Both();
    sources.video = [] {
        auto video = Video();
        ScriptedVideo* raw = video.get();
        // The third read at random; 101 in a row come before.
        video->script = [raw](std::size_t index, const auto& time) {
            return index == 103 ? raw->PictureOf(*raw->IndexAt(0) + 7) : raw->Honest(time);
        };
        return video;
    };
    VerifyRequest request = Request();
    request.seed = 18446744073709551615U;
    request.json = true;
    std::ostringstream out;
    EXPECT_THROW(Verify(sources, request, out), CommandError);
    const auto json = nlohmann::json::parse(out.str());
    EXPECT_EQ(json["command"], "verify");
    EXPECT_EQ(json["file"], "in.mp4");
    EXPECT_EQ(json["seed"], 18446744073709551615U);
    EXPECT_EQ(json["differences"], 1);
    EXPECT_EQ(json["audio"]["differences"], 0);
    EXPECT_EQ(json["audio_absent"], nullptr);
    EXPECT_EQ(json["video"]["pictures"], 100);
    EXPECT_EQ(json["video"]["compared"][1]["kind"], "random");
    EXPECT_EQ(json["video"]["compared"][1]["differences"], 1);
    EXPECT_EQ(json["video"]["first_difference"]["what"], "time");
    EXPECT_EQ(json["video"]["first_difference"]["read"], 2);
    EXPECT_EQ(json["video"]["first_difference"]["answered_100ns"], EvenStarts(8)[7]);
}

TEST(Verify, ANameThatIsNoUtf8DoesNotBreakTheJson) {
    VerifyRequest request = Request();
    request.file = "a\xFF.mp3";
    request.json = true;
    EXPECT_EQ(nlohmann::json::parse(Text(Both(), request))["file"], "a\xEF\xBF\xBD.mp3");
}
