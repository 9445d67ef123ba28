#include "platform/av/SequenceHeader.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "platform/av/Demuxer.h"
#include "tests/support/TestMedia.h"

namespace av {
namespace {

ParametersPtr WithRecord(AVCodecID codec, const std::vector<std::uint8_t>& record) {
    ParametersPtr parameters(avcodec_parameters_alloc());
    parameters->codec_type = AVMEDIA_TYPE_VIDEO;
    parameters->codec_id = codec;
    parameters->extradata =
        static_cast<std::uint8_t*>(av_mallocz(record.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    parameters->extradata_size = static_cast<int>(record.size());
    std::copy(record.begin(), record.end(), parameters->extradata);
    return parameters;
}

const std::vector<std::uint8_t> kRecord{1,    66, 0, 10, 0xFF, 0xE1, 0,    3,
                                        0x67, 66, 0, 1,  0,    2,    0x68, 5};

TEST(SequenceHeader, StartCodesStandBeforeTheSets) {
    const std::vector<std::uint8_t> expected{0, 0, 0, 1, 0x67, 66, 0, 0, 0, 0, 1, 0x68, 5};
    EXPECT_EQ(SequenceHeaderOf(*WithRecord(AV_CODEC_ID_H264, kRecord)), expected);
}

TEST(SequenceHeader, AByteStreamStaysAsItIs) {
    const std::vector<std::uint8_t> stream{0, 0, 0, 1, 0x67, 66, 0, 0, 0, 0, 1, 0x68, 5};
    EXPECT_EQ(SequenceHeaderOf(*WithRecord(AV_CODEC_ID_H264, stream)), stream);
}

TEST(SequenceHeader, OtherCodecsGiveWhatIsStored) {
    EXPECT_EQ(SequenceHeaderOf(*WithRecord(AV_CODEC_ID_MPEG4, kRecord)), kRecord);
    EXPECT_TRUE(SequenceHeaderOf(*WithRecord(AV_CODEC_ID_MPEG4, {})).empty());
    EXPECT_TRUE(SequenceHeaderOf(*WithRecord(AV_CODEC_ID_H264, {})).empty());
}

TEST(SequenceHeader, CutRecordsGiveNoMoreThanTheyHold) {
    for (const AVCodecID codec : {AV_CODEC_ID_H264, AV_CODEC_ID_HEVC}) {
        for (std::size_t size = 0; size < kRecord.size(); ++size) {
            const std::vector<std::uint8_t> cut(
                kRecord.begin(), kRecord.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_LE(SequenceHeaderOf(*WithRecord(codec, cut)).size(), size + 8) << size;
        }
    }
}

TEST(SequenceHeader, HevcBeginsWithItsFirstSet) {
    const auto demuxer = Demuxer::Open(MadeMedia("h264/hevc-plain.mp4"), 0);
    ASSERT_NE(demuxer, nullptr);
    const auto header = SequenceHeaderOf(*demuxer->Stream().codecpar);
    ASSERT_GT(header.size(), 8U);
    EXPECT_EQ(header[3], 1);
    EXPECT_EQ(header[4] >> 1 & 63, 32); // a video parameter set
}

} // namespace
} // namespace av
