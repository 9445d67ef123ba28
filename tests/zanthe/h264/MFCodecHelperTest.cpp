#include "zanthe/h264/MFCodecHelper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/com/TaskMemory.h"
#include "platform/mf/Activate.h"
#include "platform/mf/MediaFormats.h"
#include "tests/zanthe/h264/ScriptedCodecs.h"
#include "tests/zanthe/h264/ScriptedMedia.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

// How many codecs the system names for the category; each is given back.
UINT32 CountCodecs(REFGUID category, bool decoder) {
    const MFT_REGISTER_TYPE_INFO type{MFMediaType_Video, MFVideoFormat_HEVC};
    IMFActivate** found = nullptr;
    UINT32 count = 0;
    MFTEnumEx(category, 0x55, decoder ? &type : nullptr, decoder ? nullptr : &type, &found, &count);
    for (UINT32 i = 0; i < count; ++i) {
        found[i]->Release();
    }
    CoTaskMemFree(found);
    return count;
}

TEST(MFCodecHelper, ADecoderIsThereWhereTheSystemHasOne) {
    EXPECT_GT(CountCodecs(MFT_CATEGORY_VIDEO_DECODER, true), 0U);
    EXPECT_TRUE(MFCodecHelper::hasH265Decoder());
}

TEST(MFCodecHelper, AnEncoderIsThereOnlyWhereTheSystemHasOne) {
    const bool named = CountCodecs(MFT_CATEGORY_VIDEO_ENCODER, false) > 0;
    EXPECT_LE(MFCodecHelper::hasH265Encoder(), named);
    EXPECT_EQ(MFCodecHelper::hasH265Encoder(), MFCodecHelper::hasH265Encoder());
}

using Request = ScriptedCodecs::Request;

Request ForDecoder(REFGUID subtype) {
    return {MFT_CATEGORY_VIDEO_DECODER, 0x55, MFMediaType_Video, subtype, GUID_NULL, GUID_NULL};
}

Request ForEncoder(REFGUID subtype) {
    return {MFT_CATEGORY_VIDEO_ENCODER, 0x55, GUID_NULL, GUID_NULL, MFMediaType_Video, subtype};
}

TEST(MFCodecHelper, AsksForBothFormsOfTheStream) {
    ScriptedCodecs codecs;
    EXPECT_FALSE(MFCodecHelper::hasH265Decoder());
    EXPECT_FALSE(MFCodecHelper::hasH265Encoder());
    EXPECT_THAT(codecs.requests,
                ElementsAre(ForDecoder(MFVideoFormat_HEVC), ForDecoder(MFVideoFormat_HEVC_ES),
                            ForEncoder(MFVideoFormat_HEVC), ForEncoder(MFVideoFormat_HEVC_ES)));
}

TEST(MFCodecHelper, OneFormIsEnough) {
    for (const GUID& subtype : {MFVideoFormat_HEVC, MFVideoFormat_HEVC_ES}) {
        ScriptedCodecs codecs;
        codecs.Add(subtype, S_OK);
        EXPECT_TRUE(MFCodecHelper::hasH265Decoder());
        EXPECT_TRUE(MFCodecHelper::hasH265Encoder());
        EXPECT_EQ(codecs.requests.size(), subtype == MFVideoFormat_HEVC ? 2U : 4U);
    }
}

TEST(MFCodecHelper, ACodecThatDoesNotStartIsNone) {
    ScriptedCodecs codecs;
    const auto broken = codecs.Add(MFVideoFormat_HEVC, E_FAIL);
    EXPECT_FALSE(MFCodecHelper::hasH265Decoder());
    EXPECT_FALSE(MFCodecHelper::hasH265Encoder());
    EXPECT_EQ(broken->started, 2);
    codecs.Add(MFVideoFormat_HEVC_ES, S_OK);
    EXPECT_TRUE(MFCodecHelper::hasH265Decoder());
    EXPECT_TRUE(MFCodecHelper::hasH265Encoder());
}

TEST(MFCodecHelper, TheFirstThatStartsIsEnough) {
    ScriptedCodecs codecs;
    const std::vector<com::ComPtr<ScriptedActivate>> listed = {
        codecs.Add(MFVideoFormat_HEVC, E_FAIL), codecs.Add(MFVideoFormat_HEVC, S_OK),
        codecs.Add(MFVideoFormat_HEVC, S_OK)};
    EXPECT_TRUE(MFCodecHelper::hasH265Decoder());
    EXPECT_EQ(listed[0]->started, 1);
    EXPECT_EQ(listed[1]->started, 1);
    EXPECT_EQ(listed[2]->started, 0);
    for (const auto& each : listed) {
        EXPECT_EQ(References(each.Get()), 2U); // the test's and the system's
        EXPECT_EQ(References(each->Codec()), 1U);
    }
}

TEST(MFCodecHelper, ASystemThatNamesNoneHasNone) {
    ScriptedCodecs codecs;
    codecs.Add(MFVideoFormat_HEVC, S_OK);
    codecs.result = E_FAIL;
    EXPECT_FALSE(MFCodecHelper::hasH265Decoder());
    EXPECT_FALSE(MFCodecHelper::hasH265Encoder());
}

} // namespace
} // namespace Zanthe
