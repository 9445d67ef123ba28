#include "platform/mf/Activate.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/com/TaskMemory.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/Transform.h"

namespace {

constexpr UINT32 kUsual = MFT_ENUM_FLAG_SYNCMFT | MFT_ENUM_FLAG_HARDWARE | MFT_ENUM_FLAG_LOCALMFT |
                          MFT_ENUM_FLAG_SORTANDFILTER;

std::vector<com::ComPtr<IMFActivate>> Enumerate(REFGUID category, UINT32 flags,
                                                const MFT_REGISTER_TYPE_INFO* type) {
    const bool decodes = category == MFT_CATEGORY_VIDEO_DECODER;
    IMFActivate** array = nullptr;
    UINT32 count = 1;
    EXPECT_EQ(MFTEnumEx(category, flags, decodes ? type : nullptr, decodes ? nullptr : type, &array,
                        &count),
              S_OK);
    std::vector<com::ComPtr<IMFActivate>> activates;
    for (UINT32 i = 0; i < count; ++i) {
        activates.push_back(com::ComPtr<IMFActivate>::Attach(array[i]));
    }
    EXPECT_EQ(array == nullptr, count == 0);
    CoTaskMemFree(array);
    return activates;
}

std::string NameOf(IMFActivate& activate) {
    UINT8 name[64];
    UINT32 size = 0;
    EXPECT_EQ(activate.GetBlob(MFT_FRIENDLY_NAME_Attribute, name, sizeof name, &size), S_OK);
    return {reinterpret_cast<const char*>(name), size};
}

TEST(MFTEnumEx, UsesTheFlagsOfThePublicHeader) {
    EXPECT_EQ(kUsual, 0x55U);
}

TEST(MFTEnumEx, FindsDecoders) {
    for (const GUID& subtype : {MFVideoFormat_H264, MFVideoFormat_HEVC, MFVideoFormat_HEVC_ES}) {
        const MFT_REGISTER_TYPE_INFO type{MFMediaType_Video, subtype};
        const auto found = Enumerate(MFT_CATEGORY_VIDEO_DECODER, kUsual, &type);
        ASSERT_FALSE(found.empty());
        EXPECT_EQ(NameOf(*found.front()), subtype == MFVideoFormat_H264 ? "h264" : "hevc");
        com::ComPtr<IMFTransform> transform;
        EXPECT_EQ(found.front()->ActivateObject(IID_IMFTransform, transform.PutVoid()), S_OK);
        EXPECT_TRUE(transform);
    }
}

TEST(MFTEnumEx, FindsEncoders) {
    const MFT_REGISTER_TYPE_INFO type{MFMediaType_Video, MFVideoFormat_MP4V};
    const auto found = Enumerate(MFT_CATEGORY_VIDEO_ENCODER, kUsual, &type);
    ASSERT_FALSE(found.empty());
    com::ComPtr<IMFTransform> transform;
    EXPECT_EQ(found.front()->ActivateObject(IID_IMFTransform, transform.PutVoid()), S_OK);
}

TEST(MFTEnumEx, FindsNothingForWhatNobodyCodes) {
    const MFT_REGISTER_TYPE_INFO unknown{MFMediaType_Video, CodedSubtype("?!?!")};
    const MFT_REGISTER_TYPE_INFO sound{MFMediaType_Audio, MFVideoFormat_H264};
    EXPECT_TRUE(Enumerate(MFT_CATEGORY_VIDEO_DECODER, kUsual, &unknown).empty());
    EXPECT_TRUE(Enumerate(MFT_CATEGORY_VIDEO_DECODER, kUsual, &sound).empty());
    const MFT_REGISTER_TYPE_INFO type{MFMediaType_Video, MFVideoFormat_H264};
    EXPECT_TRUE(Enumerate(MFT_CATEGORY_VIDEO_DECODER, MFT_ENUM_FLAG_ASYNCMFT, &type).empty());
    EXPECT_GT(Enumerate(MFT_CATEGORY_VIDEO_DECODER, kUsual, nullptr).size(), 20U);
}

TEST(MFTEnumEx, RefusesUnknownCategories) {
    IMFActivate** array = nullptr;
    UINT32 count = 1;
    EXPECT_EQ(MFTEnumEx(GUID_NULL, kUsual, nullptr, nullptr, &array, &count), E_INVALIDARG);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(MFTEnumEx(MFT_CATEGORY_VIDEO_DECODER, kUsual, nullptr, nullptr, nullptr, &count),
              E_POINTER);
}

TEST(Activate, GivesTheSameCodecUntilItIsShutDown) {
    const MFT_REGISTER_TYPE_INFO type{MFMediaType_Video, MFVideoFormat_H264};
    const auto activate = Enumerate(MFT_CATEGORY_VIDEO_DECODER, MFT_ENUM_FLAG_SYNCMFT, &type).at(0);
    com::ComPtr<IMFTransform> first;
    com::ComPtr<IMFTransform> second;
    ASSERT_EQ(activate->ActivateObject(IID_IMFTransform, first.PutVoid()), S_OK);
    ASSERT_EQ(activate->ActivateObject(IID_IMFTransform, second.PutVoid()), S_OK);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(activate->ShutdownObject(), S_OK);
    ASSERT_EQ(activate->ActivateObject(IID_IMFTransform, second.PutVoid()), S_OK);
    EXPECT_NE(first.Get(), second.Get());
    void* object = nullptr;
    EXPECT_EQ(activate->ActivateObject(IID_IMFActivate, &object), E_NOINTERFACE);
    EXPECT_EQ(activate->ActivateObject(IID_IMFActivate, nullptr), E_POINTER);
    EXPECT_EQ(activate->DetachObject(), S_OK);
}

} // namespace
