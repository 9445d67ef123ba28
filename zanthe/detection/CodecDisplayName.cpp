#include "zanthe/detection/CodecDisplayName.h"

#include <algorithm>
#include <array>
#include <span>

#include "platform/dshow/CodedSubtype.h"
#include "platform/dshow/Uuids.h"

namespace {

struct Row {
    GUID subtype;
    const wchar_t* name;
};

// Vendors' own subtypes for H.264.
constexpr GUID H264ByteStream{
    0x8D2D71CB, 0x243F, 0x45E3, {0xB2, 0xD8, 0x5F, 0xD7, 0x96, 0x7E, 0xC0, 0x9B}};
constexpr GUID H264Nalu{
    0x8D2D71CC, 0x243F, 0x45E3, {0xB2, 0xD8, 0x5F, 0xD7, 0x96, 0x7E, 0xC0, 0x9B}};
constexpr GUID H264MainConcept{
    0xF038FB38, 0x36B4, 0x4CE0, {0xAD, 0x08, 0x8E, 0xA7, 0xCB, 0x60, 0x11, 0x0F}};
// One identifier for both: the major type tells the picture from the sound.
constexpr GUID WindowsMedia{
    0x3DB80F90, 0x9412, 0x11D1, {0xAD, 0xED, 0x00, 0x00, 0xF8, 0x75, 0x4B, 0x99}};

// The first row wins. The one for H264 that names Microsoft is never reached, so that this codec
// goes by its plain name; the order is what users are used to.
constexpr std::array<Row, 14> VideoRows{{
    {H264ByteStream, L"H.264"},
    {CodedSubtype("H264"), L"H.264"},
    {H264Nalu, L"H.264 ( NALU )"},
    {CodedSubtype("AVC1"), L"H.264 ( AVC1 )"},
    {CodedSubtype("avc1"), L"H.264 ( QuickTime )"},
    {CodedSubtype("VSSH"), L"H.264 ( VSSH )"},
    {H264MainConcept, L"H.264 ( MainConcept )"},
    {CodedSubtype("H264"), L"H.264 ( Microsoft )"},
    {CodedSubtype("X264"), L"H.264 ( X264 )"},
    {WindowsMedia, L"Windows Media Video"},
    {CodedSubtype("WMV3"), L"Windows Media Video"},
    {CodedSubtype("WMV2"), L"Windows Media Video"},
    {CodedSubtype("WMV1"), L"Windows Media Video"},
    {CodedSubtype("HEVC"), L"H.265 ( Microsoft )"},
}};

constexpr std::array<Row, 14> AudioRows{{
    {MEDIASUBTYPE_PCM, L"PCM"},
    {CodedSubtype(0x00FF), L"AAC"},
    {CodedSubtype(0x1610), L"AAC"},
    {CodedSubtype(0x0180), L"AAC ( MPEG-2 )"},
    {CodedSubtype(0xA106), L"AAC ( MPEG-4 )"},
    {CodedSubtype(0x0278), L"AAC ( Sony )"},
    {CodedSubtype("MP4A"), L"AAC ( Nero )"},
    {CodedSubtype(0x4143), L"AAC ( Divio )"},
    {CodedSubtype(0x01FF), L"AAC ( LATM )"},
    {WindowsMedia, L"Windows Media Audio"},
    {CodedSubtype(0x0162), L"Windows Media Audio"},
    {CodedSubtype(0x0161), L"Windows Media Audio"},
    {MEDIASUBTYPE_DOLBY_AC3, L"Dolby AC-3"},
    {CodedSubtype(0x0055), L"MP3"},
}};

std::span<const Row> RowsFor(const GUID& majorType) {
    if (majorType == MEDIATYPE_Video) {
        return VideoRows;
    }
    return majorType == MEDIATYPE_Audio ? std::span<const Row>(AudioRows) : std::span<const Row>();
}

} // namespace

bool GetCodecDisplayName(const GUID& majorType, const GUID& subtype, std::wstring& name) {
    const std::span<const Row> rows = RowsFor(majorType);
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& candidate) {
        return candidate.subtype == subtype;
    });
    if (row == rows.end()) {
        return false;
    }
    name = row->name;
    return true;
}
