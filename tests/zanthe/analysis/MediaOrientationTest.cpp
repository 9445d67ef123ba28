#include "zanthe/analysis/MediaOrientation.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"

using boxes::Movie;
using boxes::MovieHeaderBox;
using boxes::SampleDescriptionBox;
using boxes::Track;
using boxes::TrackHeader;
using boxes::TrackHeaderBox;

namespace {

const std::string NoDescription = SampleDescriptionBox(0, boxes::Zeros(8));

std::string VideoTrack(const boxes::Elements& matrix, std::uint32_t version = 0) {
    TrackHeader header;
    header.version = version;
    header.matrix = matrix;
    header.width = 640 << 16 | 0x8000;
    header.height = 480 << 16;
    return Track(TrackHeaderBox(header), "vide", NoDescription);
}

std::string AudioTrack() {
    TrackHeader header;
    header.volume = 0x100;
    return Track(TrackHeaderBox(header), "soun", NoDescription);
}

// It has a size too, and is no video for it.
std::string TextTrack() {
    TrackHeader header;
    header.width = 100 << 16;
    header.height = 20 << 16;
    return Track(TrackHeaderBox(header), "text", NoDescription);
}

MediaOrientation Read(const std::string& path) {
    return ReadMediaOrientation(win32::Utf8ToWide(path));
}

MediaOrientation Of(const std::string& bytes, const std::string& name = "a.mp4") {
    const TemporaryFolder folder;
    return Read(folder.Write(name, bytes));
}

void ExpectDefault(const MediaOrientation& orientation) {
    EXPECT_EQ(orientation.matrix, IdentityMatrix);
    EXPECT_EQ(orientation.width, 0);
    EXPECT_EQ(orientation.height, 0);
}

TEST(MediaOrientation, QuarterTurns) {
    const MediaOrientation quarter = Of(Movie(VideoTrack(boxes::Clockwise90)));
    EXPECT_EQ(quarter.matrix, (MP4Matrix{0, -1, 1, 0}));
    EXPECT_EQ(quarter.width, 640);
    EXPECT_EQ(quarter.height, 480);
    EXPECT_EQ(RotationFromOrientation(quarter), 90);
    EXPECT_EQ(RotationFromOrientation(Of(Movie(VideoTrack(boxes::Clockwise180)))), 180);
    EXPECT_EQ(RotationFromOrientation(Of(Movie(VideoTrack(boxes::Clockwise270)))), 270);
    EXPECT_EQ(RotationFromOrientation(Of(Movie(VideoTrack(boxes::Upright)))), 0);
}

// The finder of orientations goes no deeper than the handler.
TEST(MediaOrientation, DeeperContainersAreNotLookedInto) {
    TrackHeader real;
    real.width = 640 << 16;
    real.height = 480 << 16;
    TrackHeader other;
    other.width = 10 << 16;
    other.height = 20 << 16;
    for (const char* container : {"minf", "stbl", "BSCM"}) {
        const std::string inner = boxes::Box(container, TrackHeaderBox(other));
        const std::string media = boxes::Box("mdia", inner + boxes::HandlerBox("vide"));
        const MediaOrientation found = Of(Movie(boxes::Box("trak", TrackHeaderBox(real) + media)));
        EXPECT_EQ(found.width, 640) << container;
        EXPECT_EQ(found.height, 480) << container;
    }
    const std::string media = boxes::Box("mdia", TrackHeaderBox(other) + boxes::HandlerBox("vide"));
    EXPECT_EQ(Of(Movie(boxes::Box("trak", TrackHeaderBox(real) + media))).width, 10);
}

TEST(MediaOrientation, RotationIsExactAndInOrder) {
    const auto rotation = [](const MP4Matrix& matrix) {
        return RotationFromOrientation({matrix, 0, 0});
    };
    EXPECT_EQ(rotation({9, -1, 1, 9}), 90);
    EXPECT_EQ(rotation({-1, -1, 1, -1}), 90); // also a half turn: the quarter turn is asked first
    EXPECT_EQ(rotation({-1, 9, 9, -1}), 180);
    EXPECT_EQ(rotation({-1, 1, -1, -1}), 180);
    EXPECT_EQ(rotation({9, 1, -1, 9}), 270);
    EXPECT_EQ(rotation({0, -1, -1, 0}), 0); // mirrored
    EXPECT_EQ(rotation({0, -1 + 0x1p-16, 1, 0}), 0);
    EXPECT_EQ(rotation({-1, 0, 0, 1}), 0);
    for (const MP4Matrix& scaled :
         {MP4Matrix{0, -2, 1, 0}, MP4Matrix{0, -1, 2, 0}, MP4Matrix{-2, 0, 0, -1},
          MP4Matrix{-1, 0, 0, -2}, MP4Matrix{0, 2, -1, 0}, MP4Matrix{0, 1, -2, 0}}) {
        EXPECT_EQ(rotation(scaled), 0);
    }
    EXPECT_EQ(rotation(IdentityMatrix), 0);
}

TEST(MediaOrientation, ScaledAndShearedStayAsTheyAre) {
    constexpr std::int32_t one = boxes::One;
    const MediaOrientation scaled =
        Of(Movie(VideoTrack({0, 2 * one, 0, -2 * one, 0, 0, 0, 0, boxes::LastOne})));
    EXPECT_EQ(scaled.matrix, (MP4Matrix{0, -2, 2, 0}));
    EXPECT_EQ(RotationFromOrientation(scaled), 0);
    const MediaOrientation sheared =
        Of(Movie(VideoTrack({one, one / 2, 0, 0, one, 0, 0, 0, boxes::LastOne})));
    EXPECT_EQ(sheared.matrix, (MP4Matrix{1, 0, 0.5, 1}));
    EXPECT_EQ(RotationFromOrientation(sheared), 0);
}

TEST(MediaOrientation, ATransformThatIsNotAffineIsTheIdentity) {
    boxes::Elements matrix = boxes::Clockwise90;
    matrix[8] = boxes::One;
    const MediaOrientation orientation = Of(Movie(VideoTrack(matrix)));
    EXPECT_EQ(orientation.matrix, IdentityMatrix);
    EXPECT_EQ(orientation.width, 640);
}

TEST(MediaOrientation, TheMoviesTransformStandsOnTheLeft) {
    constexpr std::int32_t one = boxes::One;
    const boxes::Elements scale{2 * one, 0, 0, 0, 3 * one, 0, 0, 0, boxes::LastOne};
    EXPECT_EQ(Of(Movie(MovieHeaderBox(0, scale) + VideoTrack(boxes::Clockwise90))).matrix,
              (MP4Matrix{0, -2, 3, 0}));
    EXPECT_EQ(RotationFromOrientation(Of(
                  Movie(MovieHeaderBox(0, boxes::Clockwise90) + VideoTrack(boxes::Clockwise90)))),
              180);
}

TEST(MediaOrientation, Version1TrackHeaders) {
    const MediaOrientation orientation = Of(Movie(VideoTrack(boxes::Clockwise270, 1)));
    EXPECT_EQ(RotationFromOrientation(orientation), 270);
    EXPECT_EQ(orientation.width, 640);
    EXPECT_EQ(orientation.height, 480);
}

TEST(MediaOrientation, Version1MovieHeadersAreReadFourBytesTooLate) {
    EXPECT_EQ(Of(Movie(MovieHeaderBox(1, boxes::Clockwise180) + VideoTrack(boxes::Upright))).matrix,
              IdentityMatrix);
    // With 1.0 behind the matrix, and zeros where the third column is then looked for, the numbers
    // pass for a transform: of all nine, each is the one that follows.
    constexpr std::int32_t one = boxes::One;
    const boxes::Elements shifted{9, one, 2 * one, 0, 3 * one, 4 * one, 0, 5, 6};
    EXPECT_EQ(Of(Movie(MovieHeaderBox(1, shifted, 0x40000000) + VideoTrack(boxes::Upright))).matrix,
              (MP4Matrix{1, 3, 2, 4}));
}

// Where the payload starts depends on how the box's size is written.
TEST(MediaOrientation, HeadersWithA64BitSize) {
    constexpr std::int32_t one = boxes::One;
    const boxes::Elements scale{2 * one, 0, 0, 0, 3 * one, 0, 0, 0, boxes::LastOne};
    for (const std::uint32_t version : {0u, 1u}) {
        TrackHeader header;
        header.version = version;
        header.matrix = boxes::Clockwise90;
        header.width = 640 << 16;
        header.height = 480 << 16;
        const std::string wide = boxes::WideBox("tkhd", TrackHeaderBox(header).substr(8));
        const MediaOrientation track = Of(Movie(Track(wide, "vide", NoDescription)));
        EXPECT_EQ(RotationFromOrientation(track), 90) << version;
        EXPECT_EQ(track.width, 640) << version;
        EXPECT_EQ(track.height, 480) << version;
    }
    const std::string wide = boxes::WideBox("mvhd", MovieHeaderBox(0, scale).substr(8));
    EXPECT_EQ(Of(Movie(wide)).matrix, (MP4Matrix{2, 0, 0, 3}));
}

// Only the version decides where the fields are, whatever flags stand beside it.
TEST(MediaOrientation, FlagsAreNoVersion) {
    const auto flagged = [](std::string box, char version) {
        box.replace(8, 4, std::string(1, version) + "\xFF\xFF\xFF");
        return box;
    };
    TrackHeader header;
    header.matrix = boxes::Clockwise90;
    EXPECT_EQ(RotationFromOrientation(
                  Of(Movie(Track(flagged(TrackHeaderBox(header), 0), "vide", NoDescription)))),
              90);
    EXPECT_EQ(RotationFromOrientation(Of(Movie(flagged(MovieHeaderBox(0, boxes::Clockwise90), 0)))),
              90);
    header.version = 1;
    for (const char version : {'\x01', '\x02', '\x80', '\xFF'}) {
        EXPECT_EQ(RotationFromOrientation(Of(Movie(
                      Track(flagged(TrackHeaderBox(header), version), "vide", NoDescription)))),
                  90);
    }
}

TEST(MediaOrientation, MovieHeadersCountWhereverTheyStandAndTheLastWins) {
    const std::string half = MovieHeaderBox(0, boxes::Clockwise180);
    const std::string quarter = MovieHeaderBox(0, boxes::Clockwise90);
    EXPECT_EQ(RotationFromOrientation(Of(boxes::FileType() + quarter)), 90);
    EXPECT_EQ(RotationFromOrientation(Of(Movie(half + boxes::Box("trak", quarter)))), 90);
    EXPECT_EQ(RotationFromOrientation(Of(Movie(quarter + half))), 180);
}

TEST(MediaOrientation, TheLastVideoTrackCounts) {
    TrackHeader small;
    small.width = 32 << 16;
    small.height = 24 << 16;
    small.matrix = boxes::Clockwise180;
    const std::string last = Track(TrackHeaderBox(small), "vide", NoDescription);
    const MediaOrientation orientation =
        Of(Movie(VideoTrack(boxes::Clockwise90) + last + AudioTrack() + TextTrack()));
    EXPECT_EQ(orientation.width, 32);
    EXPECT_EQ(orientation.height, 24);
    EXPECT_EQ(RotationFromOrientation(orientation), 180);
}

TEST(MediaOrientation, WithoutVideoTheMoviesTransformStays) {
    const MediaOrientation orientation =
        Of(Movie(MovieHeaderBox(0, boxes::Clockwise90) + AudioTrack()));
    EXPECT_EQ(orientation.matrix, (MP4Matrix{0, -1, 1, 0}));
    EXPECT_EQ(orientation.width, 0);
    EXPECT_EQ(orientation.height, 0);
    ExpectDefault(Of(Movie(AudioTrack())));
    ExpectDefault(Of(Movie(TextTrack())));
}

// Only inside `mdia`, and never directly inside a top-level box, does a handler tell of a track.
TEST(MediaOrientation, AHandlerElsewhereSaysNothing) {
    TrackHeader header;
    header.width = 640 << 16;
    const std::string box = TrackHeaderBox(header);
    const std::string handler = boxes::HandlerBox("vide");
    ExpectDefault(Of(Movie(box + handler)));
    ExpectDefault(Of(Movie(boxes::Box("trak", box + handler))));
    ExpectDefault(Of(boxes::FileType() + box + boxes::Box("mdia", handler) +
                     boxes::Box("free", boxes::Zeros(8))));
    EXPECT_EQ(Of(Movie(box + boxes::Box("mdia", handler))).width, 640);
}

// The length of the handler's name is taken 8 bytes too long.
TEST(MediaOrientation, AHandlerThatEndsTheFileFails) {
    TrackHeader header;
    header.width = 640 << 16;
    const std::string track =
        boxes::Box("trak", TrackHeaderBox(header) + boxes::Box("mdia", boxes::HandlerBox("vide")));
    const std::string file = boxes::FileType() + boxes::Box("moov", track);
    ExpectDefault(Of(file));
    ExpectDefault(Of(file + boxes::Zeros(7)));
    EXPECT_EQ(Of(file + boxes::U32(8) + "free").width, 640);
}

TEST(MediaOrientation, AHandlerShorterThanItsFieldsFails) {
    const std::string mdia = boxes::Box("mdia", boxes::Header("hdlr", 23) + boxes::Zeros(15));
    ExpectDefault(Of(Movie(VideoTrack(boxes::Clockwise90) + boxes::Box("trak", mdia)) +
                     boxes::Box("free", boxes::Zeros(100))));
}

TEST(MediaOrientation, ANameAsLongAsItLikesIsNotHeld) {
    const std::string mdia =
        boxes::Box("mdia", boxes::Header("hdlr", 1) + boxes::U64(std::uint64_t{1} << 61));
    ExpectDefault(Of(Movie(boxes::Box("trak", mdia + boxes::Zeros(100)))));
}

TEST(MediaOrientation, OnlyMovAndMp4AreLookedAt) {
    const std::string file = Movie(VideoTrack(boxes::Clockwise90));
    for (const char* name : {"a.mp4", "a.mov", "a.MOV", "a.Mp4", "a.b.mp4"}) {
        EXPECT_EQ(Of(file, name).width, 640) << name;
    }
    for (const char* name : {"a.m4v", "a.3gp", "mp4", "a.mp4.", "a.mp", "a.mp44"}) {
        ExpectDefault(Of(file, name));
    }
}

TEST(MediaOrientation, AMemberStandsForItsRecording) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.mp4", Movie(VideoTrack(boxes::Clockwise90)));
    EXPECT_EQ(Read(path + "!video1.mp4").width, 640);
    ExpectDefault(Read(path + "!other.mp4"));
}

TEST(MediaOrientation, WhatCannotBeParsedIsTheDefault) {
    const TemporaryFolder folder;
    ExpectDefault(Read(folder / "absent.mp4"));
    ExpectDefault(Of(""));
    ExpectDefault(Of("moov"));
    const std::string noFileType = boxes::Box("moov", VideoTrack(boxes::Clockwise90));
    ExpectDefault(Of(noFileType, "a.mov"));
    const std::string file = Movie(VideoTrack(boxes::Clockwise90));
    ExpectDefault(Of(file + boxes::Header("free", 1) + boxes::U64(0))); // what was found is dropped
}

TEST(MediaOrientation, ManyThreadsMayAskAtOnce) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.mp4", Movie(VideoTrack(boxes::Clockwise90)));
    std::vector<int> rotations(4);
    {
        std::vector<std::jthread> threads;
        for (int& rotation : rotations) {
            threads.emplace_back([&] {
                for (int i = 0; i < 50; ++i) {
                    rotation = RotationFromOrientation(Read(path));
                }
            });
        }
    }
    EXPECT_EQ(rotations, std::vector<int>(4, 90));
}

} // namespace
