#include "zanthe/h264/MFCodecHelper.h"

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/com/TaskMemory.h"
#include "platform/mf/Activate.h"
#include "platform/mf/MediaFormats.h"

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

} // namespace
} // namespace Zanthe
