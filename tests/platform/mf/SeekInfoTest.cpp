#include "platform/mf/SeekInfo.h"

#include <gtest/gtest.h>

#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "tests/platform/mf/Readers.h"
#include "tests/support/TestMedia.h"

namespace {

constexpr LONGLONG kNone = -1;

com::ComPtr<IMFSeekInfo> OpenSeekInfo(const std::string& path) {
    com::ComPtr<IMFSeekInfo> info;
    EXPECT_EQ(OpenReader(path, {})->GetServiceForStream(MF_SOURCE_READER_MEDIASOURCE,
                                                        MF_SCRUBBING_SERVICE, IID_IMFSeekInfo,
                                                        info.PutVoid()),
              S_OK);
    return info;
}

LONGLONG ValueOf(const PROPVARIANT& variant) {
    return variant.vt == VT_I8 ? variant.hVal.QuadPart : kNone;
}

std::pair<LONGLONG, LONGLONG> Around(IMFSeekInfo& info, LONGLONG time) {
    PROPVARIANT start;
    PROPVARIANT previous;
    PROPVARIANT next;
    PropVariantInit(&start);
    start.vt = VT_I8;
    start.hVal.QuadPart = time;
    EXPECT_EQ(info.GetNearestKeyFrames(&GUID_NULL, &start, &previous, &next), S_OK);
    return {ValueOf(previous), ValueOf(next)};
}

using Pair = std::pair<LONGLONG, LONGLONG>;

class SeekInfo : public testing::TestWithParam<const char*> {};

// A key frame every second, in files with an index and without.
TEST_P(SeekInfo, TellsTheKeyFramesAround) {
    const auto info = OpenSeekInfo(MadeMedia(GetParam()));
    const auto [first, same] = Around(*info, kNone + 1);
    EXPECT_EQ(first, same);
    EXPECT_EQ(Around(*info, 15'000'000), Pair(10'000'000, 20'000'000));
    EXPECT_EQ(Around(*info, 10'000'000), Pair(10'000'000, 10'000'000));
    EXPECT_EQ(Around(*info, 10'000'001), Pair(10'000'000, 20'000'000));
    EXPECT_EQ(Around(*info, 9'999'999), Pair(0, 10'000'000));
    EXPECT_EQ(Around(*info, 35'000'000), Pair(30'000'000, kNone));
    EXPECT_EQ(Around(*info, 900'000'000), Pair(30'000'000, kNone));
    EXPECT_EQ(Around(*info, -50), Pair(kNone, 0));
}

INSTANTIATE_TEST_SUITE_P(Files, SeekInfo,
                         testing::Values("h264/plain.mp4", "h264/in-matroska.mkv",
                                         "h264/index-first.mp4", "h264/audio-first.mp4"));

TEST(SeekInfoService, IsThatOfFilesWithVideo) {
    const auto reader = OpenReader(MadeMedia("h264/plain.mp4"), {});
    void* object = nullptr;
    EXPECT_EQ(reader->GetServiceForStream(kVideo, MF_SCRUBBING_SERVICE, IID_IMFSeekInfo, &object),
              MF_E_UNSUPPORTED_SERVICE);
    EXPECT_EQ(reader->GetServiceForStream(MF_SOURCE_READER_MEDIASOURCE, MF_MT_SUBTYPE,
                                          IID_IMFSeekInfo, &object),
              MF_E_UNSUPPORTED_SERVICE);
    EXPECT_EQ(reader->GetServiceForStream(MF_SOURCE_READER_MEDIASOURCE, MF_SCRUBBING_SERVICE,
                                          IID_IMFSample, &object),
              E_NOINTERFACE);
    const auto song = OpenReader(MadeMedia("tone-44100-stereo-cbr128.mp3"), {});
    EXPECT_EQ(song->GetServiceForStream(MF_SOURCE_READER_MEDIASOURCE, MF_SCRUBBING_SERVICE,
                                        IID_IMFSeekInfo, &object),
              MF_E_UNSUPPORTED_SERVICE);
    EXPECT_EQ(object, nullptr);
}

TEST(SeekInfoService, RefusesOtherFormats) {
    const auto info = OpenSeekInfo(MadeMedia("h264/plain.mp4"));
    PROPVARIANT start;
    PROPVARIANT previous;
    PROPVARIANT next;
    PropVariantInit(&start);
    EXPECT_EQ(info->GetNearestKeyFrames(nullptr, &start, &previous, &next), E_INVALIDARG);
    start.vt = VT_I8;
    EXPECT_EQ(info->GetNearestKeyFrames(&MF_PD_DURATION, &start, &previous, &next),
              MF_E_UNSUPPORTED_TIME_FORMAT);
    EXPECT_EQ(info->GetNearestKeyFrames(nullptr, nullptr, &previous, &next), E_POINTER);
    EXPECT_EQ(info->GetNearestKeyFrames(nullptr, &start, &previous, &next), S_OK);
}

} // namespace
