#include "zanthe/detection/CodecDisplayName.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/dshow/Uuids.h"

namespace {

GUID Tag(std::uint32_t tag) {
    return {tag, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
}

GUID FourCc(const std::string& code) {
    const auto byte = [&](int i) { return static_cast<std::uint32_t>(code[i]); };
    return Tag(byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24);
}

constexpr GUID WindowsMedia{
    0x3db80f90, 0x9412, 0x11d1, {0xad, 0xed, 0x00, 0x00, 0xf8, 0x75, 0x4b, 0x99}};

struct Case {
    GUID subtype;
    std::wstring name;
};

const std::vector<Case> Video{
    {{0x8d2d71cb, 0x243f, 0x45e3, {0xb2, 0xd8, 0x5f, 0xd7, 0x96, 0x7e, 0xc0, 0x9b}}, L"H.264"},
    {FourCc("H264"), L"H.264"},
    {{0x8d2d71cc, 0x243f, 0x45e3, {0xb2, 0xd8, 0x5f, 0xd7, 0x96, 0x7e, 0xc0, 0x9b}},
     L"H.264 ( NALU )"},
    {FourCc("AVC1"), L"H.264 ( AVC1 )"},
    {FourCc("avc1"), L"H.264 ( QuickTime )"},
    {FourCc("VSSH"), L"H.264 ( VSSH )"},
    {{0xf038fb38, 0x36b4, 0x4ce0, {0xad, 0x08, 0x8e, 0xa7, 0xcb, 0x60, 0x11, 0x0f}},
     L"H.264 ( MainConcept )"},
    {FourCc("X264"), L"H.264 ( X264 )"},
    {WindowsMedia, L"Windows Media Video"},
    {FourCc("WMV3"), L"Windows Media Video"},
    {FourCc("WMV2"), L"Windows Media Video"},
    {FourCc("WMV1"), L"Windows Media Video"},
    {FourCc("HEVC"), L"H.265 ( Microsoft )"},
};

const std::vector<Case> Audio{
    {Tag(0x0001), L"PCM"},
    {Tag(0x00ff), L"AAC"},
    {Tag(0x1610), L"AAC"},
    {Tag(0x0180), L"AAC ( MPEG-2 )"},
    {Tag(0xa106), L"AAC ( MPEG-4 )"},
    {Tag(0x0278), L"AAC ( Sony )"},
    {FourCc("MP4A"), L"AAC ( Nero )"},
    {Tag(0x4143), L"AAC ( Divio )"},
    {Tag(0x01ff), L"AAC ( LATM )"},
    {WindowsMedia, L"Windows Media Audio"},
    {Tag(0x0162), L"Windows Media Audio"},
    {Tag(0x0161), L"Windows Media Audio"},
    {{0xe06d802c, 0xdb46, 0x11cf, {0xb4, 0xd1, 0x00, 0x80, 0x5f, 0x6c, 0xbb, 0xea}}, L"Dolby AC-3"},
    {Tag(0x0055), L"MP3"},
};

// "-" where the table does not hold the pair.
std::wstring NameOf(const GUID& majorType, const GUID& subtype) {
    std::wstring name = L"as it was";
    if (GetCodecDisplayName(majorType, subtype, name)) {
        return name;
    }
    EXPECT_EQ(name, L"as it was");
    return L"-";
}

TEST(CodecDisplayName, EveryVideoRow) {
    for (const Case& row : Video) {
        EXPECT_EQ(NameOf(MEDIATYPE_Video, row.subtype), row.name);
    }
}

TEST(CodecDisplayName, EveryAudioRow) {
    for (const Case& row : Audio) {
        EXPECT_EQ(NameOf(MEDIATYPE_Audio, row.subtype), row.name);
    }
}

TEST(CodecDisplayName, H264IsNeverMicrosofts) {
    EXPECT_EQ(NameOf(MEDIATYPE_Video, FourCc("H264")), L"H.264");
}

TEST(CodecDisplayName, TablesAreApartButForWindowsMedia) {
    for (const Case& row : Audio) {
        const bool shared = row.subtype == WindowsMedia;
        EXPECT_EQ(NameOf(MEDIATYPE_Video, row.subtype), shared ? L"Windows Media Video" : L"-");
    }
    for (const Case& row : Video) {
        const bool shared = row.subtype == WindowsMedia;
        EXPECT_EQ(NameOf(MEDIATYPE_Audio, row.subtype), shared ? L"Windows Media Audio" : L"-");
    }
}

TEST(CodecDisplayName, OtherMajorTypesHaveNone) {
    for (const GUID& majorType : {MEDIATYPE_Stream, GUID_NULL}) {
        for (const Case& row : Video) {
            EXPECT_EQ(NameOf(majorType, row.subtype), L"-");
        }
        for (const Case& row : Audio) {
            EXPECT_EQ(NameOf(majorType, row.subtype), L"-");
        }
    }
}

TEST(CodecDisplayName, OtherSubtypesHaveNone) {
    for (const GUID& subtype : {GUID_NULL, FourCc("h264"), FourCc("MJPG"), FourCc("hevc"),
                                FourCc("WMV4"), Tag(2), Tag(0x0160), FourCc("mp4a")}) {
        EXPECT_EQ(NameOf(MEDIATYPE_Video, subtype), L"-");
        EXPECT_EQ(NameOf(MEDIATYPE_Audio, subtype), L"-");
    }
}

TEST(CodecDisplayName, TheTailCountsToo) {
    GUID subtype = FourCc("H264");
    subtype.Data4[7] ^= 1;
    EXPECT_EQ(NameOf(MEDIATYPE_Video, subtype), L"-");
}

} // namespace
