#include "platform/av/DeferredVideoStream.h"

#include <algorithm>
#include <iostream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/av/ReadingOrders.h"
#include "tests/support/TestMedia.h"

using av::DeferredVideoStream;
using av::PicturePtr;
using av::ReadAll;
using av::ReadResult;
using av::SeenPicture;
using av::VideoStream;

namespace {

std::unique_ptr<VideoStream> Defer(const std::string& path) {
    return DeferredVideoStream::Open(path, {});
}

bool IsDeferred(const VideoStream& stream) {
    return dynamic_cast<const DeferredVideoStream*>(&stream) != nullptr;
}

PicturePtr At(VideoStream& stream, std::int64_t time) {
    PicturePtr picture;
    const bool found = stream.Seek(time) && stream.Read(picture) == ReadResult::Picture;
    return found ? picture : nullptr;
}

// Where two pictures end differently at the very end, the file does not say.
void ExpectSamePictures(const std::string& path) {
    const auto plain = VideoStream::Open(path, {});
    const auto deferred = Defer(path);
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(deferred, nullptr);
    constexpr std::size_t kMost = 120;
    const auto expected = ReadAll(*plain, kMost);
    const auto seen = ReadAll(*deferred, kMost);
    ASSERT_EQ(seen.size(), expected.size());
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i].start, expected[i].start) << i;
        EXPECT_EQ(seen[i].hash, expected[i].hash) << i;
        EXPECT_TRUE(seen[i].end == expected[i].end || i + 1 == seen.size()) << i;
    }
}

TEST(DeferredVideoStream, GivesWhatDecodingGives) {
    for (const char* name :
         {"plain.mp4", "b-pyramid.mp4", "open-groups.mp4", "open-groups.mov", "intra-refresh.mp4",
          "vfr-gaps.mp4", "edit-into-group.mov", "edit-into-open-group.mp4", "edit-later.mp4",
          "edit-none.mp4", "hevc-open-groups.mp4", "mpeg4-bframes.mp4", "same-time.mp4",
          "same-time-bframes.mp4", "fragmented-late.mp4", "size-change.mp4", "mbaff.mp4"}) {
        SCOPED_TRACE(name);
        ExpectSamePictures(MadeMedia(std::string("h264/") + name));
    }
}

// Both were cut by a tool that flags every picture as a key picture, also those that come out of
// the decoder after one that is shown later; what is out of order is left out when decoding.
const std::set<std::string> OutOfOrder{"jcodec__cat_avc_clip.mp4", "jcodec__precise_clip.mp4"};

TEST(DeferredVideoStream, GivesWhatDecodingGivesOfRealFiles) {
    int files = 0;
    for (const auto& path : RealMedia("mp4")) {
        const auto stream = Defer(path.string());
        if (stream != nullptr && IsDeferred(*stream) &&
            OutOfOrder.count(path.filename().string()) == 0) {
            SCOPED_TRACE(path);
            ExpectSamePictures(path.string());
            ++files;
        }
    }
    std::cout << files << " real files\n";
}

TEST(DeferredVideoStream, SteppingDecodesNothing) {
    const auto stream = Defer(MadeMedia("h264/plain.mp4"));
    ASSERT_TRUE(IsDeferred(*stream));
    PicturePtr picture;
    ASSERT_EQ(stream->Read(picture), ReadResult::Picture);
    const auto before = stream->Counters();
    for (int i = 0; i < 60; ++i) {
        ASSERT_EQ(stream->Read(picture), ReadResult::Picture);
    }
    EXPECT_EQ(stream->Counters().framesDecoded, before.framesDecoded);
    EXPECT_EQ(stream->Counters().seeks, before.seeks);
    EXPECT_LE(stream->Counters().packetsRead, before.packetsRead + 60 + 4);
}

TEST(DeferredVideoStream, APictureIsDecodedOnceHoweverOftenItIsLookedAt) {
    const auto stream = Defer(MadeMedia("h264/plain.mp4"));
    const PicturePtr picture = At(*stream, 20'000'000);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->Width(), 192);
    const auto before = stream->Counters();
    EXPECT_EQ(picture->Height(), 144);
    EXPECT_NE(picture->Frame().data[0], nullptr);
    EXPECT_EQ(stream->Counters().framesDecoded, before.framesDecoded);
}

TEST(DeferredVideoStream, APictureOutlivesItsStream) {
    auto stream = Defer(MadeMedia("h264/plain.mp4"));
    const PicturePtr picture = At(*stream, 20'000'000);
    const SeenPicture expected = av::See(*At(*stream, 20'000'000));
    stream.reset();
    EXPECT_EQ(av::See(*picture), expected);
}

TEST(DeferredVideoStream, PicturesMayBeLookedAtOnAnyThread) {
    const std::string path = MadeMedia("h264/plain.mp4");
    const auto expected = ReadAll(*Defer(path));
    const auto stream = Defer(path);
    std::vector<PicturePtr> pictures;
    for (PicturePtr picture; stream->Read(picture) == ReadResult::Picture;) {
        pictures.push_back(picture);
    }
    ASSERT_EQ(pictures.size(), expected.size());
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (std::size_t i = t; i < pictures.size(); i += 3) {
                EXPECT_EQ(av::See(*pictures[i]), expected[i]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(DeferredVideoStream, WhatPacketsDoNotTellIsDecodedAtOnce) {
    const auto stream = Defer(MadeMedia("h264/in-avi.avi"));
    ASSERT_NE(stream, nullptr);
    EXPECT_FALSE(IsDeferred(*stream));
    EXPECT_EQ(Defer("no such file"), nullptr);
}

// Whoever locks it is told by its size.
TEST(DeferredVideoStream, APictureThatNothingDecodesIsEmpty) {
    class Blind : public av::PictureSource {
    public:
        PicturePtr PictureAt(std::int64_t) override { return nullptr; }
    };

    const av::Picture picture(std::make_shared<Blind>(), 0, 10);
    EXPECT_EQ(picture.Width(), 0);
    EXPECT_EQ(picture.Frame().data[0], nullptr);
    EXPECT_FALSE(picture.OnDevice());
}

} // namespace
