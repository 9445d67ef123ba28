#include "tools/zanthe/AudioCommand.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ScriptedSound.h"
#include "tools/zanthe/CommandError.h"
#include "zanthe/audio/WavUtl.h"
#include "zanthe/audio/WavWriter.h"

using Program::AudioRequest;
using Program::WriteSound;
using Zanthe::WavUtl;

namespace {

constexpr std::int64_t NoLimit = 1'000'000'000;

AudioRequest Request() {
    AudioRequest request;
    request.file = "in.mp3";
    request.output = "out.wav";
    request.rate = 8000;
    request.isFloat = true;
    return request;
}

std::string RefusalOf(ScriptedSound& sound, const AudioRequest& request, std::int64_t maxFrames) {
    TemporaryFolder folder;
    try {
        WriteSound(sound, request, folder / "out.wav", maxFrames);
        return {};
    } catch (const Program::CommandError& error) {
        return error.what();
    }
}

} // namespace

TEST(WriteSound, WritesTheWholeSoundBitForBit) {
    TemporaryFolder folder;
    ScriptedSound sound(100003);
    EXPECT_EQ(WriteSound(sound, Request(), folder / "out.wav", NoLimit), 100003);
    EXPECT_EQ(WavUtl::ReadWav(folder / "out.wav"), sound.planes);
}

TEST(WriteSound, WritesThePartAskedFor) {
    TemporaryFolder folder;
    ScriptedSound sound(100003);
    AudioRequest request = Request();
    request.start = 50;
    request.frames = 60001;
    EXPECT_EQ(WriteSound(sound, request, folder / "out.wav", NoLimit), 60001);
    const auto& left = sound.planes[0];
    EXPECT_EQ(WavUtl::ReadWav(folder / "out.wav")[0],
              std::vector<float>(left.begin() + 50, left.begin() + 60051));
}

TEST(WriteSound, WritesSixteenBitUnlessAskedForFloats) {
    TemporaryFolder folder;
    ScriptedSound sound(1000);
    AudioRequest request = Request();
    request.isFloat = false;
    WriteSound(sound, request, folder / "out.wav", NoLimit);
    EXPECT_EQ(std::filesystem::file_size(folder / "out.wav"), 44U + 1000 * 4);
}

TEST(WriteSound, NoFramesAskedForMakeAnEmptyFile) {
    TemporaryFolder folder;
    ScriptedSound sound(1000);
    AudioRequest request = Request();
    request.frames = 0;
    EXPECT_EQ(WriteSound(sound, request, folder / "out.wav", NoLimit), 0);
    EXPECT_EQ(std::filesystem::file_size(folder / "out.wav"), 44U);
}

TEST(WriteSound, ASoundAsLongAsTheLimitIsWritten) {
    TemporaryFolder folder;
    ScriptedSound sound(1000);
    EXPECT_EQ(WriteSound(sound, Request(), folder / "out.wav", 1000), 1000);
}

TEST(WriteSound, ASoundLongerThanAWavFileIsRefused) {
    ScriptedSound sound(100003);
    EXPECT_EQ(RefusalOf(sound, Request(), 100002),
              "out.wav: would exceed the 100002 frames that a WAV file can hold");
}

TEST(WriteSound, TheLimitCountsFromTheRequestsStart) {
    TemporaryFolder folder;
    ScriptedSound sound(1000);
    AudioRequest request = Request();
    request.start = 900;
    EXPECT_EQ(WriteSound(sound, request, folder / "out.wav", 100), 100);
}

TEST(WriteSound, AStartBehindTheSoundIsRefused) {
    ScriptedSound sound(1000);
    AudioRequest request = Request();
    request.start = 1000;
    EXPECT_EQ(RefusalOf(sound, request, NoLimit), "in.mp3: has no sound at frame 1000");
}

TEST(WriteSound, AFileWithoutSoundIsRefused) {
    ScriptedSound sound(0);
    EXPECT_EQ(RefusalOf(sound, Request(), NoLimit), "in.mp3: holds no sound");
}

TEST(WriteSound, AFileThatCannotBeWrittenIsRefused) {
    TemporaryFolder folder;
    ScriptedSound sound(1000);
    try {
        WriteSound(sound, Request(), folder / "nowhere/out.wav", NoLimit);
        FAIL() << "written to a folder that is not there";
    } catch (const Program::CommandError& error) {
        EXPECT_STREQ(error.what(), "out.wav: could not be written whole");
    }
}

TEST(WriteSound, WhatTheReaderThrowsPasses) {
    TemporaryFolder folder;
    ScriptedSound sound(1000);
    sound.script = [](std::size_t, const auto&, auto&) -> unsigned int {
        throw std::runtime_error("Error sending packet");
    };
    EXPECT_THROW(WriteSound(sound, Request(), folder / "out.wav", NoLimit), std::runtime_error);
}
